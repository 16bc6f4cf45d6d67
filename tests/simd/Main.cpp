// The main function of test programs that can be told which instruction set kernels run on:
// --simd-target=NAME, for example avx2 or scalar. Where the processor lacks it, the exit code says so.
#include <cstdio>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "simd/Targets.h"

namespace {

constexpr int USAGE_ERROR = 2;
constexpr int SKIPPED = 77; // as automated builds agree on

const std::string OPTION = "--simd-target=";

void listTargets() {
    std::fprintf(stderr, "available:");
    for (const test::Target target : test::availableTargets()) {
        std::fprintf(stderr, " %s", test::nameOfTarget(target).c_str());
    }
    std::fprintf(stderr, "\n");
}

/// @return the exit code where tests must not be run
std::optional<int> force(const std::string& name) {
    const std::optional<test::Target> target = test::targetNamed(name);
    if (!target || !test::isAvailable(*target)) {
        std::fprintf(stderr, "%s: %s\n", name.c_str(),
                     target ? "not compiled in, or not on this processor" : "unknown instruction set");
        listTargets();
        return target ? SKIPPED : USAGE_ERROR;
    }
    test::forceTarget(*target);
    std::printf("Kernels run on %s.\n", test::nameOfTarget(*target).c_str());
    return std::nullopt;
}

} // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv); // takes its own options away
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument.rfind(OPTION, 0) != 0) {
            std::fprintf(stderr, "unknown argument: %s\n", argument.c_str());
            return USAGE_ERROR;
        }
        if (const std::optional<int> code = force(argument.substr(OPTION.size()))) {
            return *code;
        }
    }
    return RUN_ALL_TESTS();
}
