// 3D tables of a grading, against the literal rules.
#include "peers/Work.h"

#include <cstdint>
#include <memory>

#include "common/Settings.h"
#include "peers/Literal.h"

using zqx::img::ColorGrading;

namespace bench {

namespace {

constexpr std::size_t SIZE = 64;
constexpr std::size_t ENTRIES = SIZE * SIZE * SIZE;

/// Calls visit(entry, r, g, b) for the whole lattice, its blue planes spread over the threads.
template <typename Visit>
void forLatticeInParallel(const Visit& visit) {
    const float step = static_cast<float>(SIZE) - 1.0F;
#pragma omp parallel for schedule(static)
    for (std::int64_t plane = 0; plane < static_cast<std::int64_t>(SIZE); ++plane) {
        const auto b = static_cast<std::size_t>(plane);
        for (std::size_t g = 0; g < SIZE; ++g) {
            for (std::size_t r = 0; r < SIZE; ++r) {
                visit((b * SIZE + g) * SIZE + r, static_cast<float>(r) / step, static_cast<float>(g) / step,
                      static_cast<float>(b) / step);
            }
        }
    }
}

void fillLiterally(const oracle::Prepared& params, float* pTable) {
    forLatticeInParallel([&](std::size_t entry, float r, float g, float b) {
        const oracle::Values c = oracle::gradePixel(params, {r, g, b, 1.0F});
        pTable[3 * entry] = c.r;
        pTable[3 * entry + 1] = c.g;
        pTable[3 * entry + 2] = c.b;
    });
}

void fillLiterally(const oracle::Prepared& params, unsigned char* pTable) {
    forLatticeInParallel([&](std::size_t entry, float r, float g, float b) {
        const oracle::Values c = oracle::gradePixel(params, {powf(r, 2.2F), powf(g, 2.2F), powf(b, 2.2F), 1.0F});
        pTable[3 * entry] = oracle::encodePower(c.r);
        pTable[3 * entry + 1] = oracle::encodePower(c.g);
        pTable[3 * entry + 2] = oracle::encodePower(c.b);
    });
}

void fill(const ColorGrading& grading, float* pTable) {
    grading.generate3DLUT_RGB32F(SIZE, pTable);
}

void fill(const ColorGrading& grading, unsigned char* pTable) {
    grading.generate3DLUT_SRGB8(SIZE, pTable);
}

template <typename Element>
Work table() {
    const auto entries = std::make_shared<std::vector<Element>>(3 * ENTRIES);
    const ColorGrading grading = gradingWithHue();
    const oracle::Prepared params = literalParams(grading);
    return {.ours = [=] { fill(grading, entries->data()); },
            .peer = [=] { fillLiterally(params, entries->data()); },
            .pixels = ENTRIES,
            .peerPixels = ENTRIES,
            .bytes = 3 * ENTRIES * sizeof(Element),
            .calls = 4,
            .peerCalls = 1};
}

} // namespace

std::vector<WorkEntry> tableWorks(const Conditions&) {
    return {
        {"3D table 64³ of floats, with hue", "literal scalar code", 8.0, 0.0, [] { return table<float>(); }},
        {"3D table 64³ of bytes, with hue", "literal scalar code", 8.0, 0.0, [] { return table<unsigned char>(); }},
    };
}

} // namespace bench
