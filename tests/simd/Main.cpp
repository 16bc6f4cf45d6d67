// The main function of test programs that can be told which instruction set kernels run on:
// --simd-target=NAME, for example avx2 or scalar. Where the processor lacks it, the exit code says so.
#include <cstdio>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "simd/Targets.h"

namespace {

constexpr int USAGE_ERROR = 2;

const std::string OPTION = "--simd-target=";

} // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv); // takes its own options away
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument.rfind(OPTION, 0) != 0) {
            std::fprintf(stderr, "unknown argument: %s\n", argument.c_str());
            return USAGE_ERROR;
        }
        if (const std::optional<int> code = test::forceTargetNamed(argument.substr(OPTION.size()))) {
            return *code;
        }
        std::printf("Kernels run on %s.\n", argument.substr(OPTION.size()).c_str());
    }
    return RUN_ALL_TESTS();
}
