// Reading picture files by another process, which a damaged or hostile file may bring down, stall or fill with itself.
#pragma once

#include "zqx/pictures/Picture.h"
#include "zqx/pictures/Reader.h"
#include "zqx/pictures/codecs/Describe.h"
#include "zqx/pictures/codecs/PictureFile.h"

namespace zqx::pictures {

/// Whether this system can.
bool canIsolate();

/// Like decodePicture(), by a process of its own with limits on its memory and time. That process gets the open file,
/// and opens nothing. @throws Error naming the file
Picture decodeIsolated(PictureFile& file, const ReadOptions& options);

/// Like describePicture(), in the same way.
PictureFacts describeIsolated(PictureFile& file, const ReadOptions& options);

} // namespace zqx::pictures
