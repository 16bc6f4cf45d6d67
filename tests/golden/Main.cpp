// The main function of the golden tests. With --print they write down what the library makes now instead of testing:
// the new hashes.txt, where results are meant to change. --simd-target=NAME as for the other tests of kernels.
#include <cstdio>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "golden/Record.h"
#include "simd/Targets.h"

namespace {

constexpr int USAGE_ERROR = 2;

const std::string TARGET_OPTION = "--simd-target=";

int print() {
    golden::Hashes all;
    for (const golden::Subject& subject : golden::subjects()) {
        all.merge(golden::recordOn(subject, 1));
    }
    std::fputs(golden::getText(all).c_str(), stdout);
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv); // takes its own options away
    bool isPrinting = false;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument == "--print") {
            isPrinting = true;
        } else if (!argument.starts_with(TARGET_OPTION)) {
            std::fprintf(stderr, "unknown argument: %s\n", argument.c_str());
            return USAGE_ERROR;
        } else if (const std::optional<int> code = test::forceTargetNamed(argument.substr(TARGET_OPTION.size()))) {
            return *code;
        }
    }
    return isPrinting ? print() : RUN_ALL_TESTS();
}
