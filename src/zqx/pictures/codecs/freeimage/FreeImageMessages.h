// FreeImage's messages about the file that a thread is working on, as parts of our own. They are collected while an
// img::LibraryMessages lives.
#pragma once

#include <cstdint>
#include <string>

namespace zqx::pictures {

/// The messages that were collected last on this thread, in one line; may be empty.
std::string freeImageMessages();

/// Tells a lack of memory from other failures, which FreeImage's results do not: some of its libraries report one as
/// damage, or not at all.
/// @param bytes that the failed operation needed at least; 0 if that is not known
/// @throws std::bad_alloc if a lack of memory was reported, or if so much memory cannot be had
void checkForLackOfMemory(std::uint64_t bytes);

/// The messages in parentheses after a space, to be appended to a message; empty if there are none.
std::string inItsWords();

} // namespace zqx::pictures
