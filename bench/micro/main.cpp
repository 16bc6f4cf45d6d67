// Measures single kernels with Google Benchmark, whose options it takes; --simd-target forces the instruction set.
#include <cstdlib>
#include <iostream>
#include <stdexcept>
#include <string>
#include <string_view>

#include "common/SimdTarget.h"
#include "micro/Micro.h"

namespace {

constexpr std::string_view OPTION = "--simd-target=";

/// Takes our option out of the arguments, so that the rest is Google Benchmark's.
std::string takeSimdTarget(int& argc, char** argv) {
    std::string target;
    int kept = 1;
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        if (argument.starts_with(OPTION)) {
            target = argument.substr(OPTION.size());
        } else {
            argv[kept++] = argv[i];
        }
    }
    argc = kept;
    argv[argc] = nullptr;
    return target;
}

} // namespace

int main(int argc, char** argv) {
    try {
        const std::string target = takeSimdTarget(argc, argv);
        bench::forceSimdTarget(target);
        benchmark::AddCustomContext("simd target", target.empty() ? bench::availableSimdTargets().front() : target);
    } catch (const std::invalid_argument& error) {
        std::cerr << "zqx_bench_micro: " << error.what() << "\n";
        return EXIT_FAILURE;
    }
    bench::registerConversions();
    bench::registerGrading();
    bench::registerFilters();
    bench::registerTurns();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return EXIT_FAILURE;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return EXIT_SUCCESS;
}
