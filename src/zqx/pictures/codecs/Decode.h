// Picture files into pictures.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "zqx/pictures/FileFormat.h"
#include "zqx/pictures/Picture.h"
#include "zqx/pictures/bytes/PictureSize.h"
#include "zqx/pictures/codecs/ReadOptions.h"
#include "zqx/pictures/files/InputFile.h"

namespace zqx::pictures {

/// Decodes a file upright and brings it into the working layout that keeps most of it, warning of what is lost. Where
/// the options say so, another process does that.
/// @throws Error naming the file
Picture loadPicture(const std::string& name, const ReadOptions& options);

/// What is known of a file before its pixels are decoded.
struct Findings {
    FileFormat format = FileFormat::UNKNOWN;
    std::optional<PictureSize> size; ///< within the limits
};
/// Is told twice: when the format is known, and when the header was read.
using FindingsListener = std::function<void(const Findings&)>;

/// loadPicture() in this process.
Picture decodePicture(const std::string& name, const Limits& limits, const FindingsListener& listener = {});

/// What can be known before the pixels are decoded. @throws Error where that is enough for a refusal
Findings examine(InputFile& file, const Limits& limits, const FindingsListener& listener = {});

} // namespace zqx::pictures
