// What the decoder process gives up before it touches a file that may be hostile.
#pragma once

#include "zqx/pictures/isolation/DecodeRequest.h"

namespace zqx::pictures {

/// Limits memory, time, files and rights of this process, for good. @throws std::system_error when it cannot
void confine(const DecodeRequest& request);

} // namespace zqx::pictures
