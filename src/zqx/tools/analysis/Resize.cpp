// Area averaging in two steps: the rows under a row of the result are summed into one row of doubles, and its pixels
// are summed lengthwise. A row of the result depends on nothing but its own source rows, so rows run in parallel.
#include <zqx/tools/Resize.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <type_traits>
#include <vector>

#include "kernels/Rows.h"
#include "zqx/pictures/codecs/StoredScale.h"

namespace zqx::tools {

using namespace pictures;

namespace {

/// The source lines under one line of the result. With the result's number of lines as the unit, a source line is as
/// long as that number, a line of the result as long as the number of source lines: all overlaps are whole numbers, and
/// a constant times their sum is exact.
class Overlap {
public:
    Overlap(std::size_t line, std::size_t lines, std::size_t sourceLines)
        : mStart(line * sourceLines), mEnd(mStart + sourceLines), mUnit(lines) {}

    std::size_t first() const { return mStart / mUnit; }
    std::size_t middle() const { return (first() + last()) / 2; }
    std::size_t last() const { return (mEnd - 1) / mUnit; }

    double weight(std::size_t sourceLine) const {
        const std::size_t from = std::max(mStart, sourceLine * mUnit);
        const std::size_t to = std::min(mEnd, (sourceLine + 1) * mUnit);
        return static_cast<double>(to - from);
    }

private:
    std::size_t mStart;
    std::size_t mEnd;
    std::size_t mUnit;
};

constexpr std::size_t ALPHA = 3; // last in bytes and in floats

template <typename Sample>
class Averager {
public:
    Averager(const img::Image& source, const img::Image& result)
        : mSource(source), mResult(result), mChannels(channelCount(layoutOf(source))),
          mAlpha(hasAlpha(layoutOf(source))) {
        for (std::size_t x = 0; x < result.getWidth(); ++x) {
            mColumns.emplace_back(x, result.getWidth(), source.getWidth());
        }
    }

    std::size_t sumsPerRow() const { return mSource.getWidth() * mChannels; }

    void makeRow(std::size_t y, double* sums) const {
        const Overlap rows(y, mResult.getHeight(), mSource.getHeight());
        std::fill_n(sums, sumsPerRow(), 0.0);
        for (std::size_t row = rows.first(); row <= rows.last(); ++row) {
            if (mAlpha) {
                addPremultiplied(sourceRow(row), rows.weight(row), sums);
            } else {
                add(sourceRow(row), rows.weight(row), sums);
            }
        }
        const Sample* middle = sourceRow(rows.middle());
        auto* pixel = static_cast<Sample*>(mResult.getRowPtr(y));
        for (const Overlap& columns : mColumns) {
            const std::array<double, 4> means = meansOf(columns, sums);
            if (mAlpha) {
                storeStraight(means, middle + columns.middle() * mChannels, pixel);
            } else {
                std::transform(means.begin(), means.begin() + mChannels, pixel,
                               [this](double mean) { return toColor(mean); });
            }
            pixel += mChannels;
        }
    }

private:
    static constexpr bool IS_BYTE = std::is_same_v<Sample, unsigned char>;

    // How samples become summands and means become samples. Alpha is linear in bytes, too.
    double color(Sample sample) const {
        if constexpr (IS_BYTE) {
            return mDecoded[sample];
        } else {
            return sample;
        }
    }
    static double alphaOf(Sample sample) { return sample; }
    Sample toColor(double mean) const {
        if constexpr (IS_BYTE) {
            return mNearest(static_cast<float>(mean));
        } else {
            return static_cast<Sample>(mean);
        }
    }
    static Sample toAlpha(double mean) { return static_cast<Sample>(IS_BYTE ? std::floor(mean + 0.5) : mean); }

    const Sample* sourceRow(std::size_t y) const { return static_cast<const Sample*>(mSource.getRowPtr(y)); }

    void add(const Sample* row, double weight, double* sums) const {
        for (std::size_t i = 0; i < sumsPerRow(); ++i) {
            sums[i] += weight * color(row[i]);
        }
    }

    void addPremultiplied(const Sample* row, double weight, double* sums) const {
        for (std::size_t i = 0; i < sumsPerRow(); i += 4) {
            const double alpha = weight * alphaOf(row[i + ALPHA]);
            for (std::size_t channel = 0; channel < ALPHA; ++channel) {
                sums[i + channel] += alpha * color(row[i + channel]);
            }
            sums[i + ALPHA] += alpha;
        }
    }

    std::array<double, 4> meansOf(const Overlap& columns, const double* sums) const {
        std::array<double, 4> means{};
        for (std::size_t x = columns.first(); x <= columns.last(); ++x) {
            const double weight = columns.weight(x);
            for (std::size_t channel = 0; channel < mChannels; ++channel) {
                means[channel] += weight * sums[x * mChannels + channel];
            }
        }
        const double area = static_cast<double>(mSource.getWidth()) * static_cast<double>(mSource.getHeight());
        for (double& mean : means) {
            mean /= area;
        }
        return means;
    }

    void storeStraight(const std::array<double, 4>& means, const Sample* middle, Sample* pixel) const {
        const double alpha = means[ALPHA];
        for (std::size_t channel = 0; channel < ALPHA; ++channel) {
            pixel[channel] = alpha > 0.0 ? toColor(means[channel] / alpha) : middle[channel];
        }
        pixel[ALPHA] = toAlpha(alpha);
    }

    const std::array<double, CODES>& mDecoded = decodedCodes();
    const NearestCode& mNearest = nearestCode();
    const img::Image& mSource;
    const img::Image& mResult;
    std::size_t mChannels;
    bool mAlpha;
    std::vector<Overlap> mColumns;
};

template <typename Sample>
void averageRows(const img::Image& source, const img::Image& result) {
    const Averager<Sample> averager(source, result);
    const std::size_t rows = result.getHeight();
    const std::size_t parts = std::min(rows, img::kernels::threadCount());
    std::vector<std::vector<double>> sums(parts, std::vector<double>(averager.sumsPerRow()));
    img::kernels::forEachRow(parts, [&](std::size_t part) {
        for (std::size_t y = part * rows / parts; y < (part + 1) * rows / parts; ++y) {
            averager.makeRow(y, sums[part].data());
        }
    });
}

} // namespace

Size fitted(Size size, unsigned longestSide) {
    const std::uint64_t longest = std::max(size.width, size.height);
    if (longest <= longestSide) {
        return size;
    }
    const auto scaled = [&](std::uint64_t side) {
        return static_cast<unsigned>(std::max<std::uint64_t>(1, (side * longestSide + longest / 2) / longest));
    };
    return {scaled(size.width), scaled(size.height)};
}

PixelBuffer areaAverage(const img::Image& source, Size size) {
    PixelBuffer result(size.width, size.height, layoutOf(source));
    if (source.hasFloatFormat()) {
        averageRows<float>(source, result.image());
    } else {
        averageRows<unsigned char>(source, result.image());
    }
    return result;
}

} // namespace zqx::tools
