// The one place that turns whatever was thrown into words.
#pragma once

#include <string>

namespace zqx::tools {

/// What is to be said of the exception that is being handled, whatever its type: a line that begins with the subject.
/// To be called in a catch block. May throw std::bad_alloc.
/// @param subject the file that was worked on
std::string describeFailure(const std::string& subject);

} // namespace zqx::tools
