// A picture file that has been opened but not decoded yet.
#pragma once

#include <string>

#include "zqx/pictures/Export.h"
#include "zqx/pictures/Limits.h"
#include "zqx/pictures/bytes/Probe.h"
#include "zqx/pictures/files/InputFile.h"

namespace zqx::pictures {

/// An open file with its header. Limits, memory estimates and decoding all use the same open file and header.
struct ZQX_PICTURES_EXPORT PictureFile {
    /// Opens a file and reads its header, without a decoder.
    /// @throws Error naming the file if it cannot be opened or exceeds a limit
    PictureFile(const std::string& name, const Limits& limits);

    /// The same for a file that is open already.
    PictureFile(InputFile file, const Limits& limits);

    const std::string& name() const { return input.name(); }

    InputFile input;
    Header header;
};

/// Refuses to replace a file with several pictures by the first of them. @throws Error
/// @param input the picture that is read
/// @param output the file to be written, which need not exist
ZQX_PICTURES_EXPORT void checkReplacement(const PictureFile& input, const std::string& output);

} // namespace zqx::pictures
