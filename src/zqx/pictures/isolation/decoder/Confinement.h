// What the decoder process gives up before it touches a file that may be hostile.
#pragma once

#include "zqx/pictures/isolation/DecodeRequest.h"

namespace zqx::pictures {

/// Limits memory, time, files and rights of this process, for good.
/// @return true where the system also confines it: it can open nothing, start nothing and reach no other process
/// @throws std::system_error when a limit cannot be set
bool confine(const DecodeRequest& request);

} // namespace zqx::pictures
