// Decoding by another process, which a damaged or hostile file may bring down, stall or fill with itself.
#pragma once

#include <string>

#include "zqx/pictures/Picture.h"
#include "zqx/pictures/Reader.h"

namespace zqx::pictures {

/// Whether this system can.
bool canIsolate();

/// Like decodePicture(), by a process of its own with limits on its memory and time. @throws Error naming the file
Picture decodeIsolated(const std::string& name, const ReadOptions& options);

} // namespace zqx::pictures
