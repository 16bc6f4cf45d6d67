// The instruction sets that kernels are compiled for, and how a test program makes the library use one of them.
//
// The library and the tests share one libhwy, which holds the choice.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace test {

/// One bit of Highway's mask of instruction sets.
using Target = std::int64_t;

/// Compiled into the library and supported by this processor, the best first. The last one runs everywhere.
std::vector<Target> availableTargets();

bool isAvailable(Target target);

/// In lower case.
std::string nameOfTarget(Target target);

/// Any instruction set that Highway knows by this name, available or not. Case does not matter. "scalar" is also a name
/// for the emulation of vectors that takes its place with some compilers.
std::optional<Target> targetNamed(const std::string& name);

/// Makes kernels run on one instruction set, which must be available, from the next call on.
void forceTarget(Target target);

/// Forces the instruction set that the option --simd-target of a test program names. Where that cannot be, says so on
/// standard error.
/// @return the exit code that the program ends with instead of running its tests
std::optional<int> forceTargetNamed(const std::string& name);

/// Forces a target for a while, then restores the choice that was in force.
class ForcedTarget {
public:
    explicit ForcedTarget(Target target);
    ~ForcedTarget();
    ForcedTarget(const ForcedTarget&) = delete;
    ForcedTarget& operator=(const ForcedTarget&) = delete;

private:
    Target mBefore;
};

} // namespace test
