// Converts any exception to a message.
#pragma once

#include <string>

namespace zqx::tools {

/// The message for the exception that is currently handled, whatever its type: a line that begins with the subject. To
/// be called in a catch block. May throw std::bad_alloc.
/// @param subject the file that was worked on
std::string describeFailure(const std::string& subject);

} // namespace zqx::tools
