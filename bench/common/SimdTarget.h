// Forces the instruction set that the library's kernels use, so that each can be measured on one machine.
#pragma once

#include <string>
#include <vector>

namespace bench {

/// Names of the instruction sets that this processor has, best first: of avx3, avx2, sse4 and scalar.
std::vector<std::string> availableSimdTargets();

/// From now on kernels run on the instruction set of that name; an empty name gives the best one again.
/// Not while a kernel runs.
/// @throws std::invalid_argument for a name that is not among the available ones
void forceSimdTarget(const std::string& name);

} // namespace bench
