// The same picture gives the same bytes on every instruction set: whatever its floats, wherever it lies in memory.
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <hwy/targets.h>
#include <omp.h>

#include <zqx/img/GaussianBlur.h>
#include <zqx/img/Sharpen.h>

#include "simd/Targets.h"
#include "unit/support/Compare.h"
#include "unit/support/Fill.h"
#include "unit/support/Gradings.h"
#include "unit/support/GuardedImage.h"
#include "unit/support/Literal.h"

namespace {

using namespace test;
using Memory = std::vector<unsigned char>;

/// How a picture lies in memory.
struct Layout {
    std::size_t width;
    std::size_t height;
    std::size_t offset;   ///< bytes from an address that any vector may be loaded from
    std::size_t pixelGap; ///< bytes between pixels
    std::size_t rowGap;   ///< bytes between rows
};

/// A picture at any address, with any strides, floats included.
class PlacedImage {
public:
    PlacedImage(const Layout& layout, Image::Format format)
        : mRowStride(layout.width * (oracle::pixelSize(format) + layout.pixelGap) + layout.rowGap),
          mMemory(2 * MARGIN + layout.height * mRowStride, GUARD),
          mImage(base() + layout.offset, layout.width, layout.height, format,
                 oracle::pixelSize(format) + layout.pixelGap, mRowStride) {}
    PlacedImage(const PlacedImage&) = delete;
    PlacedImage& operator=(const PlacedImage&) = delete;

    Image& image() { return mImage; }
    oracle::Surface surface() const { return getSurface(mImage); }

    /// Everything around the pixels is still there.
    bool isIntact() const {
        Memory expected(mMemory.size(), GUARD);
        const oracle::Surface s = surface();
        for (std::size_t y = 0; y < s.height; ++y) {
            for (std::size_t x = 0; x < s.width; ++x) {
                const std::ptrdiff_t at = s.at(x, y) - mMemory.data();
                std::memcpy(expected.data() + at, s.at(x, y), oracle::pixelSize(s.format));
            }
        }
        return expected == mMemory;
    }

private:
    static constexpr std::size_t MARGIN = 192;
    static constexpr std::size_t ALIGNMENT = 64;
    static constexpr unsigned char GUARD = 0xA5;

    unsigned char* base() {
        const auto address = reinterpret_cast<std::uintptr_t>(mMemory.data());
        return mMemory.data() + ALIGNMENT + (ALIGNMENT - address % ALIGNMENT);
    }

    std::size_t mRowStride;
    Memory mMemory;
    StridedImage mImage;
};

/// Any byte; floats that are colours, corners of single precision, or any bits at all.
void fillWild(const oracle::Surface& surface, std::uint64_t seed) {
    Random random(seed);
    const auto anyBits = [&] {
        const auto bits = static_cast<std::uint32_t>(random.next() >> 32);
        float value;
        std::memcpy(&value, &bits, sizeof value);
        return value;
    };
    fillElements(
        surface, [&](std::size_t, std::size_t, int) { return random.byte(); },
        [&](std::size_t, std::size_t, int) { return random.below(4) == 0 ? anyBits() : random.anyFloat(); });
}

std::string describe(const Layout& layout) {
    return std::to_string(layout.width) + " pixels at " + std::to_string(layout.offset) + ", gaps " +
           std::to_string(layout.pixelGap) + " and " + std::to_string(layout.rowGap);
}

class SameBytesTest : public testing::Test {
protected:
    void SetUp() override {
        if (availableTargets().size() < 2) {
            GTEST_SKIP() << "this processor has one instruction set";
        }
        omp_set_num_threads(1); // many small pictures
    }
    void TearDown() override { omp_set_num_threads(mThreads); }

    /// Calls work() once on each instruction set but the last, and check(of that one, of the last) with its results.
    template <typename Work, typename Check>
    static void forEachTarget(Work work, Check check) {
        const std::vector<Target> targets = availableTargets();
        const auto run = [&](Target target) {
            const ForcedTarget forced(target);
            return work();
        };
        const auto expected = run(targets.back());
        for (std::size_t i = 0; i + 1 < targets.size(); ++i) {
            SCOPED_TRACE(nameOfTarget(targets[i]));
            check(run(targets[i]), expected);
        }
    }

    /// Calls work(source, target) on a wild picture on each instruction set.
    template <typename Work>
    static void expectSamePictures(Image::Format from, const Layout& fromLayout, Image::Format to,
                                   const Layout& toLayout, Work work) {
        SCOPED_TRACE(getName(from, to) + ", " + describe(fromLayout) + " to " + describe(toLayout));
        forEachTarget(
            [&] {
                PlacedImage source(fromLayout, from);
                fillWild(source.surface(), from * 16 + to + 1000 * fromLayout.width);
                auto target = std::make_unique<PlacedImage>(toLayout, to);
                work(source.image(), target->image());
                EXPECT_TRUE(target->isIntact());
                return target;
            },
            [](const std::unique_ptr<PlacedImage>& actual, const std::unique_ptr<PlacedImage>& expected) {
                EXPECT_TRUE(samePixels(actual->surface(), expected->surface()));
            });
    }

    /// Calls change(image) on a wild picture on each instruction set.
    template <typename Change>
    static void expectSameChange(Image::Format format, const Layout& layout, Change change) {
        SCOPED_TRACE(getName(format) + ", " + describe(layout));
        forEachTarget(
            [&] {
                auto image = std::make_unique<PlacedImage>(layout, format);
                fillWild(image->surface(), format + 1000 * layout.width);
                change(image->image());
                EXPECT_TRUE(image->isIntact());
                return image;
            },
            [](const std::unique_ptr<PlacedImage>& actual, const std::unique_ptr<PlacedImage>& expected) {
                EXPECT_TRUE(samePixels(actual->surface(), expected->surface()));
            });
    }

    /// Calls turn(image), which makes another one, on each instruction set.
    template <typename Turn>
    static void expectSameTurn(Image::Format format, const Layout& layout, Turn turn) {
        SCOPED_TRACE(getName(format) + ", " + describe(layout));
        PlacedImage image(layout, format);
        fillWild(image.surface(), format + 1000 * layout.width);
        forEachTarget([&] { return turn(image.image()); },
                      [](const std::shared_ptr<Image>& actual, const std::shared_ptr<Image>& expected) {
                          EXPECT_TRUE(samePixels(*actual, *expected));
                      });
    }

private:
    int mThreads = omp_get_max_threads();
};

constexpr std::size_t GREATEST_WIDTH = 70;

/// A layout for each width: every fourth is as packed as can be, the others begin anywhere and leave odd gaps.
Layout sourceLayout(std::size_t width) {
    return width % 4 == 0 ? Layout{width, 2, 0, 0, 0} : Layout{width, 2, width % 13, width % 3, width % 7};
}

Layout targetLayout(std::size_t width) {
    return width % 4 < 2 ? Layout{width, 2, 0, 0, 0} : Layout{width, 2, width % 11, width % 5, width % 9};
}

/// Copies and turns take pixels to be packed within a row.
Layout packed(Layout layout) {
    layout.pixelGap = 0;
    return layout;
}

template <typename Visit>
void forAllWidths(Visit visit) {
    for (std::size_t width = 1; width <= GREATEST_WIDTH; ++width) {
        visit(sourceLayout(width), targetLayout(width));
    }
}

/// Longer than a run, so that runs of a row meet.
constexpr Layout LONG_SOURCE = {1100, 1, 3, 0, 0};
constexpr Layout LONG_TARGET = {1100, 1, 5, 0, 0};

std::vector<NamedSettings> allSettings() {
    std::vector<NamedSettings> all = exactSettings();
    for (const auto& more : {curvedSettings(), nanSettings()}) {
        all.insert(all.end(), more.begin(), more.end());
    }
    return all;
}

template <typename Filter>
void filter(Filter filter, const Image& source, const Image& output) {
    filter.setSrcImage(source);
    filter.setOutput(output);
    filter.execute();
}

zqx::img::GaussianBlur getBlur(float sigma) {
    zqx::img::GaussianBlur blur;
    blur.setSigma(sigma);
    return blur;
}

zqx::img::Sharpen getSharpen(float radius) {
    zqx::img::Sharpen sharpen;
    sharpen.setRadius(radius);
    sharpen.setStrength(3.0F);
    return sharpen;
}

TEST(SimdTargetsTest, TheLibraryTakesTheChoiceThatIsForcedHere) {
    const ForcedTarget forced(availableTargets().back());
    hwy::GetChosenTarget().DeInit();
    FloatPicture source(Image::RGB32F, 1, {0.25F, 0.5F, 0.75F});
    source.image().convertTo(Image::SRGB8);
    EXPECT_TRUE(hwy::GetChosenTarget().IsInitialized()) << "the library keeps a choice of its own";
}

TEST(SimdTargetsTest, EveryCompiledTargetHasATestOfItsOwn) {
    const std::string registered = std::string(";") + ZQX_SIMD_TARGETS + ";";
    for (const Target target : availableTargets()) {
        const std::string name = nameOfTarget(target) == "emu128" ? "scalar" : nameOfTarget(target);
        EXPECT_NE(std::string::npos, registered.find(";" + name + ";")) << name << " is not among " << registered;
    }
}

TEST(SimdTargetsTest, NamesAreThoseOfHighwayInAnyCase) {
    EXPECT_EQ(targetNamed("avx2"), targetNamed("AVX2"));
    EXPECT_EQ(std::nullopt, targetNamed("mmx"));
    EXPECT_EQ(std::nullopt, targetNamed("unknown"));
    EXPECT_EQ(std::nullopt, targetNamed(""));
    for (const Target target : availableTargets()) {
        EXPECT_EQ(target, targetNamed(nameOfTarget(target)));
    }
}

TEST_F(SameBytesTest, ConversionOfAllPairs) {
    const auto convert = [](Image& source, Image& target) { target.convertFrom(source); };
    forAllPairs([&](Image::Format from, Image::Format to) {
        forAllWidths([&](const Layout& source, const Layout& target) {
            const bool isCopy = from == to;
            expectSamePictures(from, isCopy ? packed(source) : source, to, isCopy ? packed(target) : target, convert);
        });
        expectSamePictures(from, LONG_SOURCE, to, LONG_TARGET, convert);
    });
}

TEST_F(SameBytesTest, InversionAndAlpha) {
    for (const Image::Format format : ALL_FORMATS) {
        forAllWidths([&](const Layout& layout, const Layout&) {
            expectSameChange(format, layout, [](Image& image) { image.invert(static_cast<zqx::img::Channel>(15)); });
            expectSameChange(format, layout, zqx::img::premultiplied2StraightAlpha);
            expectSameChange(format, layout, zqx::img::straight2PremultipliedAlpha);
        });
    }
}

TEST_F(SameBytesTest, Turns) {
    for (const Image::Format format : ALL_FORMATS) {
        forAllWidths([&](const Layout& anyLayout, const Layout&) {
            const Layout layout = packed(anyLayout);
            expectSameChange(format, layout, [](Image& image) { image.flipHorizontal(); });
            expectSameChange(format, layout, [](Image& image) { image.flipVertical(); });
            expectSameTurn(format, layout, [](const Image& image) { return image.rotate90(); });
            expectSameTurn(format, layout, [](const Image& image) { return image.rotate180(); });
            expectSameTurn(format, layout, [](const Image& image) { return image.rotate270(); });
        });
    }
}

TEST_F(SameBytesTest, GradingOfAllPairsInEveryWidth) {
    const zqx::img::ColorGrading grading = makeGrading(curvedSettings().back().settings);
    const auto grade = [&](Image& source, Image& target) { grading.apply(source, target); };
    forAllPairs([&](Image::Format from, Image::Format to) {
        forAllWidths(
            [&](const Layout& source, const Layout& target) { expectSamePictures(from, source, to, target, grade); });
        expectSamePictures(from, LONG_SOURCE, to, LONG_TARGET, grade);
    });
}

TEST_F(SameBytesTest, GradingOfAllPairsWithEverySetting) {
    for (const NamedSettings& set : allSettings()) {
        SCOPED_TRACE(set.name);
        const zqx::img::ColorGrading grading = makeGrading(set.settings);
        forAllPairs([&](Image::Format from, Image::Format to) {
            expectSamePictures(from, sourceLayout(67), to, targetLayout(67),
                               [&](Image& source, Image& target) { grading.apply(source, target); });
        });
    }
}

TEST_F(SameBytesTest, GradingOfManyWildFloats) {
    for (const NamedSettings& set : allSettings()) {
        SCOPED_TRACE(set.name);
        const zqx::img::ColorGrading grading = makeGrading(set.settings);
        const Layout layout = {2000, 2, 0, 0, 0};
        expectSamePictures(Image::RGB32F, layout, Image::RGB32F, layout,
                           [&](Image& source, Image& target) { grading.apply(source, target); });
    }
}

TEST_F(SameBytesTest, FloatTables) {
    for (const NamedSettings& set : allSettings()) {
        const zqx::img::ColorGrading grading = makeGrading(set.settings);
        for (const std::size_t size : {1U, 2U, 5U, 16U, 17U}) {
            SCOPED_TRACE(set.name + ", size " + std::to_string(size));
            forEachTarget(
                [&] {
                    std::vector<float> table(3 * size * size * size);
                    grading.generate3DLUT_RGB32F(size, table.data());
                    return table;
                },
                [](const std::vector<float>& actual, const std::vector<float>& expected) {
                    for (std::size_t i = 0; i < expected.size(); ++i) {
                        ASSERT_TRUE(sameFloat(actual[i], expected[i])) << "element " << i;
                    }
                });
        }
    }
}

TEST_F(SameBytesTest, ByteTables) {
    for (const NamedSettings& set : allSettings()) {
        const zqx::img::ColorGrading grading = makeGrading(set.settings);
        for (const std::size_t size : {1U, 2U, 5U, 16U, 17U}) {
            SCOPED_TRACE(set.name + ", size " + std::to_string(size));
            forEachTarget(
                [&] {
                    Memory table(3 * size * size * size);
                    grading.generate3DLUT_SRGB8(size, table.data());
                    return table;
                },
                [](const Memory& actual, const Memory& expected) { EXPECT_TRUE(actual == expected); });
        }
    }
}

/// Layouts for filters: float rows of an output follow each other closely.
Layout outputLayout(Layout layout, Image::Format format) {
    if (oracle::facts(format).isFloat) {
        layout.rowGap = 0;
    }
    return layout;
}

TEST_F(SameBytesTest, BlurOfAllPairs) {
    forAllPairs([&](Image::Format from, Image::Format to) {
        forAllWidths([&](const Layout& source, const Layout& target) {
            const float sigma = 0.5F * static_cast<float>(1 + source.width % 12);
            expectSamePictures(from, source, to, outputLayout(target, to),
                               [&](Image& input, Image& output) { filter(getBlur(sigma), input, output); });
        });
    });
}

TEST_F(SameBytesTest, SharpeningOfAllPairs) {
    forAllPairs([&](Image::Format from, Image::Format to) {
        forAllWidths([&](const Layout& source, const Layout& target) {
            const float radius = 0.5F * static_cast<float>(1 + source.width % 12);
            expectSamePictures(from, source, to, outputLayout(target, to),
                               [&](Image& input, Image& output) { filter(getSharpen(radius), input, output); });
        });
    });
}

TEST_F(SameBytesTest, FiltersOfTallPictures) {
    const Layout tall = {1037, 61, 0, 0, 0};
    for (const Image::Format format : ALL_FORMATS) {
        for (const float sigma : {1.0F, 3.0F}) {
            expectSamePictures(format, tall, format, tall,
                               [&](Image& input, Image& output) { filter(getBlur(sigma), input, output); });
            expectSamePictures(format, tall, format, tall,
                               [&](Image& input, Image& output) { filter(getSharpen(sigma), input, output); });
        }
    }
}

} // namespace
