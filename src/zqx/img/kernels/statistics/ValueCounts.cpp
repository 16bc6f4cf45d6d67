#include "kernels/statistics/ValueCounts.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <vector>

#include "kernels/Rows.h"
#include "kernels/samples/Element.h"
#include "kernels/samples/NearestCode.h"

namespace zqx::img::kernels {

namespace {

/// ITU-R BT.709. In doubles they add up to 1, so that the luma of a grey is that grey.
constexpr double RED_WEIGHT = 0.2126;
constexpr double GREEN_WEIGHT = 0.7152;
constexpr double BLUE_WEIGHT = 0.0722;

void countValue(ChannelCounts& counts, float value, const NearestCode& nearest) {
    if (value >= 0.0F && value <= 1.0F) {
        ++counts.bins[nearest(value)];
    } else if (std::isnan(value)) {
        ++counts.nan;
    } else {
        ++(value < 0.0F ? counts.below : counts.above);
    }
}

template <Encoding E>
class Counter {
public:
    explicit Counter(const Image& image) : mImage(image), mFormat(pixelFormat(image.getFormat())) {}

    void countRow(std::size_t y, ValueCounts& counts) const {
        const auto* pixel = static_cast<const std::uint8_t*>(mImage.getRowPtr(y));
        for (std::size_t x = 0; x < mImage.getWidth(); ++x, pixel += mImage.getBytePixelStride()) {
            if (mFormat.isGrey()) {
                countElement(counts.channels[ValueCounts::LUMA], pixel, mFormat.red);
            } else {
                countColor(counts, pixel);
            }
        }
    }

private:
    void countElement(ChannelCounts& counts, const std::uint8_t* pixel, std::size_t index) const {
        if constexpr (E == Encoding::FLOAT) {
            countValue(counts, decodeElement<E>(pixel, index), mNearest);
        } else {
            ++counts.bins[pixel[index]];
        }
    }

    void countColor(ValueCounts& counts, const std::uint8_t* pixel) const {
        countElement(counts.channels[ValueCounts::RED], pixel, mFormat.red);
        countElement(counts.channels[ValueCounts::GREEN], pixel, mFormat.green);
        countElement(counts.channels[ValueCounts::BLUE], pixel, mFormat.blue);
        const auto light = [pixel](std::size_t index) { return static_cast<double>(decodeElement<E>(pixel, index)); };
        const double luma =
            RED_WEIGHT * light(mFormat.red) + GREEN_WEIGHT * light(mFormat.green) + BLUE_WEIGHT * light(mFormat.blue);
        countValue(counts.channels[ValueCounts::LUMA], static_cast<float>(luma), mNearest);
    }

    const Image& mImage;
    const PixelFormat& mFormat;
    const NearestCode& mNearest = nearestCode();
};

void add(ChannelCounts& sum, const ChannelCounts& part) {
    std::ranges::transform(sum.bins, part.bins, sum.bins.begin(), std::plus());
    sum.below += part.below;
    sum.above += part.above;
    sum.nan += part.nan;
}

template <Encoding E>
ValueCounts countRows(const Image& image) {
    const Counter<E> counter(image);
    std::vector<ValueCounts> parts(bandCount(image.getHeight()));
    forEachBand(image.getHeight(), [&](std::size_t band, std::size_t first, std::size_t end) {
        for (std::size_t y = first; y < end; ++y) {
            counter.countRow(y, parts[band]);
        }
    });
    ValueCounts counts;
    for (const ValueCounts& part : parts) {
        for (std::size_t channel = 0; channel < counts.channels.size(); ++channel) {
            add(counts.channels[channel], part.channels[channel]);
        }
    }
    return counts;
}

} // namespace

ValueCounts countValues(const Image& image) {
    if (!isKnown(image.getFormat())) {
        return {};
    }
    switch (pixelFormat(image.getFormat()).encoding) {
    case Encoding::FLOAT: return countRows<Encoding::FLOAT>(image);
    case Encoding::GAMMA_BYTE: return countRows<Encoding::GAMMA_BYTE>(image);
    case Encoding::LINEAR_BYTE: break;
    }
    return {};
}

} // namespace zqx::img::kernels
