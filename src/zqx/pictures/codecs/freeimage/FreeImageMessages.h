// FreeImage's messages about the file that a thread is working on.
#pragma once

#include <string>

namespace zqx::pictures {

/// Discards earlier messages of the calling thread and starts to collect new ones.
void listenToFreeImage();

/// The messages on this thread since the last call of listenToFreeImage(); may be empty.
std::string freeImageMessages();

/// Whether FreeImage or one of its libraries reported a lack of memory.
bool saidToLackMemory();

/// The messages in parentheses after a space, to be appended to a message; empty if there are none.
std::string inItsWords();

} // namespace zqx::pictures
