// Picture files into working bitmaps.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "zqx/pictures/Picture.h"
#include "zqx/pictures/bytes/PictureSize.h"
#include "zqx/pictures/codecs/LoadOptions.h"
#include "zqx/pictures/files/InputFile.h"

namespace zqx::pictures {

/// Decodes a file upright and brings it into the working form that keeps most of it, warning of what is lost. Where the
/// options say so, another process does that.
/// @throws Error naming the file
Picture loadPicture(const std::string& name, const LoadOptions& options);

/// What is known of a file before its pixels are decoded.
struct Findings {
    FREE_IMAGE_FORMAT format = FIF_UNKNOWN;
    std::optional<PictureSize> size; ///< within the limits
};
/// Is told twice: when the format is known, and when the header was read.
using FindingsListener = std::function<void(const Findings&)>;

/// loadPicture() in this process.
Picture decodePicture(const std::string& name, const LoadLimits& limits, const FindingsListener& listener = {});

/// What can be known before the pixels are decoded. @throws Error where that is enough for a refusal
Findings examine(InputFile& file, const LoadLimits& limits, const FindingsListener& listener = {});

/// From now on decoders' faults end this process. For one whose death is told by another.
void dieOfFaults();

/// Like FreeImage's own loading of a file, but with FreeImage's words in the failure and none for a damaged file.
Bitmap decodeBitmap(InputFile& file, FREE_IMAGE_FORMAT format, int flags);
/// The same, but empty where FreeImage refuses.
Bitmap tryDecodeBitmap(InputFile& file, FREE_IMAGE_FORMAT format, int flags);

} // namespace zqx::pictures
