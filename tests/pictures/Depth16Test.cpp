// 16-bit samples and linear floats: exact in both directions.
#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <ostream>
#include <vector>

#include <gtest/gtest.h>
#include <zqx/img/Color.h>

#include "zqx/pictures/codecs/Depth16.h"

namespace zqx::pictures {

namespace {

constexpr unsigned CODES = 65536;

/// The rule as it is written: limit, curve, nearest code.
long double limited(float v) {
    return v > 0.0F ? std::min(1.0L, static_cast<long double>(v)) : 0.0L; // NaN is not greater either
}
unsigned nearestCode(float v) {
    return static_cast<unsigned>(std::floor(65535.0L * std::pow(limited(v), 1.0L / 2.2L) + 0.5L));
}
unsigned nearestUnitCode(float v) {
    return static_cast<unsigned>(std::floor(65535.0L * limited(v) + 0.5L));
}

/// Calls check(v) for floats of all kinds, each some way from the next.
template <typename Check>
void forFloatsOfAllKinds(const Check& check) {
    constexpr std::uint64_t STRIDE = 1021; // a prime: every bit takes both values
    for (std::uint64_t bits = 0; bits <= UINT32_MAX; bits += STRIDE) {
        if (!check(std::bit_cast<float>(static_cast<std::uint32_t>(bits)))) {
            return;
        }
    }
}

/// Calls check(v) for the floats around the places where each code begins.
template <typename Check>
void forFloatsAroundThresholds(double exponent, const Check& check) {
    constexpr int NEIGHBOURS = 3;
    for (unsigned code = 1; code < CODES; ++code) {
        auto v = static_cast<float>(std::pow((code - 0.5) / 65535.0, exponent));
        for (int i = 0; i < NEIGHBOURS; ++i) {
            v = std::nextafter(v, 0.0F);
        }
        for (int i = 0; i <= 2 * NEIGHBOURS; ++i, v = std::nextafter(v, 2.0F)) {
            if (!check(v)) {
                return;
            }
        }
    }
}

bool isEncodedRight(float v) {
    EXPECT_EQ(encode16(v), nearestCode(v)) << std::hexfloat << v;
    return encode16(v) == nearestCode(v);
}

bool isUnitEncodedRight(float v) {
    EXPECT_EQ(encodeUnit16(v), nearestUnitCode(v)) << std::hexfloat << v;
    return encodeUnit16(v) == nearestUnitCode(v);
}

class Depth16RowTest : public ::testing::TestWithParam<std::size_t> {};

} // namespace

TEST(Depth16Test, EveryCodeComesBack) {
    for (unsigned code = 0; code < CODES; ++code) {
        ASSERT_EQ(encode16(decode16(static_cast<std::uint16_t>(code))), code);
    }
}

TEST(Depth16Test, DecodingIsThePowerRoundedToTheNearestFloat) {
    for (unsigned code = 0; code < CODES; ++code) {
        ASSERT_EQ(decode16(static_cast<std::uint16_t>(code)), static_cast<float>(std::pow(code / 65535.0L, 2.2L)))
            << code;
    }
}

TEST(Depth16Test, BytesAreTheSameLightInBothDepths) {
    for (unsigned byte = 0; byte < 256; ++byte) {
        ASSERT_EQ(decode16(static_cast<std::uint16_t>(257 * byte)), img::srgb2linear(static_cast<unsigned char>(byte)));
    }
}

TEST(Depth16Test, FloatsAroundEveryThresholdGetTheNearestCode) {
    forFloatsAroundThresholds(2.2, isEncodedRight);
}

TEST(Depth16Test, FloatsOfAllKindsGetTheNearestCode) {
    forFloatsOfAllKinds(isEncodedRight);
}

TEST(Depth16Test, ValuesBeyondTheRangeAreLimitedAndNotANumberIsBlack) {
    constexpr float INF = std::numeric_limits<float>::infinity();
    constexpr float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();
    for (const auto encode : {encode16, encodeUnit16}) {
        for (const float black : {0.0F, -0.0F, -1.0F, -INF, NOT_A_NUMBER, -NOT_A_NUMBER, 1e-45F, -1e-45F}) {
            EXPECT_EQ(encode(black), 0) << black;
        }
        for (const float white : {1.0F, std::nextafter(1.0F, 0.0F), std::nextafter(1.0F, 2.0F), 3e38F, INF}) {
            EXPECT_EQ(encode(white), 65535) << white;
        }
    }
}

TEST(Depth16Test, AlphaGetsTheNearestCodeWithoutTheCurve) {
    forFloatsAroundThresholds(1.0, isUnitEncodedRight);
    forFloatsOfAllKinds(isUnitEncodedRight);
    EXPECT_EQ(encodeUnit16(0.5F), 32768); // halfway between two codes: the larger one
}

TEST_P(Depth16RowTest, AllCodesOfAllChannelsComeBack) {
    const std::size_t channels = GetParam();
    std::vector<std::uint16_t> codes(CODES * channels);
    for (std::size_t i = 0; i < codes.size(); ++i) {
        codes[i] = static_cast<std::uint16_t>(i / channels + 4099 * (i % channels));
    }
    std::vector<float> values(codes.size());
    Depth16Decoder()(codes, values.data(), channels);
    std::vector<std::uint16_t> result(codes.size());
    Depth16Encoder()(values, result.data(), channels);
    EXPECT_EQ(result, codes);
}

TEST_P(Depth16RowTest, ColourIsDecodedAndAlphaIsNot) {
    const std::size_t channels = GetParam();
    const std::vector<std::uint16_t> codes(3 * channels, 20000);
    std::vector<float> values(codes.size());
    Depth16Decoder()(codes, values.data(), channels);
    for (std::size_t i = 0; i < values.size(); ++i) {
        const float expected = i % channels == 3 ? 20000.0F / 65535.0F : 0.0734556F; // (20000 / 65535)^2.2
        ASSERT_NEAR(values[i], expected, 1e-6F) << i;
    }
}

INSTANTIATE_TEST_SUITE_P(EachNumberOfChannels, Depth16RowTest, ::testing::Values(1, 3, 4));

} // namespace zqx::pictures
