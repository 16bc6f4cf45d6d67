#include <zqx/img/Runtime.h>

#include <algorithm>
#include <limits>

#include <hwy/highway.h>
#include <hwy/targets.h>

#include <zqx/img/Version.h>

#include "kernels/Rows.h"

namespace zqx::img {

namespace {

/// Looked up while the library is loaded: what a thread is asked for later may have been changed on it.
const std::size_t sProcessors = std::max<std::size_t>(1, kernels::threadCount());

} // namespace

unsigned availableProcessors() {
    return static_cast<unsigned>(sProcessors);
}

void setThreadCount(unsigned count) {
    constexpr unsigned MOST = std::numeric_limits<int>::max();
    kernels::setThreadCount(std::min(count == 0 ? availableProcessors() : count, MOST));
}

unsigned threadCount() {
    return static_cast<unsigned>(kernels::threadCount());
}

const char* instructionSet() {
    const auto usable = HWY_TARGETS & hwy::SupportedTargets();
    return hwy::TargetName(usable & -usable); // better ones have lower bits
}

const char* runtimeVersion() {
    return VERSION;
}

} // namespace zqx::img
