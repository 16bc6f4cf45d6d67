// A picture file between its opening and its decoding.
#pragma once

#include <string>

#include "zqx/pictures/Export.h"
#include "zqx/pictures/Limits.h"
#include "zqx/pictures/bytes/Probe.h"
#include "zqx/pictures/files/InputFile.h"

namespace zqx::pictures {

/// A file that was opened once, with what its header tells: limits, memory and decoding all go by the same.
struct ZQX_PICTURES_EXPORT PictureFile {
    /// Opens a file and reads its header, without a decoder. @throws Error naming it, also where it is beyond a limit
    PictureFile(const std::string& name, const Limits& limits);

    /// The same for a file that is open already.
    PictureFile(InputFile file, const Limits& limits);

    const std::string& name() const { return input.name(); }

    InputFile input;
    Header header;
};

/// @throws Error when a file with several pictures would be replaced by the first of them
/// @param input the picture that is read
/// @param output the file to be written, which need not exist
ZQX_PICTURES_EXPORT void checkReplacement(const PictureFile& input, const std::string& output);

} // namespace zqx::pictures
