// Denoising with the real OpenImageDenoise: the noise goes, the rest stays.
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <zqx/img/DenoisingFilter.h>

namespace {

using zqx::img::denoiseImage;
using zqx::img::DenoisingFilter;
using zqx::img::Image;

using Floats = std::vector<float>;

/// A surface of bright and dark squares under a light that grows from left to right, seen from the front: with noise,
/// and as it would be without.
struct Render {
    enum class Range {
        DISPLAY, ///< encoded for a display, noise included below 1
        HIGH     ///< linear, light up to 10
    };

    Render(std::size_t columns, std::size_t rows, Range range = Range::DISPLAY);

    bool denoise(bool hdr = false) {
        return denoiseImage(color.data(), albedo.data(), normal.data(), width, height, hdr, error);
    }

    /// Root of the mean square of what the colour is off.
    double deviation() const;

    std::size_t width;
    std::size_t height;
    Floats clean;  ///< R, G, B
    Floats color;  ///< R, G, B, A
    Floats albedo; ///< R, G, B
    Floats normal; ///< X, Y, Z
    std::string error = "untouched";
};

/// Uniform in [-1, 1], the same in every run: a linear congruential generator with the constants of Numerical Recipes.
class Noise {
public:
    float next() {
        mState = mState * 1664525U + 1013904223U;
        return static_cast<float>(mState >> 8) / 8388607.5F - 1;
    }

private:
    std::uint32_t mState = 1;
};

Render::Render(std::size_t columns, std::size_t rows, Range range) : width(columns), height(rows) {
    Noise noise;
    const float brightest = range == Range::HIGH ? 10.0F : 0.7F;
    // Noise is one of light: it is there before the encoding.
    const float exponent = range == Range::HIGH ? 1.0F : 1 / 2.2F;
    for (std::size_t y = 0; y < height; ++y) {
        for (std::size_t x = 0; x < width; ++x) {
            const float reflectance = (x / 16 + y / 16) % 2 == 0 ? 0.8F : 0.3F;
            const float light = brightest * static_cast<float>(x + 1) / static_cast<float>(width);
            for (const float depth : {0.0F, 0.0F, 1.0F}) {
                clean.push_back(std::pow(reflectance * light, exponent));
                color.push_back(std::pow(reflectance * light * (1 + 0.5F * noise.next()), exponent));
                albedo.push_back(reflectance);
                normal.push_back(depth);
            }
            color.push_back(noise.next()); // alpha
        }
    }
}

double Render::deviation() const {
    double sum = 0;
    for (std::size_t i = 0; i < clean.size(); ++i) {
        const double difference = color[i / 3 * 4 + i % 3] - clean[i];
        sum += difference * difference;
    }
    return std::sqrt(sum / static_cast<double>(clean.size()));
}

/// The mean of the right eighth of a picture, where the light is strongest.
double meanOfBrightest(const Render& render) {
    double sum = 0;
    std::size_t count = 0;
    for (std::size_t y = 0; y < render.height; ++y) {
        for (std::size_t x = render.width - render.width / 8; x < render.width; ++x, ++count) {
            sum += render.color[(y * render.width + x) * 4];
        }
    }
    return sum / static_cast<double>(count);
}

Image view(Floats& floats, const Render& render) {
    return Image(floats.data(), render.width, render.height, Image::RGB32F, 0);
}

Floats withoutAlpha(const Render& render) {
    Floats floats;
    for (std::size_t i = 0; i < render.clean.size(); ++i) {
        floats.push_back(render.color[i / 3 * 4 + i % 3]);
    }
    return floats;
}

bool haveEqualBits(const Floats& first, const Floats& second) {
    return first.size() == second.size() && std::memcmp(first.data(), second.data(), first.size() * sizeof(float)) == 0;
}

/// A filter on the images of a render.
struct FilterOnRender {
    explicit FilterOnRender(Render& render)
        : color(withoutAlpha(render)), output(color.size(), -1), colorView(view(color, render)),
          outputView(view(output, render)) {
        filter.setInput(DenoisingFilter::COLOR, colorView);
        filter.setInput(DenoisingFilter::ALBEDO, view(render.albedo, render));
        filter.setInput(DenoisingFilter::NORMAL, view(render.normal, render));
        filter.setOutput(outputView);
    }

    Floats color;
    Floats output;
    Image colorView;
    Image outputView;
    DenoisingFilter filter;
};

TEST(RealDenoiser, NoiseFallsToLessThanAThird) {
    Render render(128, 96);
    const double before = render.deviation();
    ASSERT_TRUE(render.denoise()) << render.error;
    EXPECT_LT(render.deviation(), before / 3);
    EXPECT_EQ("untouched", render.error);
}

TEST(RealDenoiser, NoiseOfHdrPicturesFallsToLessThanAThird) {
    Render render(128, 96, Render::Range::HIGH);
    const double before = render.deviation();
    ASSERT_TRUE(render.denoise(true)) << render.error;
    EXPECT_LT(render.deviation(), before / 3);
}

TEST(RealDenoiser, AlbedoKeepsTheSquaresApart) {
    Render seen(128, 96);
    Render unseen(128, 96);
    unseen.albedo.assign(unseen.albedo.size(), 0.5F);
    ASSERT_TRUE(seen.denoise()) << seen.error;
    ASSERT_TRUE(unseen.denoise()) << unseen.error;
    EXPECT_LT(seen.deviation(), unseen.deviation() * 0.8);
}

TEST(RealDenoiser, AlphaSurvivesBitForBit) {
    Render render(64, 64);
    render.color[3] = std::numeric_limits<float>::quiet_NaN();
    render.color[7] = -0.0F;
    const Floats before = render.color;
    ASSERT_TRUE(render.denoise()) << render.error;
    for (std::size_t i = 3; i < before.size(); i += 4) {
        ASSERT_EQ(0, std::memcmp(&before[i], &render.color[i], sizeof(float))) << "element " << i;
    }
}

TEST(RealDenoiser, ValuesAboveOneSurviveWithHdr) {
    Render render(128, 64, Render::Range::HIGH);
    const double before = meanOfBrightest(render);
    ASSERT_TRUE(render.denoise(true)) << render.error;
    EXPECT_NEAR(before, meanOfBrightest(render), before / 10);
    EXPECT_GT(before, 4);
}

TEST(RealDenoiser, ValuesAboveOneAreCutWithoutHdr) {
    Render render(128, 64, Render::Range::HIGH);
    ASSERT_TRUE(render.denoise(false)) << render.error;
    EXPECT_LE(meanOfBrightest(render), 1);
}

TEST(RealDenoiser, SizesMayChangeBetweenCalls) {
    for (const std::size_t size : {64U, 100U, 33U, 128U}) {
        Render render(size, size / 2 + 20);
        const double before = render.deviation();
        ASSERT_TRUE(render.denoise()) << render.error;
        EXPECT_LT(render.deviation(), before / 2) << "width " << size;
    }
}

TEST(RealDenoiser, RepeatedRunsGiveIdenticalBits) {
    Render first(96, 64);
    Render other(64, 96);
    Render second(96, 64);
    ASSERT_TRUE(first.denoise()) << first.error;
    ASSERT_TRUE(other.denoise()) << other.error;
    ASSERT_TRUE(second.denoise()) << second.error;
    EXPECT_TRUE(haveEqualBits(first.color, second.color));
}

TEST(RealDenoiser, OutputMayBeTheColourInput) {
    Render render(96, 64);
    FilterOnRender apart(render);
    ASSERT_TRUE(apart.filter.execute()) << apart.filter.getErrorMessage();
    FilterOnRender inPlace(render);
    inPlace.filter.setOutput(inPlace.colorView);
    ASSERT_TRUE(inPlace.filter.execute()) << inPlace.filter.getErrorMessage();
    EXPECT_TRUE(haveEqualBits(apart.output, inPlace.color));
    EXPECT_FALSE(haveEqualBits(apart.output, apart.color));
}

TEST(RealDenoiser, StridesDoNotMatter) {
    Render render(96, 64);
    FilterOnRender packed(render);
    ASSERT_TRUE(packed.filter.execute()) << packed.filter.getErrorMessage();

    FilterOnRender strided(render);
    Floats target(100 * 70 * 4, -1);
    Image parent(target.data(), 100, 70, Image::RGBA32F, 0);
    const Image inside = parent.getSubImage(3, 5, 96, 64);
    strided.filter.setInput(DenoisingFilter::COLOR, Image(render.color.data(), 96, 64, Image::RGBA32F, 0));
    strided.filter.setOutput(inside);
    ASSERT_TRUE(strided.filter.execute()) << strided.filter.getErrorMessage();

    std::size_t different = 0;
    for (std::size_t i = 0; i < packed.output.size(); ++i) {
        const auto* pixel = static_cast<const float*>(inside.getPixelPtr(i / 3 % 96, i / 3 / 96));
        different += pixel[i % 3] != packed.output[i] ? 1 : 0;
    }
    EXPECT_EQ(0U, different);
    EXPECT_EQ(-1, target[(5 * 100 + 2) * 4]) << "left of the picture";
    EXPECT_EQ(-1, target[(5 * 100 + 3) * 4 + 3]) << "alpha of its first pixel";
}

/// Versions differ by a word or two.
bool mentions(const std::string& subject, const DenoisingFilter& filter) {
    return filter.getErrorMessage().find(subject) != std::string::npos;
}

TEST(RealDenoiser, ErrorsComeBackInTheLibrarysWords) {
    Render render(32, 32);
    FilterOnRender on(render);
    Image narrow(on.color.data(), 16, 32, Image::RGB32F, 0);
    on.filter.setInput(DenoisingFilter::COLOR, narrow.getSubImage(0, 0, 32, 16));
    EXPECT_FALSE(on.filter.execute());
    EXPECT_TRUE(mentions("smaller than width * pixel stride", on.filter)) << on.filter.getErrorMessage();
    EXPECT_EQ(Floats(on.output.size(), -1), on.output);
}

TEST(RealDenoiser, ErrorOfOneRunDoesNotReachTheNext) {
    Render render(32, 32);
    FilterOnRender on(render);
    on.filter.setInput(DenoisingFilter::COLOR, Image(on.color.data(), 32, 32, Image::RGB32F, 12));
    EXPECT_FALSE(on.filter.execute());
    on.filter.setInput(DenoisingFilter::COLOR, on.colorView);
    EXPECT_TRUE(on.filter.execute());
    EXPECT_TRUE(mentions("smaller than width * pixel stride", on.filter)) << "the message stays";
}

TEST(RealDenoiser, BytesAreNotTakenForFloats) {
    Render render(32, 32);
    FilterOnRender on(render);
    std::vector<unsigned char> bytes(32 * 32 * 3);
    on.filter.setInput(DenoisingFilter::COLOR, Image(bytes.data(), 32, 32, Image::RGB8, 0));
    EXPECT_FALSE(on.filter.execute());
    EXPECT_TRUE(mentions("smaller than pixel size", on.filter)) << on.filter.getErrorMessage();
}

} // namespace
