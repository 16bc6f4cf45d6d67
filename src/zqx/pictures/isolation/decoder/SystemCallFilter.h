// The system calls that a decoder may make.
#pragma once

namespace zqx::pictures {

/// Refuses this process, with all of its threads and for good, every system call that decoding does not need: it opens
/// nothing, starts nothing, and reaches no other process. What is refused fails with "operation not permitted".
/// @return false where this system, or this build, cannot do that
bool filterSystemCalls();

} // namespace zqx::pictures
