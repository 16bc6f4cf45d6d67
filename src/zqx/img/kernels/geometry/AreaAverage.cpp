// Area averaging in two steps: the rows under a row of the result are summed into one row of doubles, and its pixels
// are summed lengthwise. A row of the result depends on nothing but its own source rows, so rows run in parallel.
#include "kernels/geometry/AreaAverage.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "kernels/Rows.h"
#include "kernels/samples/Element.h"
#include "kernels/samples/NearestCode.h"

namespace zqx::img::kernels {

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

/// The code or the float nearest to a mean of linear light.
template <Encoding E>
void storeColor(double mean, std::uint8_t* pixel, std::size_t index, const NearestCode& nearest) {
    if constexpr (E == Encoding::FLOAT) {
        encodeElement<E>(static_cast<float>(mean), pixel, index);
    } else if constexpr (E == Encoding::GAMMA_BYTE) {
        pixel[index] = nearest(static_cast<float>(mean));
    } else {
        pixel[index] = static_cast<std::uint8_t>(mean * 255.0 + 0.5);
    }
}

/// Alpha bytes are counted in codes: as they are linear, means of codes are codes.
template <Encoding E>
double loadAlpha(const std::uint8_t* pixel) {
    if constexpr (E == Encoding::FLOAT) {
        return static_cast<double>(decodeElement<E>(pixel, ALPHA));
    } else {
        return pixel[ALPHA];
    }
}

template <Encoding E>
void storeAlpha(double mean, std::uint8_t* pixel) {
    if constexpr (E == Encoding::FLOAT) {
        encodeElement<E>(static_cast<float>(mean), pixel, ALPHA);
    } else {
        pixel[ALPHA] = static_cast<std::uint8_t>(mean + 0.5);
    }
}

template <Encoding E, std::size_t Channels>
class Averager {
public:
    Averager(const Image& source, const Image& target) : mSource(source), mTarget(target) {
        for (std::size_t x = 0; x < target.getWidth(); ++x) {
            mColumns.emplace_back(x, target.getWidth(), source.getWidth());
        }
    }

    std::size_t sumsPerRow() const { return mSource.getWidth() * Channels; }

    /// @param sums room for as many doubles
    void makeRow(std::size_t y, double* sums) const {
        const Overlap rows(y, mTarget.getHeight(), mSource.getHeight());
        std::fill_n(sums, sumsPerRow(), 0.0);
        for (std::size_t row = rows.first(); row <= rows.last(); ++row) {
            addRow(row, rows.weight(row), sums);
        }
        auto* pixel = static_cast<std::uint8_t*>(mTarget.getRowPtr(y));
        for (const Overlap& columns : mColumns) {
            const auto* middle = static_cast<const std::uint8_t*>(mSource.getPixelPtr(columns.middle(), rows.middle()));
            store(averageColumns(columns, sums), middle, pixel);
            pixel += mTarget.getBytePixelStride();
        }
    }

private:
    static constexpr bool HAS_ALPHA = Channels == 4;
    static constexpr std::size_t COLORS = HAS_ALPHA ? 3 : Channels;
    using Means = std::array<double, Channels>;

    void addRow(std::size_t y, double weight, double* sums) const {
        const auto* pixel = static_cast<const std::uint8_t*>(mSource.getRowPtr(y));
        for (std::size_t x = 0; x < mSource.getWidth(); ++x, pixel += mSource.getBytePixelStride(), sums += Channels) {
            double share = weight;
            if constexpr (HAS_ALPHA) {
                share *= loadAlpha<E>(pixel);
                sums[ALPHA] += share;
            }
            for (std::size_t i = 0; i < COLORS; ++i) {
                sums[i] += share * static_cast<double>(decodeElement<E>(pixel, i));
            }
        }
    }

    Means averageColumns(const Overlap& columns, const double* sums) const {
        Means means{};
        for (std::size_t x = columns.first(); x <= columns.last(); ++x) {
            const double weight = columns.weight(x);
            for (std::size_t i = 0; i < Channels; ++i) {
                means[i] += weight * sums[x * Channels + i];
            }
        }
        const double area = static_cast<double>(mSource.getWidth()) * static_cast<double>(mSource.getHeight());
        for (double& mean : means) {
            mean /= area;
        }
        return means;
    }

    /// @param middle the source pixel in the middle
    void store(const Means& means, const std::uint8_t* middle, std::uint8_t* pixel) const {
        if constexpr (HAS_ALPHA) {
            storeAlpha<E>(means[ALPHA], pixel);
            if (!(means[ALPHA] > 0.0)) {
                std::memcpy(pixel, middle, COLORS * pixelFormat(mSource.getFormat()).elementSize());
                return;
            }
        }
        for (std::size_t i = 0; i < COLORS; ++i) {
            storeColor<E>(HAS_ALPHA ? means[i] / means[Channels - 1] : means[i], pixel, i, mNearest);
        }
    }

    const NearestCode& mNearest = nearestCode();
    const Image& mSource;
    const Image& mTarget;
    std::vector<Overlap> mColumns;
};

template <Encoding E, std::size_t Channels>
void averageRows(const Image& source, const Image& target) {
    const Averager<E, Channels> averager(source, target);
    std::vector<std::vector<double>> sums(bandCount(target.getHeight()), std::vector<double>(averager.sumsPerRow()));
    forEachBand(target.getHeight(), [&](std::size_t band, std::size_t first, std::size_t end) {
        for (std::size_t y = first; y < end; ++y) {
            averager.makeRow(y, sums[band].data());
        }
    });
}

template <Encoding E>
void averageRows(const Image& source, const Image& target) {
    switch (pixelFormat(source.getFormat()).elementCount()) {
    case 1: averageRows<E, 1>(source, target); break;
    case 3: averageRows<E, 3>(source, target); break;
    default: averageRows<E, 4>(source, target); break;
    }
}

} // namespace

void averageArea(const Image& source, const Image& target) {
    if (!isKnown(source.getFormat())) {
        return;
    }
    switch (pixelFormat(source.getFormat()).encoding) {
    case Encoding::FLOAT: averageRows<Encoding::FLOAT>(source, target); break;
    case Encoding::GAMMA_BYTE: averageRows<Encoding::GAMMA_BYTE>(source, target); break;
    case Encoding::LINEAR_BYTE: averageRows<Encoding::LINEAR_BYTE>(source, target); break;
    }
}

} // namespace zqx::img::kernels
