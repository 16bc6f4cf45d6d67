// 16-bit samples and linear floats: exact in both directions.
#include "kernels/samples/Codes16.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "internals/support/Floats.h"
#include "oracle/Nearest.h"
#include "unit/support/Fill.h"
#include "unit/support/GuardedImage.h"

namespace {

using namespace zqx::img::kernels;
using test::GuardedImage;
using zqx::img::Image;

constexpr unsigned CODES = 65536;

bool isEncodedRight(float v) {
    EXPECT_EQ(oracle::nearestWord(v), encode16(v)) << std::hexfloat << v;
    return oracle::nearestWord(v) == encode16(v);
}

bool isLinearEncodedRight(float v) {
    EXPECT_EQ(oracle::nearestLinearWord(v), encodeUnit16(v)) << std::hexfloat << v;
    return oracle::nearestLinearWord(v) == encodeUnit16(v);
}

TEST(Codes16, EveryCodeComesBack) {
    for (unsigned code = 0; code < CODES; ++code) {
        ASSERT_EQ(code, encode16(decode16(static_cast<std::uint16_t>(code))));
    }
}

TEST(Codes16, DecodingIsThePowerRoundedToTheNearestFloat) {
    for (unsigned code = 0; code < CODES; ++code) {
        ASSERT_EQ(static_cast<float>(std::pow(code / 65535.0L, 2.2L)), decode16(static_cast<std::uint16_t>(code)));
    }
}

TEST(Codes16, BytesAreTheSameLightInBothDepths) {
    for (unsigned byte = 0; byte < 256; ++byte) {
        ASSERT_EQ(oracle::decodePower(static_cast<unsigned char>(byte)),
                  decode16(static_cast<std::uint16_t>(257 * byte)));
    }
}

TEST(Codes16, FloatsAroundEveryThresholdGetTheNearestCode) {
    for (unsigned code = 1; code < CODES; ++code) {
        const auto threshold = static_cast<float>(std::pow((code - 0.5) / 65535.0, 2.2));
        ASSERT_TRUE(test::forNeighbours(threshold, isEncodedRight));
    }
}

TEST(Codes16, FloatsOfAllKindsGetTheNearestCode) {
    test::forFloatsOfAllKinds(isEncodedRight);
}

TEST(Codes16, AlphaGetsTheNearestCodeWithoutTheCurve) {
    for (unsigned code = 1; code < CODES; ++code) {
        ASSERT_TRUE(test::forNeighbours(static_cast<float>((code - 0.5) / 65535.0), isLinearEncodedRight));
    }
    test::forFloatsOfAllKinds(isLinearEncodedRight);
    EXPECT_EQ(32768, encodeUnit16(0.5F)); // halfway between two codes: the larger one
}

TEST(Codes16, ValuesBeyondTheRangeAreLimitedAndNotANumberIsBlack) {
    using Limits = std::numeric_limits<float>;
    for (const auto encode : {encode16, encodeUnit16}) {
        for (const float black : {0.0F, -0.0F, -1.0F, -Limits::infinity(), Limits::quiet_NaN(), -Limits::quiet_NaN(),
                                  Limits::denorm_min(), -Limits::denorm_min()}) {
            EXPECT_EQ(0, encode(black)) << black;
        }
        for (const float white :
             {1.0F, std::nextafter(1.0F, 0.0F), std::nextafter(1.0F, 2.0F), Limits::max(), Limits::infinity()}) {
            EXPECT_EQ(65535, encode(white)) << white;
        }
    }
}

/// Float formats and their channels, in images whose pixels and rows leave gaps.
class Codes16ImageTest : public testing::TestWithParam<Image::Format> {
protected:
    static constexpr std::size_t WIDTH = 37;
    static constexpr std::size_t HEIGHT = 5;
    static constexpr std::size_t GAP = 3; ///< samples behind each row of codes
    static constexpr std::uint16_t GUARD = 0xA5A5;

    std::size_t channels() const { return static_cast<std::size_t>(oracle::facts(GetParam()).channels); }
    std::size_t rowSamples() const { return WIDTH * channels() + GAP; }

    template <typename Sample>
    SampleView<Sample> getView(Sample* samples) const {
        return {samples, WIDTH, HEIGHT, channels(), rowSamples() * sizeof(Sample)};
    }
};

TEST_P(Codes16ImageTest, ColourIsDecodedAndAlphaIsNot) {
    std::vector<std::uint16_t> codes(HEIGHT * rowSamples());
    for (std::size_t i = 0; i < codes.size(); ++i) {
        codes[i] = static_cast<std::uint16_t>(i * 40503);
    }
    GuardedImage image(WIDTH, HEIGHT, GetParam(), {4, 12});
    decodeCodes16(getView<const std::uint16_t>(codes.data()), image.image());
    EXPECT_TRUE(image.guardsIntact());
    for (std::size_t y = 0; y < HEIGHT; ++y) {
        for (std::size_t i = 0; i < WIDTH * channels(); ++i) {
            const std::uint16_t code = codes[y * rowSamples() + i];
            const std::size_t channel = i % channels();
            const float expected = channel == 3 ? static_cast<float>(code) / 65535.0F : decode16(code);
            ASSERT_EQ(expected, oracle::loadFloat(image.surface().at(i / channels(), y) + 4 * channel)) << i;
        }
    }
}

TEST_P(Codes16ImageTest, FloatsOfAnyKindAreEncoded) {
    GuardedImage image(WIDTH, HEIGHT, GetParam(), {8, 4});
    test::fillRandom(image.surface(), 16);
    std::vector<std::uint16_t> codes(HEIGHT * rowSamples(), GUARD);
    encodeCodes16(image.image(), getView<std::uint16_t>(codes.data()));
    for (std::size_t y = 0; y < HEIGHT; ++y) {
        for (std::size_t i = 0; i < WIDTH * channels(); ++i) {
            const std::size_t channel = i % channels();
            const float value = oracle::loadFloat(image.surface().at(i / channels(), y) + 4 * channel);
            const unsigned expected = channel == 3 ? oracle::nearestLinearWord(value) : oracle::nearestWord(value);
            ASSERT_EQ(expected, codes[y * rowSamples() + i]) << value;
        }
        for (std::size_t i = WIDTH * channels(); i < rowSamples(); ++i) {
            ASSERT_EQ(GUARD, codes[y * rowSamples() + i]);
        }
    }
}

TEST_P(Codes16ImageTest, RowsAreConvertedAsImagesAre) {
    std::vector<std::uint16_t> codes(WIDTH * channels());
    for (std::size_t i = 0; i < codes.size(); ++i) {
        codes[i] = static_cast<std::uint16_t>(i * 40503);
    }
    std::vector<float> values(codes.size());
    decodeCodes16(codes, channels(), values.data());
    std::vector<float> expected(codes.size());
    Image expectedImage(expected.data(), WIDTH, 1, GetParam(), 0);
    decodeCodes16(SampleView<const std::uint16_t>{codes.data(), WIDTH, 1, channels(), 0}, expectedImage);
    EXPECT_EQ(expected, values);
    std::vector<std::uint16_t> back(codes.size());
    encodeCodes16(values, channels(), back.data());
    EXPECT_EQ(codes, back);
}

TEST_P(Codes16ImageTest, AllCodesOfAllChannelsComeBack) {
    std::vector<std::uint16_t> codes(CODES * channels());
    for (std::size_t i = 0; i < codes.size(); ++i) {
        codes[i] = static_cast<std::uint16_t>(i / channels() + 4099 * (i % channels()));
    }
    std::vector<float> values(codes.size());
    decodeCodes16(codes, channels(), values.data());
    std::vector<std::uint16_t> back(codes.size());
    encodeCodes16(values, channels(), back.data());
    EXPECT_EQ(codes, back);
}

TEST_P(Codes16ImageTest, RowsThatBeginAtTheBottomAreTurnedOver) {
    std::vector<std::uint16_t> codes(HEIGHT * rowSamples());
    for (std::size_t i = 0; i < codes.size(); ++i) {
        codes[i] = static_cast<std::uint16_t>(i * 40503);
    }
    GuardedImage image(WIDTH, HEIGHT, GetParam(), {4, 12});
    SampleView<const std::uint16_t> source = getView<const std::uint16_t>(codes.data());
    source.bottomFirst = true;
    decodeCodes16(source, image.image());
    std::vector<std::uint16_t> turned(codes.size(), GUARD);
    encodeCodes16(image.image(), getView<std::uint16_t>(turned.data()));
    std::vector<std::uint16_t> back(codes.size(), GUARD);
    SampleView<std::uint16_t> target = getView<std::uint16_t>(back.data());
    target.bottomFirst = true;
    encodeCodes16(image.image(), target);
    for (std::size_t y = 0; y < HEIGHT; ++y) {
        for (std::size_t i = 0; i < WIDTH * channels(); ++i) {
            ASSERT_EQ(codes[y * rowSamples() + i], turned[(HEIGHT - 1 - y) * rowSamples() + i]) << y;
            ASSERT_EQ(codes[y * rowSamples() + i], back[y * rowSamples() + i]) << y;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(EachFormat, Codes16ImageTest, testing::ValuesIn(test::FLOAT_FORMATS),
                         [](const auto& each) { return test::getName(each.param); });

} // namespace
