// Asks Highway as the library does: the best instruction set of those compiled for that the processor has.
#include "About.h"

#include <hwy/highway.h>
#include <hwy/targets.h>

namespace zqx::img::app {

std::string simdTarget() {
    const auto usable = HWY_TARGETS & hwy::SupportedTargets();
    return hwy::TargetName(usable & -usable); // better targets have lower bits
}

} // namespace zqx::img::app
