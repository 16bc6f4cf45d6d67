// Two pictures side by side, row by row in doubles, which hold every number of both exactly.
#include <zqx/tools/Compare.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <vector>

#include <zqx/img/Color.h>

#include "kernels/ScalarMaths.h"
#include "zqx/pictures/codecs/Alpha.h"
#include "zqx/pictures/codecs/Depth16.h"

namespace zqx::tools {

using namespace pictures;

namespace {

/// The places of red, green, blue and alpha where blue comes first.
constexpr std::array<std::size_t, 4> BLUE_FIRST = {2, 1, 0, 3};

std::size_t channelsOf(const Picture& picture) {
    return channelCount(picture.pixels.layout());
}

ComparisonScale commonScale(const Picture& a, const Picture& b) {
    const int depth = std::max(bitsPerChannel(a.stored), bitsPerChannel(b.stored));
    return {depth < 32, depth == 8 ? 255.0 : depth == 16 ? 65535.0 : 1.0};
}

/// Hands out the numbers of a picture on a scale, row by row, the channels of a pixel in the order red, green, blue,
/// alpha.
class Numbers {
public:
    Numbers(const Picture& picture, ComparisonScale scale)
        : mImage(picture.image()), mScale(scale), mChannels(channelsOf(picture)), mRow(picture.width() * mChannels) {}

    const std::vector<double>& row(unsigned y) {
        const void* row = mImage.getRowPtr(y);
        if (mImage.hasFloatFormat()) {
            readFloats(static_cast<const float*>(row));
        } else {
            readBytes(static_cast<const unsigned char*>(row));
        }
        return mRow;
    }

private:
    bool isAlpha(std::size_t i) const { return mChannels == 4 && i % 4 == 3; }

    void readFloats(const float* row) {
        for (std::size_t i = 0; i < mRow.size(); ++i) {
            mRow[i] = !mScale.encoded ? row[i] : isAlpha(i) ? encodeUnit16(row[i]) : encode16(row[i]);
        }
    }

    void readBytes(const unsigned char* row) {
        const bool blueFirst = mImage.isBGR();
        const double step = mScale.white / 255.0; // a whole number of codes of 16 bits, too
        for (std::size_t i = 0; i < mRow.size(); ++i) {
            const std::size_t channel = i % mChannels;
            const unsigned char byte = row[blueFirst ? i - channel + BLUE_FIRST[channel] : i];
            mRow[i] = mScale.encoded ? byte * step
                      : isAlpha(i)   ? byte / 255.0
                                     : static_cast<double>(img::srgb2linear(byte));
        }
    }

    const img::Image& mImage;
    ComparisonScale mScale;
    std::size_t mChannels;
    std::vector<double> mRow;
};

double distance(double a, double b) {
    if (a == b || (std::isnan(a) && std::isnan(b))) {
        return 0.0;
    }
    const double difference = std::abs(a - b);
    return std::isnan(difference) ? std::numeric_limits<double>::infinity() : difference;
}

class Summary {
public:
    Summary(ComparisonScale scale, std::size_t channels) : mChannels(channels) { mComparison.scale = scale; }

    void addRow(const std::vector<double>& a, const std::vector<double>& b, unsigned y) {
        for (std::size_t first = 0; first < a.size(); first += mChannels) {
            bool differs = false;
            for (std::size_t channel = 0; channel < mChannels; ++channel) {
                const double difference = distance(a[first + channel], b[first + channel]);
                mSum += difference;
                mSumOfSquares += difference * difference;
                differs |= difference > 0.0;
                if (difference > mComparison.largest) {
                    mComparison.largest = difference;
                    mComparison.x = static_cast<unsigned>(first / mChannels);
                    mComparison.y = y;
                    mComparison.channel = channel;
                }
            }
            ++mComparison.pixels;
            mComparison.differingPixels += differs ? 1 : 0;
        }
    }

    Comparison finish() {
        const double white = mComparison.scale.white;
        const double numbers = static_cast<double>(mComparison.pixels) * static_cast<double>(mChannels);
        mComparison.mean = mSum / numbers;
        mComparison.psnr = -10.0 * img::kernels::maths::log10(mSumOfSquares / numbers / (white * white));
        return mComparison;
    }

private:
    std::size_t mChannels;
    Comparison mComparison{};
    double mSum = 0.0;
    double mSumOfSquares = 0.0;
};

} // namespace

bool isComparable(const Picture& a, const Picture& b) {
    return a.width() == b.width() && a.height() == b.height() && channelsOf(a) == channelsOf(b);
}

void alignAlpha(Picture& a, Picture& b) {
    if (a.alpha != b.alpha) {
        straightenAlpha(a);
        straightenAlpha(b);
    }
}

Comparison compare(const Picture& a, const Picture& b) {
    const ComparisonScale scale = commonScale(a, b);
    Numbers left(a, scale);
    Numbers right(b, scale);
    Summary summary(scale, channelsOf(a));
    for (unsigned y = 0; y < a.height(); ++y) {
        summary.addRow(left.row(y), right.row(y), y);
    }
    return summary.finish();
}

PixelBuffer paintDifferences(const Picture& a, const Picture& b, const Comparison& comparison) {
    const std::size_t channels = channelsOf(a);
    const std::size_t painted = std::min<std::size_t>(channels, 3);
    PixelBuffer pixels(a.width(), a.height(), painted == 1 ? SampleLayout::GRAY8 : SampleLayout::RGB8);
    const double factor = comparison.largest > 0.0 ? 255.0 / comparison.largest : 0.0;
    const auto shade = [=](double difference) { // rounded up: any difference at
                                                // all is to be seen
        return static_cast<unsigned char>(std::isfinite(difference) ? std::min(std::ceil(factor * difference), 255.0)
                                                                    : 255.0);
    };
    const bool blueFirst = pixels.image().isBGR();
    Numbers left(a, comparison.scale);
    Numbers right(b, comparison.scale);
    for (unsigned y = 0; y < a.height(); ++y) {
        const std::vector<double>& from = left.row(y);
        const std::vector<double>& to = right.row(y);
        auto* pixel = static_cast<unsigned char*>(pixels.image().getRowPtr(y));
        for (std::size_t at = 0; at < from.size(); at += channels, pixel += painted) {
            const double alpha = channels == 4 ? distance(from[at + 3], to[at + 3]) : 0.0;
            for (std::size_t channel = 0; channel < painted; ++channel) {
                const double difference = std::max(distance(from[at + channel], to[at + channel]), alpha);
                pixel[blueFirst ? BLUE_FIRST[channel] : channel] = shade(difference);
            }
        }
    }
    return pixels;
}

} // namespace zqx::tools
