// No way to files by their names.
#pragma once

namespace zqx::pictures {

/// Takes from this process, for good, all that the kernel's Landlock covers: files by their names, network connections,
/// and signals to processes outside. What is open stays open. It holds where the filter of system calls might have a
/// gap, and where there is none.
/// @return false where this system cannot do that
bool barFiles();

} // namespace zqx::pictures
