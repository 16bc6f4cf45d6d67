#include "kernels/statistics/Distance.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <vector>

#include "kernels/Rows.h"
#include "kernels/samples/Codes16.h"
#include "kernels/samples/Element.h"

namespace zqx::img::kernels {

namespace {

constexpr std::size_t ALPHA = 3; // the channel, and its place in a pixel

/// Hands out the numbers of an image on a scale, row by row, the channels of a pixel in their logical order.
class Numbers {
public:
    Numbers(const Image& image, Scale scale)
        : mImage(image), mFormat(pixelFormat(image.getFormat())),
          mScale(scale), mPlaces{mFormat.red, mFormat.green, mFormat.blue, mFormat.alpha} {}

    std::size_t channels() const { return mFormat.elementCount(); }
    std::size_t perRow() const { return mImage.getWidth() * channels(); }

    void read(std::size_t y, double* numbers) const {
        const auto* pixel = static_cast<const std::uint8_t*>(mImage.getRowPtr(y));
        for (std::size_t x = 0; x < mImage.getWidth(); ++x, pixel += mImage.getBytePixelStride()) {
            for (std::size_t channel = 0; channel < channels(); ++channel) {
                *numbers++ = mFormat.isFloat() ? numberOfFloat(pixel, channel) : numberOfByte(pixel, channel);
            }
        }
    }

private:
    double numberOfFloat(const std::uint8_t* pixel, std::size_t channel) const {
        const float value = decodeElement<Encoding::FLOAT>(pixel, mPlaces[channel]);
        if (mScale == Scale::LIGHT) {
            return static_cast<double>(value);
        }
        return channel == ALPHA ? encodeUnit16(value) : encode16(value);
    }

    double numberOfByte(const std::uint8_t* pixel, std::size_t channel) const {
        const std::uint8_t byte = pixel[mPlaces[channel]];
        if (mScale != Scale::LIGHT) {
            return byte * (white(mScale) / 255.0); // a whole number of codes of 16 bits, too
        }
        return channel == ALPHA ? byte / 255.0 : static_cast<double>(GAMMA_DECODE[byte]);
    }

    const Image& mImage;
    const PixelFormat& mFormat;
    Scale mScale;
    std::array<std::size_t, 4> mPlaces; ///< of the channels within a pixel
};

double distance(double a, double b) {
    if (a == b || (std::isnan(a) && std::isnan(b))) {
        return 0.0;
    }
    const double difference = std::abs(a - b);
    return std::isnan(difference) ? std::numeric_limits<double>::infinity() : difference;
}

/// Reads rows of two images into memory of its own, as their distances.
class RowDistances {
public:
    RowDistances(const Numbers& a, const Numbers& b) : mA(a), mB(b), mDistances(a.perRow()), mOthers(b.perRow()) {}

    const std::vector<double>& read(std::size_t y) {
        mA.read(y, mDistances.data());
        mB.read(y, mOthers.data());
        std::ranges::transform(mDistances, mOthers, mDistances.begin(), distance);
        return mDistances;
    }

private:
    const Numbers& mA;
    const Numbers& mB;
    std::vector<double> mDistances;
    std::vector<double> mOthers;
};

void add(Distances& found, const std::vector<double>& row, std::size_t y, std::size_t channels) {
    for (std::size_t first = 0; first < row.size(); first += channels) {
        bool differs = false;
        for (std::size_t channel = 0; channel < channels; ++channel) {
            const double difference = row[first + channel];
            found.sum += difference;
            found.sumOfSquares += difference * difference;
            differs |= difference > 0.0;
            if (difference > found.largest) {
                found.largest = difference;
                found.x = first / channels;
                found.y = y;
                found.channel = channel;
            }
        }
        found.differingPixels += differs ? 1 : 0;
    }
}

/// Codes of distances, the largest one white.
class Painter {
public:
    Painter(double largest, const Image& target)
        : mFactor(largest > 0.0 ? 255.0 / largest : 0.0), mTarget(target),
          mColors(pixelFormat(target.getFormat()).elementCount()), mPlaces{pixelFormat(target.getFormat()).red,
                                                                           pixelFormat(target.getFormat()).green,
                                                                           pixelFormat(target.getFormat()).blue} {}

    void paintRow(std::size_t y, const std::vector<double>& distances, std::size_t channels) const {
        auto* pixel = static_cast<std::uint8_t*>(mTarget.getRowPtr(y));
        for (std::size_t at = 0; at < distances.size(); at += channels, pixel += mTarget.getBytePixelStride()) {
            const double alpha = channels > ALPHA ? distances[at + ALPHA] : 0.0;
            for (std::size_t channel = 0; channel < mColors; ++channel) {
                pixel[mPlaces[channel]] = shade(std::max(distances[at + channel], alpha));
            }
        }
    }

private:
    std::uint8_t shade(double difference) const { // rounded up: any difference at all is to be seen
        return static_cast<std::uint8_t>(std::isfinite(difference) ? std::min(std::ceil(mFactor * difference), 255.0)
                                                                   : 255.0);
    }

    double mFactor;
    const Image& mTarget;
    std::size_t mColors;
    std::array<std::size_t, 3> mPlaces; ///< of the colours within a pixel
};

} // namespace

double white(Scale scale) {
    switch (scale) {
    case Scale::CODES_8: return 255.0;
    case Scale::CODES_16: return 65535.0;
    case Scale::LIGHT: break;
    }
    return 1.0;
}

Distances measureDistances(const Image& a, const Image& b, Scale scale) {
    const Numbers left(a, scale);
    const Numbers right(b, scale);
    // Rows are read in parallel, some for each thread, and then added up in their order: sums are the same whatever the
    // number of threads.
    constexpr std::size_t ROWS_PER_THREAD = 8;
    const std::size_t block = std::min(a.getHeight(), ROWS_PER_THREAD * threadCount());
    std::vector<RowDistances> rows(block, RowDistances(left, right));
    std::vector<const std::vector<double>*> read(block);
    Distances found;
    for (std::size_t first = 0; first < a.getHeight(); first += block) {
        const std::size_t count = std::min(block, a.getHeight() - first);
        forEachRow(count, [&](std::size_t i) { read[i] = &rows[i].read(first + i); });
        for (std::size_t i = 0; i < count; ++i) {
            add(found, *read[i], first + i, left.channels());
        }
    }
    return found;
}

void paintDistances(const Image& a, const Image& b, Scale scale, double largest, const Image& target) {
    const Numbers left(a, scale);
    const Numbers right(b, scale);
    const Painter painter(largest, target);
    std::vector<RowDistances> rows(bandCount(a.getHeight()), RowDistances(left, right));
    forEachBand(a.getHeight(), [&](std::size_t band, std::size_t first, std::size_t end) {
        for (std::size_t y = first; y < end; ++y) {
            painter.paintRow(y, rows[band].read(y), left.channels());
        }
    });
}

} // namespace zqx::img::kernels
