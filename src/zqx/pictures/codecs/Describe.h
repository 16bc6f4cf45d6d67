// What a picture file contains, without its pixels.
#pragma once

#include "zqx/pictures/MetadataCodec.h"
#include "zqx/pictures/Reader.h"
#include "zqx/pictures/codecs/Decode.h"
#include "zqx/pictures/codecs/PictureFile.h"
#include "zqx/pictures/codecs/freeimage/FreeImageDecoder.h"

namespace zqx::pictures {

struct PictureFacts {
    FileFormat format = FileFormat::UNKNOWN;
    PixelDescription pixels; ///< as stored; without metadata
    FileMetadata metadata;
    ExifSummary exif;
};

/// Reads what a file contains, from its header where the format allows that.
/// @param options limits, and who reads
/// @throws Error naming the file
ZQX_PICTURES_EXPORT PictureFacts describePicture(PictureFile& file, const ReadOptions& options);

/// The same in this process. @param listener as of decodePicture()
PictureFacts describePicture(PictureFile& file, const Limits& limits, const HeaderListener& listener);

} // namespace zqx::pictures
