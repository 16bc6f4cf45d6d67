// Work on pictures that are open already, so that each file is opened only once.
#pragma once

#include <functional>

#include <zqx/tools/Batch.h>

#include "zqx/pictures/codecs/PictureFile.h"

namespace zqx::tools {

/// What the memory estimate of an open picture is based on.
inline MemoryInput memoryInput(const pictures::PictureFile& file) {
    return {file.name(), file.header.info, file.input.size()};
}

/// Called when the header of a picture has been read, before it is decoded. It may block; an exception ends the work on
/// the picture.
using Admission = std::function<void(const pictures::PictureFile& file)>;

/// applyToPicture() that waits for the picture to be admitted.
ApplyResult applyToPicture(const ApplyFiles& files, const ApplySettings& settings, const Admission& admit);

} // namespace zqx::tools
