// Colours divided by alpha and multiplied by it, as files hold them.
#include "kernels/samples/Premultiply.h"

#include <cmath>
#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include "unit/support/Compare.h"
#include "unit/support/Fill.h"
#include "unit/support/GuardedImage.h"
#include "unit/support/Literal.h"

namespace {

using namespace zqx::img::kernels;
using test::GuardedImage;
using zqx::img::Image;

/// Nearest to color / alpha, halves up, and no more than white; hidden colour stays.
std::uint64_t dividedLiterally(std::uint64_t color, std::uint64_t alpha, std::uint64_t white) {
    return alpha == 0 ? color : std::min(white, (color * white + alpha / 2) / alpha);
}

TEST(Premultiply, EveryByteIsDividedByEveryAlphaToTheNearestCode) {
    for (const Image::Format format : {Image::SRGBA8, Image::SBGRA8}) {
        GuardedImage image(256, 256, format, {3, 5});
        test::fillElements(
            image.surface(),
            [](std::size_t x, std::size_t y, int e) {
                return static_cast<unsigned char>(e == 3 ? y : x + 5 * static_cast<std::size_t>(e));
            },
            [](auto...) { return 0.0F; });
        unpremultiplyCodes(image.image());
        EXPECT_TRUE(image.guardsIntact());
        for (std::size_t alpha = 0; alpha < 256; ++alpha) {
            for (std::size_t x = 0; x < 256; ++x) {
                const unsigned char* pixel = image.surface().at(x, alpha);
                for (std::size_t e = 0; e < 3; ++e) {
                    ASSERT_EQ(dividedLiterally((x + 5 * e) % 256, alpha, 255), pixel[e]);
                }
                ASSERT_EQ(alpha, pixel[3]);
            }
        }
    }
}

TEST(Premultiply, WordsAreDividedToTheNearestCode) {
    constexpr std::size_t WIDTH = 33;
    constexpr std::size_t HEIGHT = 1000;
    constexpr std::size_t ROW = WIDTH * 4 + 3;
    test::Random random(1);
    std::vector<std::uint16_t> codes(HEIGHT * ROW);
    for (std::uint16_t& code : codes) {
        const std::uint16_t corners[] = {0, 1, 2, 32767, 65534, 65535};
        code = random.below(3) == 0 ? corners[random.below(6)] : static_cast<std::uint16_t>(random.next());
    }
    std::vector<std::uint16_t> divided = codes;
    unpremultiplyCodes(SampleView<std::uint16_t>{divided.data(), WIDTH, HEIGHT, 4, ROW * sizeof(std::uint16_t)});
    for (std::size_t i = 0; i < codes.size(); ++i) {
        const std::size_t inRow = i % ROW;
        const bool isColor = inRow < WIDTH * 4 && inRow % 4 != 3;
        const std::size_t alpha = i - inRow % 4 + 3;
        ASSERT_EQ(isColor ? dividedLiterally(codes[i], codes[alpha], 65535) : codes[i], divided[i]) << i;
    }
}

/// The colours of each pixel as change(color, alpha) makes them.
template <typename Change>
void expectColors(const oracle::Surface& before, const oracle::Surface& after, const Change& change) {
    for (std::size_t y = 0; y < before.height; ++y) {
        for (std::size_t x = 0; x < before.width; ++x) {
            const float alpha = oracle::loadFloat(before.at(x, y) + 12);
            for (std::size_t e = 0; e < 3; ++e) {
                const float color = oracle::loadFloat(before.at(x, y) + 4 * e);
                ASSERT_TRUE(test::sameFloat(change(color, alpha), oracle::loadFloat(after.at(x, y) + 4 * e)))
                    << color << ", alpha " << alpha;
            }
            ASSERT_TRUE(test::sameFloat(alpha, oracle::loadFloat(after.at(x, y) + 12)));
        }
    }
}

/// Runs change(image) on floats of all kinds and expects colours.
template <typename Operation, typename Change>
void expectChange(const Operation& operation, const Change& change) {
    GuardedImage before(67, 43, Image::RGBA32F, {4, 8});
    test::fillRandom(before.surface(), 12);
    GuardedImage after(67, 43, Image::RGBA32F, {4, 8});
    after.setMemory(before.memory());
    operation(after.image());
    EXPECT_TRUE(after.guardsIntact());
    expectColors(before.surface(), after.surface(), change);
}

TEST(Premultiply, FloatsAreDividedWhereTheyAreCovered) {
    expectChange([](Image& image) { unpremultiplyFloats(image); },
                 [](float color, float alpha) { return alpha > 0.0F ? color / alpha : color; });
}

TEST(Premultiply, FloatsAreMultipliedAndLightIsKept) {
    expectChange([](Image& image) { premultiplyFloats(image, Uncovered::KEPT); },
                 [](float color, float alpha) { return alpha > 0.0F ? color * alpha : color; });
}

TEST(Premultiply, FloatsAreMultipliedAndHiddenColourIsBlacked) {
    expectChange([](Image& image) { premultiplyFloats(image, Uncovered::BLACKED); },
                 [](float color, float alpha) { return alpha > 0.0F ? color * alpha : 0.0F; });
}

} // namespace
