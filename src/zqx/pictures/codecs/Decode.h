// Picture files into pictures.
#pragma once

#include <functional>
#include <string>

#include "zqx/pictures/Reader.h"
#include "zqx/pictures/codecs/PictureFile.h"

namespace zqx::pictures {

/// readPicture() for a file that is open already.
ZQX_PICTURES_EXPORT Picture readPicture(PictureFile& file, const ReadOptions& options);

/// Is told what is known of a file before its pixels are decoded: once the format, once all of it.
using HeaderListener = std::function<void(const HeaderInfo&)>;

/// Decodes a file in this process.
Picture decodePicture(PictureFile& file, const Limits& limits, const HeaderListener& listener = {});

/// Asks the decoders what a file is and reads its header again where it is not what it looked like.
/// @throws Error where that is enough for a refusal
void identify(PictureFile& file, const Limits& limits, const HeaderListener& listener = {});

} // namespace zqx::pictures
