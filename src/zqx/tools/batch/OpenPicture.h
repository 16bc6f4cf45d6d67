// Pictures that were opened once, for all that is asked of them.
#pragma once

#include <functional>

#include <zqx/tools/Batch.h>

#include "zqx/pictures/codecs/PictureFile.h"

namespace zqx::tools {

/// For the question how much memory a picture takes.
inline MemoryInput memoryInput(const pictures::PictureFile& file) {
    return {file.name(), file.header.info, file.input.size()};
}

/// Is told of a picture whose header was read, before it is decoded. It may wait, and what it throws ends the work.
using Admission = std::function<void(const pictures::PictureFile& file)>;

/// applyToPicture() for whoever lets pictures in one after the other.
ApplyResult applyToPicture(const ApplyFiles& files, const ApplySettings& settings, const Admission& admit);

} // namespace zqx::tools
