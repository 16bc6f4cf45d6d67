// Grey of encoded colour is a power of a weighted sum: for all 2^24 colours, on every instruction set.
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <zqx/img/Image.h>

#include "simd/Targets.h"

namespace {

using namespace test;
using zqx::img::Image;

constexpr std::size_t SIDE = 256;
constexpr std::size_t PIXELS = SIDE * SIDE;

/// The 65536 colours of one red, green by rows and blue along them.
std::vector<unsigned char> getColours(unsigned char red) {
    std::vector<unsigned char> bytes;
    for (std::size_t i = 0; i < PIXELS; ++i) {
        bytes.insert(bytes.end(), {red, static_cast<unsigned char>(i / SIDE), static_cast<unsigned char>(i % SIDE)});
    }
    return bytes;
}

template <typename Element>
std::vector<Element> getGreys(std::vector<unsigned char>& colours, Image::Format format) {
    std::vector<Element> greys(PIXELS);
    const Image source(colours.data(), SIDE, SIDE, Image::SRGB8, 3 * SIDE);
    Image(greys.data(), SIDE, SIDE, format, SIDE * sizeof(Element)).convertFrom(source);
    return greys;
}

/// The sum in single precision, in the order of the weights.
float storedLuma(const unsigned char* rgb) {
    return 0.2989F * (static_cast<float>(rgb[0]) / 255.0F) + 0.587F * (static_cast<float>(rgb[1]) / 255.0F) +
           0.114F * (static_cast<float>(rgb[2]) / 255.0F);
}

/// What a colour comes out as by the rules, with powers in double and in single precision.
struct Expected {
    float exact; ///< rounded once
    float single;
    unsigned char unitCode;
    unsigned char gammaCode;
};

std::vector<Expected> getExpected(const std::vector<unsigned char>& colours) {
    constexpr float ENCODING = 0.45454544F;
    std::vector<Expected> expected(PIXELS);
    for (std::size_t i = 0; i < PIXELS; ++i) {
        const float stored = storedLuma(colours.data() + 3 * i);
        const float single = std::pow(stored, 2.2F);
        expected[i] = {static_cast<float>(std::pow(static_cast<double>(stored), static_cast<double>(2.2F))), single,
                       static_cast<unsigned char>(255.0F * single),
                       static_cast<unsigned char>(255.0F * std::pow(single, ENCODING))};
    }
    return expected;
}

struct Tally {
    std::size_t inexact = 0;   ///< floats other than the power rounded once
    std::size_t notSingle = 0; ///< floats other than the power in single precision
    std::size_t beyondUlp = 0; ///< floats farther from it than one unit in the last place
    std::size_t unitCodes = 0; ///< other linear codes
    std::size_t gammaCodes = 0;
};

void compare(std::vector<unsigned char>& colours, const std::vector<Expected>& expected, Tally& tally) {
    const std::vector<float> floats = getGreys<float>(colours, Image::GRAY32F);
    const std::vector<unsigned char> unitCodes = getGreys<unsigned char>(colours, Image::GRAY8);
    const std::vector<unsigned char> gammaCodes = getGreys<unsigned char>(colours, Image::SGRAY8);
    for (std::size_t i = 0; i < PIXELS; ++i) {
        const auto distance = std::abs(std::bit_cast<std::int32_t>(floats[i]) -
                                       std::bit_cast<std::int32_t>(expected[i].single)); // both are positive
        tally.inexact += floats[i] != expected[i].exact ? 1 : 0;
        tally.notSingle += distance != 0 ? 1 : 0;
        tally.beyondUlp += distance > 1 ? 1 : 0;
        tally.unitCodes += unitCodes[i] != expected[i].unitCode ? 1 : 0;
        tally.gammaCodes += gammaCodes[i] != expected[i].gammaCode ? 1 : 0;
    }
}

TEST(StoredGrey, ExhaustiveColoursGiveTheRoundedPowerAndTheCodesOfSinglePrecision) {
    const std::vector<Target> targets = availableTargets();
    std::vector<Tally> tallies(targets.size());
    for (std::size_t red = 0; red < SIDE; ++red) {
        std::vector<unsigned char> colours = getColours(static_cast<unsigned char>(red));
        const std::vector<Expected> expected = getExpected(colours);
        for (std::size_t i = 0; i < targets.size(); ++i) {
            const ForcedTarget forced(targets[i]);
            compare(colours, expected, tallies[i]);
        }
    }
    for (std::size_t i = 0; i < targets.size(); ++i) {
        SCOPED_TRACE(nameOfTarget(targets[i]));
        EXPECT_EQ(0U, tallies[i].inexact);
        EXPECT_EQ(0U, tallies[i].beyondUlp);
        EXPECT_EQ(0U, tallies[i].unitCodes);
        EXPECT_EQ(0U, tallies[i].gammaCodes);
        RecordProperty("unlike the single-precision power on " + nameOfTarget(targets[i]),
                       std::to_string(tallies[i].notSingle));
    }
}

} // namespace
