// What FreeImage says about the file that a thread works on.
#pragma once

#include <string>

namespace zqx::pictures {

/// Forgets what was said and listens, for the calling thread.
void listenToFreeImage();

/// What FreeImage said on this thread since it last began to listen; empty when nothing.
std::string freeImageMessages();

/// Asks somebody else, too, who listens to FreeImage on all threads and does not forget while a thread listens here:
/// FreeImage speaks to the last one who asked it to.
void alsoAsk(std::string (*words)());

/// " (words)", or nothing where there are none.
std::string inParentheses(const std::string& words);
/// The messages in parentheses.
std::string inItsWords();

} // namespace zqx::pictures
