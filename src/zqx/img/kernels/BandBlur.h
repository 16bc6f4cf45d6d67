// Separable blur without a full-size intermediate picture: bands of rows, one per thread, each with a ring of rows that
// are blurred along their length and wait to be summed down the columns.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <vector>

#include "Rows.h"
#include "Run.h"
#include "WeightedSum.h"

namespace zqx::img::kernels {

struct BlurShape {
    std::size_t width;  ///< at least 1
    std::size_t height; ///< at least 1
    std::size_t planes; ///< 1, 3 or 4
    std::size_t radius;
    bool isInPlace; ///< a row of the source is lost as soon as its result is written
};

/// The division into bands, and the memory that they work in.
///
/// In place, a band overwrites rows that its neighbours have yet to read. So the rows around each seam between two
/// bands are blurred lengthwise before anything is written, and kept.
class BlurBands {
public:
    /// @throws std::bad_alloc
    explicit BlurBands(const BlurShape& shape);

    std::size_t count() const { return mCount; }
    /// The band's first row; for the band after the last one, the height.
    std::size_t begin(std::size_t band) const { return mShape.height * band / mCount; }

    /// Floats from one plane of a row to the next.
    std::size_t planeStride() const { return mPlaneStride; }
    /// A band's scratch row: the planes of a row with border pixels repeated on both sides.
    float* line(std::size_t band) const { return mMemory.get() + band * mFloatsPerBand; }
    std::size_t lineStride() const { return mPlaneStride + 2 * mShape.radius; }

    /// A lengthwise blurred row as a band keeps it: in its ring, or in a seam of its own or of the next band.
    float* row(std::size_t band, std::size_t y) const;
    bool isInSeam(std::size_t band, std::size_t y) const { return seamOf(band, y) != 0; }
    /// Rows of the seam above a band; none above the first, or when the source outlives the result.
    std::size_t seamBegin(std::size_t band) const { return begin(band) - mShape.radius; }
    std::size_t seamRows(std::size_t band) const { return mShape.isInPlace && band > 0 ? 2 * mShape.radius : 0; }

private:
    /// The band below the seam that holds a row, 0 for none.
    std::size_t seamOf(std::size_t band, std::size_t y) const;
    std::size_t rowFloats() const { return mPlaneStride * mShape.planes; }
    std::size_t lineFloats() const { return lineStride() * mShape.planes; }

    BlurShape mShape;
    std::size_t mPlaneStride;
    std::size_t mRingRows;
    std::size_t mFloatsPerBand;
    std::size_t mCount;
    std::unique_ptr<float[]> mMemory;
};

/// Blurs a picture by rows that are read and written in runs.
///
/// `read(y, first, length, run)` fills the run with some pixels of a source row; it is called once for each pixel of a
/// band and its halo. `write(y, first, length, run)` takes blurred planes, in the run; rows come in ascending order.
/// Both must not throw, and are called from several threads.
template <typename Read, typename Write>
class BandBlur {
public:
    /// @param taps 2 * radius + 1 weights
    /// @throws std::bad_alloc
    BandBlur(const BlurShape& shape, const std::vector<float>& taps, const Read& read, const Write& write)
        : mShape(shape), mTaps(taps), mRead(read), mWrite(write), mBands(shape), mRows(mBands.count() * taps.size()),
          mSum(weightedSum()) {}

    void run() {
        forEachRow(mBands.count(), [this](std::size_t band) { keepSeam(band); });
        forEachRow(mBands.count(), [this](std::size_t band) { blurBand(band); });
    }

private:
    void keepSeam(std::size_t band) {
        for (std::size_t i = 0; i < mBands.seamRows(band); ++i) {
            blurLengthwise(band, mBands.seamBegin(band) + i);
        }
    }

    void blurBand(std::size_t band) {
        const std::size_t begin = mBands.begin(band);
        std::size_t next = begin - std::min(begin, mShape.radius);
        for (std::size_t y = begin; y < mBands.begin(band + 1); ++y) {
            for (; next <= std::min(y + mShape.radius, mShape.height - 1); ++next) {
                if (!mBands.isInSeam(band, next)) {
                    blurLengthwise(band, next);
                }
            }
            sumDown(band, y);
        }
    }

    /// Where a band lists the rows of a sum: one for each tap.
    const float** rowsOf(std::size_t band) { return mRows.data() + band * mTaps.size(); }

    void blurLengthwise(std::size_t band, std::size_t y) {
        float* line = mBands.line(band);
        fillLine(y, line);
        const float** rows = rowsOf(band);
        for (std::size_t tap = 0; tap < mTaps.size(); ++tap) {
            rows[tap] = line + tap;
        }
        float* target = mBands.row(band, y);
        for (std::size_t plane = 0; plane < mShape.planes; ++plane) {
            mSum(rows, plane * mBands.lineStride(), mTaps.data(), mTaps.size(), mShape.width,
                 target + plane * mBands.planeStride());
        }
    }

    void fillLine(std::size_t y, float* line) {
        Run run;
        forEachRun(mShape.width, [&](std::size_t first, std::size_t length) {
            mRead(y, first, length, run);
            const float* const from[] = {run.r, run.g, run.b, run.a};
            for (std::size_t plane = 0; plane < mShape.planes; ++plane) {
                std::copy_n(from[plane], length, line + plane * mBands.lineStride() + mShape.radius + first);
            }
        });
        for (std::size_t plane = 0; plane < mShape.planes; ++plane) {
            float* pixels = line + plane * mBands.lineStride() + mShape.radius;
            std::fill_n(pixels - mShape.radius, mShape.radius, pixels[0]);
            std::fill_n(pixels + mShape.width, mShape.radius, pixels[mShape.width - 1]);
        }
    }

    void sumDown(std::size_t band, std::size_t y) {
        const float** rows = rowsOf(band);
        for (std::size_t tap = 0; tap < mTaps.size(); ++tap) {
            const std::size_t above = std::max(y + tap, mShape.radius) - mShape.radius; // the first row at least
            rows[tap] = mBands.row(band, std::min(above, mShape.height - 1));
        }
        Run run;
        forEachRun(mShape.width, [&](std::size_t first, std::size_t length) {
            float* const to[] = {run.r, run.g, run.b, run.a};
            for (std::size_t plane = 0; plane < mShape.planes; ++plane) {
                mSum(rows, plane * mBands.planeStride() + first, mTaps.data(), mTaps.size(), length, to[plane]);
            }
            mWrite(y, first, length, run);
        });
    }

    const BlurShape mShape;
    const std::vector<float>& mTaps;
    const Read& mRead;
    const Write& mWrite;
    const BlurBands mBands;
    std::vector<const float*> mRows;
    const WeightedSum mSum;
};

/// Runs a BandBlur over a picture that has pixels.
/// @throws std::bad_alloc
template <typename Read, typename Write>
void blurInBands(const BlurShape& shape, const std::vector<float>& taps, const Read& read, const Write& write) {
    if (shape.width > 0 && shape.height > 0) {
        BandBlur(shape, taps, read, write).run();
    }
}

} // namespace zqx::img::kernels
