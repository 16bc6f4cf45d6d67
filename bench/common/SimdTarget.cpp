// See SimdTarget.h.
#include "common/SimdTarget.h"

#include <cstdint>
#include <stdexcept>

#include <hwy/targets.h>

namespace bench {

namespace {

struct Target {
    const char* name;
    std::int64_t bits;
};

// Which of the two portable targets exists depends on the compiler; the library has exactly one.
constexpr Target TARGETS[] = {
    {"avx3", HWY_AVX3},
    {"avx2", HWY_AVX2},
    {"sse4", HWY_SSE4},
    {"scalar", HWY_SCALAR | HWY_EMU128},
};

std::int64_t targetsOfProcessor() {
    hwy::SetSupportedTargetsForTest(0);
    return hwy::SupportedTargets();
}

void use(std::int64_t targets) {
    hwy::SetSupportedTargetsForTest(targets);
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
}

} // namespace

std::vector<std::string> availableSimdTargets() {
    const std::int64_t supported = targetsOfProcessor();
    std::vector<std::string> names;
    for (const Target& target : TARGETS) {
        if ((supported & target.bits) != 0) {
            names.emplace_back(target.name);
        }
    }
    return names;
}

void forceSimdTarget(const std::string& name) {
    const std::int64_t supported = targetsOfProcessor();
    if (name.empty()) {
        use(0);
        return;
    }
    for (const Target& target : TARGETS) {
        if (name == target.name && (supported & target.bits) != 0) {
            use(supported & target.bits);
            return;
        }
    }
    throw std::invalid_argument("this processor has no instruction set '" + name + "'");
}

} // namespace bench
