// Measures the library beside other libraries and prints a table. Timing is no test: a figure that misses what is
// asked of it is marked, and the program still succeeds.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

#include <CLI/CLI.hpp>
#include <omp.h>
#include <opencv2/core.hpp>

#include "common/SimdTarget.h"
#include "peers/Measure.h"
#include "peers/Report.h"
#include "peers/Vips.h"
#include "peers/Work.h"

namespace {

struct Options {
    bench::Conditions conditions;
    int repetitions = 7;
    std::string filter;
    std::string json;
    std::vector<std::string> simdTargets;
    bool returnsMemory = false;
};

void declare(CLI::App& app, Options& options) {
    app.add_option("--width", options.conditions.width, "Width of the large pictures");
    app.add_option("--height", options.conditions.height, "Height of the large pictures");
    app.add_option("--threads", options.conditions.threads, "Threads for everybody");
    app.add_option("--repetitions", options.repetitions, "Repetitions; the best counts")->check(CLI::PositiveNumber);
    app.add_option("--filter", options.filter, "Measure only rows whose name contains this text");
    app.add_option("--json", options.json, "Write the figures to this file, too")->type_name("FILE");
    app.add_option("--simd-target", options.simdTargets,
                   "Measure the library on these instruction sets, too: avx3, avx2, sse4, scalar")
        ->delimiter(',')
        ->check(CLI::IsMember(bench::availableSimdTargets()));
    app.add_flag("--return-memory", options.returnsMemory,
                 "Let freed memory go back to the system, so that every new picture pays for its pages");
}

/// New pictures take the pages of freed ones: otherwise what is measured of a turn is how the system hands out pages.
void keepFreedMemory() {
#if defined(__GLIBC__)
    mallopt(M_MMAP_MAX, 0);
    mallopt(M_TRIM_THRESHOLD, -1);
#endif
}

void prepare(const Options& options, const char* program) {
    if (!options.returnsMemory) {
        keepFreedMemory();
    }
    omp_set_num_threads(options.conditions.threads);
    cv::setNumThreads(options.conditions.threads);
    bench::vips::start(program, options.conditions.threads);
}

std::vector<bench::WorkEntry> allWorks(const bench::Conditions& conditions) {
    std::vector<bench::WorkEntry> all;
    for (const auto list : {bench::conversionWorks, bench::gradingWorks, bench::filterWorks, bench::turnWorks,
                            bench::tableWorks, bench::pipelineWorks}) {
        std::ranges::move(list(conditions), std::back_inserter(all));
    }
    return all;
}

bench::Row measured(const bench::WorkEntry& entry, const Options& options) {
    const bench::Work work = entry.make();
    return bench::pickRow(entry, work, bench::measure(work, options.repetitions, options.simdTargets));
}

void run(const Options& options) {
    std::vector<bench::Row> rows;
    for (const bench::WorkEntry& entry : allWorks(options.conditions)) {
        if (entry.name.find(options.filter) != std::string::npos) {
            rows.push_back(measured(entry, options));
            std::cerr << entry.name << ": " << rows.back().ratio << " x" << std::endl;
        }
    }
    std::cout << "Pictures of " << options.conditions.width << " x " << options.conditions.height << " pixels, "
              << options.conditions.threads << " threads for everybody, best of " << options.repetitions
              << ", instruction set " << bench::availableSimdTargets().front() << ".\n\n"
              << bench::asMarkdown(rows, options.simdTargets);
    if (!options.json.empty()) {
        std::ofstream file(options.json);
        file << bench::asJson(rows, options.simdTargets, options.conditions, options.repetitions) << "\n";
        if (!file.flush()) {
            throw std::runtime_error("cannot write " + options.json);
        }
    }
}

} // namespace

int main(int argc, char** argv) {
    CLI::App app{"Measures the library beside other libraries."};
    Options options;
    declare(app, options);
    CLI11_PARSE(app, argc, argv);
    try {
        prepare(options, argv[0]);
        run(options);
    } catch (const std::exception& error) {
        std::cerr << "zqx_bench_peers: " << error.what() << "\n";
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
