// What FreeImage says about the file that a thread works on.
#pragma once

#include <string>

namespace zqx::pictures {

/// Forgets what was said and listens, for the calling thread.
void listenToFreeImage();

/// What FreeImage said on this thread since it last began to listen; empty when nothing.
std::string freeImageMessages();

/// True when FreeImage or one of its libraries said that there is not enough memory.
bool saidToLackMemory();

/// The messages in parentheses, with a space before them; nothing where there are none.
std::string inItsWords();

} // namespace zqx::pictures
