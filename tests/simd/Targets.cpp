#include "simd/Targets.h"

#include <algorithm>
#include <cctype>
#include <cstdio>

#include <hwy/targets.h>

namespace test {

namespace {

constexpr int USAGE_ERROR = 2;
constexpr int SKIPPED = 77; // as automated builds agree on

/// What kernels were last told to use; 0 for the best that the processor has.
Target gForced = 0;

void choose(Target target) {
    gForced = target;
    hwy::SetSupportedTargetsForTest(target);
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
}

std::vector<Target> supportedTargets() {
    const Target forced = gForced;
    hwy::SetSupportedTargetsForTest(0);
    std::vector<Target> targets = hwy::SupportedAndGeneratedTargets(); // better ones have lower bits
    choose(forced);
    return targets;
}

std::string lowerCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

void listTargets() {
    std::fprintf(stderr, "available:");
    for (const Target target : availableTargets()) {
        std::fprintf(stderr, " %s", nameOfTarget(target).c_str());
    }
    std::fprintf(stderr, "\n");
}

} // namespace

std::vector<Target> availableTargets() {
    static const std::vector<Target> TARGETS = supportedTargets();
    return TARGETS;
}

std::string nameOfTarget(Target target) {
    return lowerCase(hwy::TargetName(target));
}

std::optional<Target> targetNamed(const std::string& name) {
    const std::string wanted = lowerCase(name);
    if (wanted == "scalar" && isAvailable(HWY_EMU128)) {
        return HWY_EMU128;
    }
    for (int bit = 0; bit < 63; ++bit) {
        const Target target = Target{1} << bit;
        if (nameOfTarget(target) == wanted && nameOfTarget(target) != nameOfTarget(0)) { // 0 has no name
            return target;
        }
    }
    return std::nullopt;
}

bool isAvailable(Target target) {
    const std::vector<Target> targets = availableTargets();
    return std::find(targets.begin(), targets.end(), target) != targets.end();
}

void forceTarget(Target target) {
    choose(target);
}

std::optional<int> forceTargetNamed(const std::string& name) {
    const std::optional<Target> target = targetNamed(name);
    if (!target || !isAvailable(*target)) {
        std::fprintf(stderr, "%s: %s\n", name.c_str(),
                     target ? "not compiled in, or not on this processor" : "unknown instruction set");
        listTargets();
        return target ? SKIPPED : USAGE_ERROR;
    }
    forceTarget(*target);
    return std::nullopt;
}

ForcedTarget::ForcedTarget(Target target) : mBefore(gForced) {
    choose(target);
}

ForcedTarget::~ForcedTarget() {
    choose(mBefore);
}

} // namespace test
