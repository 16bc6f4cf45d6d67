// Smaller images, beside a literal mean in double precision.
#include "kernels/geometry/AreaAverage.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "oracle/Nearest.h"
#include "unit/support/Compare.h"
#include "unit/support/Fill.h"
#include "unit/support/GuardedImage.h"

namespace {

using test::GuardedImage;
using zqx::img::Image;
using zqx::img::kernels::averageArea;

struct Size {
    std::size_t width;
    std::size_t height;
};

/// A result line covers source lines [first, end), each with a weight of whole numbers: the length of a source line is
/// the number of result lines, and that of a result line the number of source lines.
struct Cover {
    std::size_t first;
    std::size_t end;
    std::vector<double> weights;

    Cover(std::size_t line, std::size_t lines, std::size_t sourceLines)
        : first(line * sourceLines / lines), end(((line + 1) * sourceLines + lines - 1) / lines) {
        for (std::size_t source = first; source < end; ++source) {
            const std::size_t from = std::max(line * sourceLines, source * lines);
            const std::size_t to = std::min((line + 1) * sourceLines, (source + 1) * lines);
            weights.push_back(static_cast<double>(to - from));
        }
    }
    std::size_t middle() const { return (first + end - 1) / 2; }
};

class Oracle {
public:
    Oracle(const oracle::Surface& source, const oracle::Surface& target) : mSource(source), mTarget(target) {}

    void makePixel(std::size_t x, std::size_t y) const {
        const Cover columns(x, mTarget.width, mSource.width);
        const Cover rows(y, mTarget.height, mSource.height);
        const double alpha = hasAlpha() ? mean(columns, rows, 3) : 1.0;
        for (int channel = 0; channel < channels(); ++channel) {
            unsigned char* element = at(mTarget, x, y, channel);
            if (channel == 3) {
                store(element, alpha, true);
            } else if (hasAlpha() && !(alpha > 0.0)) {
                std::memcpy(element, at(mSource, columns.middle(), rows.middle(), channel),
                            oracle::elementSize(format()));
            } else {
                store(element, hasAlpha() ? mean(columns, rows, channel) / alpha : mean(columns, rows, channel), false);
            }
        }
    }

private:
    unsigned format() const { return mSource.format; }
    int channels() const { return oracle::facts(format()).channels; }
    bool hasAlpha() const { return channels() == 4; }
    bool isFloat() const { return oracle::facts(format()).isFloat; }

    unsigned char* at(const oracle::Surface& s, std::size_t x, std::size_t y, int channel) const {
        return s.at(x, y) + static_cast<std::size_t>(channel) * oracle::elementSize(format());
    }

    /// Linear light; alpha of bytes in codes.
    double sample(std::size_t x, std::size_t y, int channel) const {
        const unsigned char* element = at(mSource, x, y, channel);
        if (isFloat()) {
            return static_cast<double>(oracle::loadFloat(element));
        }
        return channel == 3 ? *element : static_cast<double>(oracle::decodePower(*element));
    }

    /// Column by column, each from the top down; colour multiplied by alpha.
    double mean(const Cover& columns, const Cover& rows, int channel) const {
        double sum = 0.0;
        for (std::size_t x = columns.first; x < columns.end; ++x) {
            double column = 0.0;
            for (std::size_t y = rows.first; y < rows.end; ++y) {
                const double weight = rows.weights[y - rows.first] * (hasAlpha() ? sample(x, y, 3) : 1.0);
                column += channel == 3 ? weight : weight * sample(x, y, channel);
            }
            sum += columns.weights[x - columns.first] * column;
        }
        return sum / (static_cast<double>(mSource.width) * static_cast<double>(mSource.height));
    }

    void store(unsigned char* element, double value, bool isAlpha) const {
        if (isFloat()) {
            oracle::storeFloat(element, static_cast<float>(value));
        } else {
            *element = isAlpha ? static_cast<unsigned char>(std::floor(value + 0.5))
                               : oracle::nearestByte(static_cast<float>(value));
        }
    }

    oracle::Surface mSource;
    oracle::Surface mTarget;
};

constexpr Image::Format WORKING_FORMATS[] = {Image::SGRAY8, Image::SRGB8,   Image::SBGR8,  Image::SRGBA8,
                                             Image::SBGRA8, Image::GRAY32F, Image::RGB32F, Image::RGBA32F};

template <typename Fill>
void expectOracle(Image::Format format, Size from, Size to, const Fill& fill) {
    SCOPED_TRACE(test::getName(format) + " to " + std::to_string(to.width) + " x " + std::to_string(to.height));
    GuardedImage source(from.width, from.height, format, {2, 5});
    fill(source.surface());
    GuardedImage actual(to.width, to.height, format, {3, 7});
    averageArea(source.image(), actual.image());
    EXPECT_TRUE(actual.guardsIntact());
    GuardedImage expected(to.width, to.height, format);
    for (std::size_t y = 0; y < to.height; ++y) {
        for (std::size_t x = 0; x < to.width; ++x) {
            Oracle(source.surface(), expected.surface()).makePixel(x, y);
        }
    }
    EXPECT_TRUE(test::samePixels(actual.surface(), expected.surface()));
}

void fillColors(const oracle::Surface& surface) {
    test::fillPhoto(surface, 5);
}
void fillAnything(const oracle::Surface& surface) {
    test::fillRandom(surface, 6);
}

TEST(AreaAverage, IsTheMeanOfTheAreaInLinearLight) {
    for (const Image::Format format : WORKING_FORMATS) {
        for (const auto fill : {fillColors, fillAnything}) {
            expectOracle(format, {31, 23}, {7, 5}, fill);   // no whole ratio
            expectOracle(format, {24, 12}, {8, 4}, fill);   // a whole one
            expectOracle(format, {31, 23}, {30, 22}, fill); // hardly smaller
            expectOracle(format, {31, 23}, {1, 1}, fill);
        }
    }
}

TEST(AreaAverage, OneDirectionAloneIsReduced) {
    for (const Image::Format format : WORKING_FORMATS) {
        expectOracle(format, {37, 4}, {5, 4}, fillAnything);
        expectOracle(format, {4, 37}, {4, 5}, fillAnything);
        expectOracle(format, {1, 37}, {1, 5}, fillAnything);
    }
}

TEST(AreaAverage, LinearBytesGetTheNearestCodeToo) {
    GuardedImage source(4, 1, Image::GRAY8);
    const unsigned char values[] = {10, 11, 200, 255};
    std::memcpy(source.surface().at(0, 0), values, sizeof values);
    GuardedImage target(2, 1, Image::GRAY8);
    averageArea(source.image(), target.image());
    EXPECT_EQ(11, *target.surface().at(0, 0)); // 10.5
    EXPECT_EQ(228, *target.surface().at(1, 0));
}

TEST(AreaAverage, TheOwnSizeGivesTheSamePixels) {
    for (const Image::Format format :
         {Image::SGRAY8, Image::SBGR8, Image::GRAY8, Image::RGB8, Image::GRAY32F, Image::RGB32F}) {
        GuardedImage source(13, 9, format);
        fillColors(source.surface());
        GuardedImage target(13, 9, format);
        averageArea(source.image(), target.image());
        EXPECT_TRUE(test::samePixels(target.surface(), source.surface())) << test::getName(format);
    }
}

TEST(AreaAverage, EveryFlatByteStaysWhatItIs) {
    for (unsigned code = 0; code < 256; ++code) {
        GuardedImage source(29, 17, Image::SGRAY8);
        test::fillElements(
            source.surface(), [=](auto...) { return static_cast<unsigned char>(code); }, [](auto...) { return 0.0F; });
        GuardedImage target(11, 6, Image::SGRAY8);
        averageArea(source.image(), target.image());
        for (std::size_t i = 0; i < 66; ++i) {
            ASSERT_EQ(code, *target.surface().at(i % 11, i / 11));
        }
    }
}

TEST(AreaAverage, FlatFloatsKeepEveryBitWhateverTheirAlpha) {
    const float pixel[] = {0.1F, 1.0F / 3.0F, 12345.678F, 0.7F};
    for (const Image::Format format : {Image::RGB32F, Image::RGBA32F}) {
        GuardedImage source(29, 17, format);
        test::fillElements(
            source.surface(), [](auto...) { return static_cast<unsigned char>(0); },
            [&](std::size_t, std::size_t, int element) { return pixel[element]; });
        GuardedImage target(11, 6, format);
        averageArea(source.image(), target.image());
        for (std::size_t i = 0; i < 66; ++i) {
            ASSERT_EQ(0, std::memcmp(target.surface().at(i % 11, i / 11), pixel, oracle::pixelSize(format)));
        }
    }
}

TEST(AreaAverage, ANanStaysInThePixelThatCoversIt) {
    GuardedImage source(16, 16, Image::GRAY32F);
    fillColors(source.surface());
    oracle::storeFloat(source.surface().at(5, 9), std::numeric_limits<float>::quiet_NaN());
    GuardedImage target(4, 4, Image::GRAY32F);
    averageArea(source.image(), target.image());
    for (std::size_t y = 0; y < 4; ++y) {
        for (std::size_t x = 0; x < 4; ++x) {
            EXPECT_EQ(x == 1 && y == 2, std::isnan(oracle::loadFloat(target.surface().at(x, y))));
        }
    }
}

TEST(AreaAverage, AnUnknownFormatIsLeftAlone) {
    GuardedImage target(2, 2, Image::RGB8);
    averageArea(Image(nullptr, 4, 4, test::UNKNOWN_FORMATS[0], 0), target.image());
    EXPECT_EQ(std::vector<unsigned char>(target.memory().size(), 0xA5), target.memory());
}

} // namespace
