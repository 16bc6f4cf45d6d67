// Images put together: rectangles, halves, and what lies over a ground.
#include "kernels/geometry/Compose.h"

#include <algorithm>
#include <memory>
#include <vector>

#include <gtest/gtest.h>

#include "unit/support/Compare.h"
#include "unit/support/Fill.h"
#include "unit/support/GuardedImage.h"

namespace {

using namespace zqx::img::kernels;
using test::GuardedImage;
using zqx::img::Image;

constexpr float GROUND = 0.25F;

/// Straight alpha over the ground, by way of a whole image of floats.
std::shared_ptr<Image> overGroundLiterally(const Image& image) {
    std::shared_ptr<Image> floats = image.convertTo(Image::RGBA32F);
    const oracle::Surface s = test::getSurface(*floats);
    for (std::size_t y = 0; y < s.height; ++y) {
        for (std::size_t x = 0; x < s.width; ++x) {
            oracle::Values color = oracle::readStored(s, x, y);
            const float alpha = color.a < 0.0F ? 0.0F : color.a;
            if (alpha < 1.0F) {
                color = {alpha * color.r + (1.0F - alpha) * GROUND, alpha * color.g + (1.0F - alpha) * GROUND,
                         alpha * color.b + (1.0F - alpha) * GROUND, 1.0F};
            }
            oracle::writeLinear(s, x, y, color);
        }
    }
    return floats;
}

TEST(Compose, WhatHasAlphaComesToLieOverTheGround) {
    for (const Image::Format from : {Image::RGBA8, Image::SRGBA8, Image::SBGRA8, Image::RGBA32F}) {
        for (const Image::Format to : test::ALL_FORMATS) {
            SCOPED_TRACE(test::getName(from, to));
            GuardedImage source(521, 3, from, {3, 5});
            test::fillRandom(source.surface(), 10);
            GuardedImage target(521, 3, to, {1, 7});
            placeOver(source.image(), target.image(), GROUND);
            EXPECT_TRUE(target.guardsIntact());
            GuardedImage expected(521, 3, to);
            expected.image().convertFrom(*overGroundLiterally(source.image()));
            EXPECT_TRUE(test::samePixels(target.surface(), expected.surface()));
        }
    }
}

TEST(Compose, WhatHasNoAlphaIsConverted) {
    for (const Image::Format from : {Image::SGRAY8, Image::SBGR8, Image::RGB32F}) {
        for (const Image::Format to : test::ALL_FORMATS) {
            SCOPED_TRACE(test::getName(from, to));
            GuardedImage source(67, 3, from, {0, 5});
            test::fillRandom(source.surface(), 11);
            GuardedImage target(67, 3, to, {0, 7});
            placeOver(source.image(), target.image(), GROUND);
            EXPECT_TRUE(target.guardsIntact());
            GuardedImage expected(67, 3, to);
            expected.image().convertFrom(source.image());
            EXPECT_TRUE(test::samePixels(target.surface(), expected.surface()));
        }
    }
}

TEST(Compose, ARectangleTakesThePixelAndNothingElseDoes) {
    const std::vector<std::uint8_t> pixel = {1, 2, 3};
    GuardedImage image(9, 7, Image::SRGB8, {2, 4});
    test::fillSweep(image.surface());
    GuardedImage before(9, 7, Image::SRGB8, {2, 4});
    before.setMemory(image.memory());
    fillRectangle(image.image(), {2, 1, 4, 5}, pixel);
    EXPECT_TRUE(image.guardsIntact());
    for (std::size_t y = 0; y < 7; ++y) {
        for (std::size_t x = 0; x < 9; ++x) {
            const bool isInside = x >= 2 && x < 6 && y >= 1 && y < 6;
            const unsigned char* expected = isInside ? pixel.data() : before.surface().at(x, y);
            EXPECT_TRUE(std::equal(expected, expected + 3, image.surface().at(x, y))) << x << ", " << y;
        }
    }
}

/// 255 in bytes and 1 in floats, alpha too.
bool isWhite(const oracle::Surface& s, std::size_t x, std::size_t y) {
    for (int channel = 0; channel < oracle::facts(s.format).channels; ++channel) {
        if (oracle::storedChannel(s, x, y, channel) != 1.0F) {
            return false;
        }
    }
    return true;
}

TEST(Compose, HalvesMeetAtAWhiteLine) {
    for (const Image::Format format : test::ALL_FORMATS) {
        for (const std::size_t width : {1U, 2U, 3U, 8U, 37U}) {
            SCOPED_TRACE(test::getName(format) + " " + std::to_string(width));
            GuardedImage left(width, 5, format, {0, 4});
            test::fillRandom(left.surface(), 1);
            GuardedImage right(width, 5, format, {0, 8});
            test::fillRandom(right.surface(), 2);
            GuardedImage image(width, 5, format, {0, 8});
            image.setMemory(right.memory());
            splitWith(left.image(), image.image());
            EXPECT_TRUE(image.guardsIntact());
            for (std::size_t x = 0; x < width; ++x) {
                const bool isLine = x + 1 == width / 2 || x == width / 2;
                const GuardedImage& half = x < width / 2 ? left : right;
                const std::size_t size = oracle::pixelSize(format);
                EXPECT_TRUE(isLine ? isWhite(image.surface(), x, 3)
                                   : std::equal(half.surface().at(x, 3), half.surface().at(x, 3) + size,
                                                image.surface().at(x, 3)))
                    << x;
            }
        }
    }
}

} // namespace
