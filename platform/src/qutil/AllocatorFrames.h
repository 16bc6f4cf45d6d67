// Finds out whether a signal has interrupted the memory allocator.
#pragma once

namespace qutil {

/// Looks the allocator's functions up. To be called first, and not from a signal handler: it may allocate.
void locateAllocator();

/// In a signal handler: whether the calls that were interrupted lead through the allocator, so that the heap's lock may
/// be held by this thread, and the heap may be half changed. Whoever allocates or frees then waits for ever, or faults.
/// Allocates nothing and takes no lock. Looks at the innermost calls only; the allocator does not call far.
bool isAllocatorInterrupted();

} // namespace qutil
