#include "golden/Record.h"

#include <fstream>
#include <sstream>
#include <stdexcept>

#include <omp.h>

namespace golden {

namespace {

constexpr Subject SUBJECTS[] = {
    {"conversion", recordConversions},
    {"turn", recordTurns},
    {"inversion", recordInversions},
    {"alpha", recordAlpha},
    {"grading", recordGradings},
    {"table", recordTables},
    {"blur", recordBlurs},
    {"sharpening", recordSharpenings},
    {"tiling", recordTiles},
    {"pipeline", recordPipelines},
    {"color", recordColors},
};

constexpr const char* HEADING =
    "# The SHA-256 of what the library makes of the pictures in tests/golden: one work and its hash a line.\n"
    "# Written by zqx_img_golden_tests --print. A line changes only with a result that is meant to change.\n";

/// Sets the number of threads for a while.
class Threads {
public:
    explicit Threads(int count) { omp_set_num_threads(count); }
    ~Threads() { omp_set_num_threads(mBefore); }
    Threads(const Threads&) = delete;
    Threads& operator=(const Threads&) = delete;

private:
    int mBefore = omp_get_max_threads();
};

} // namespace

std::span<const Subject> subjects() {
    return SUBJECTS;
}

Hashes recordOn(const Subject& subject, int threads) {
    const Threads limited(threads);
    Record record(subject.name);
    subject.record(record);
    return record.hashes();
}

Hashes expectedHashes() {
    std::ifstream file(ZQX_GOLDEN_HASHES);
    if (!file) {
        throw std::runtime_error("cannot read " ZQX_GOLDEN_HASHES);
    }
    Hashes hashes;
    for (std::string line; std::getline(file, line);) {
        std::string name;
        std::string hash;
        if (line.empty() || line[0] == '#') {
            continue;
        }
        if (!(std::istringstream(line) >> name >> hash) || !hashes.emplace(name, hash).second) {
            throw std::runtime_error("not a work and its hash, or there twice: " + line);
        }
    }
    return hashes;
}

std::string getText(const Hashes& hashes) {
    std::string text = HEADING;
    for (const auto& [name, hash] : hashes) {
        text += name + " " + hash + "\n";
    }
    return text;
}

} // namespace golden
