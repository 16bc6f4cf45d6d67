// How many threads the library's work on one picture is spread over.
#pragma once

namespace zqx::tools {

/// For the work that the calling thread asks for.
void useThreads(unsigned count);

} // namespace zqx::tools
