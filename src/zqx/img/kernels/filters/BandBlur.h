// Separable blur without a full-size intermediate picture: bands of rows, one per thread, each with a ring of rows that
// are blurred along their length and wait to be summed down the columns.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <new>
#include <vector>

#include "kernels/Rows.h"
#include "kernels/filters/WeightedSum.h"
#include "kernels/samples/Run.h"

namespace zqx::img::kernels {

inline constexpr std::align_val_t VECTOR_ALIGNMENT{64};

/// Output rows that are finished together.
inline constexpr std::size_t BLUR_GROUP = WEIGHTED_SUM_GROUP;

struct BlurShape {
    std::size_t width;  ///< elements of a row, at least 1
    std::size_t height; ///< at least 1
    std::size_t planes; ///< 1, 3 or 4
    std::size_t step;   ///< distance in a row from an element to its neighbour: more than 1 for interleaved samples
    std::size_t radius;
    bool isInPlace; ///< a row of the source is lost as soon as its result is written
};

struct AlignedDelete {
    void operator()(float* floats) const { ::operator delete[](floats, VECTOR_ALIGNMENT); }
};
using AlignedFloats = std::unique_ptr<float[], AlignedDelete>;

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
    std::size_t lineStride() const { return mPlaneStride + 2 * border(); }
    /// Elements on each side of a line that repeat border pixels.
    std::size_t border() const { return mShape.radius * mShape.step; }

    /// A lengthwise blurred row as a band keeps it: in its ring, or in a seam of its own or of the next band.
    float* row(std::size_t band, std::size_t y) const;
    bool isInSeam(std::size_t band, std::size_t y) const { return bandBelowSeam(band, y) != 0; }
    /// Rows of the seam above a band; none above the first, or when the source outlives the result.
    std::size_t seamBegin(std::size_t band) const { return begin(band) - mShape.radius; }
    std::size_t seamRows(std::size_t band) const { return mShape.isInPlace && band > 0 ? 2 * mShape.radius : 0; }

private:
    /// The band below the seam that holds a row, 0 for none.
    std::size_t bandBelowSeam(std::size_t band, std::size_t y) const;
    std::size_t rowFloats() const { return mPlaneStride * mShape.planes; }
    std::size_t lineFloats() const { return lineStride() * mShape.planes; }
    /// What follows the line: the rows of the ring, and after them those of the seam above the band.
    float* ring(std::size_t band) const { return line(band + 1) - mRowsPerBand * rowFloats(); }

    BlurShape mShape;
    std::size_t mPlaneStride;
    std::size_t mRingRows;
    std::size_t mRowsPerBand; ///< of ring and seam
    std::size_t mFloatsPerBand;
    std::size_t mCount;
    AlignedFloats mMemory;
};

/// The shape of a strip of columns whose rings stay in the second-level cache. In place, the whole picture: a strip
/// would overwrite what the next one has to read.
BlurShape cacheStrip(const BlurShape& picture);

/// Blurs a picture by rows that are read and written in runs.
///
/// `read(y, first, length, run)` fills the run with some pixels of a source row; it is called for each pixel of a band
/// and of its surroundings. `write(y, first, length, run)` takes blurred planes, in the run; rows come in ascending
/// order. Both must not throw, and are called from several threads.
template <typename Read, typename Write>
class BandBlur {
public:
    /// @param taps 2 * radius + 1 weights
    /// @throws std::bad_alloc
    BandBlur(const BlurShape& shape, const std::vector<float>& taps, const Read& read, const Write& write)
        : mShape(cacheStrip(shape)), mTotalWidth(shape.width), mTaps(taps), mRead(read), mWrite(write), mBands(mShape),
          mRows(mBands.count() * rowsPerBand()), mSums(weightedSums()) {}

    /// Blurs the whole picture, strip by strip. In place there is one strip.
    void run() {
        for (mFirst = 0; mFirst < mTotalWidth; mFirst += mShape.width) {
            mWidth = std::min(mShape.width, mTotalWidth - mFirst);
            forEachRow(mBands.count(), [this](std::size_t band) { keepSeam(band); });
            forEachRow(mBands.count(), [this](std::size_t band) { blurBand(band); });
        }
    }

private:
    void keepSeam(std::size_t band) {
        for (std::size_t i = 0; i < mBands.seamRows(band); ++i) {
            blurLengthwise(band, mBands.seamBegin(band) + i);
        }
    }

    void blurBand(std::size_t band) {
        const std::size_t end = mBands.begin(band + 1);
        std::size_t y = mBands.begin(band);
        std::size_t next = y - std::min(y, mShape.radius);
        while (y < end) {
            const std::size_t count = mTaps.size() >= BLUR_GROUP && y + BLUR_GROUP <= end ? BLUR_GROUP : 1;
            for (; next <= std::min(y + count - 1 + mShape.radius, mShape.height - 1); ++next) {
                if (!mBands.isInSeam(band, next)) {
                    blurLengthwise(band, next);
                }
            }
            sumDown(band, y, count);
            y += count;
        }
    }

    /// Rows that the sums of a group of output rows read: one for each tap of the first, and one more for each other.
    std::size_t rowsPerBand() const { return mTaps.size() + BLUR_GROUP - 1; }
    /// Where a band lists the rows of its sums.
    const float** tapRows(std::size_t band) { return mRows.data() + band * rowsPerBand(); }

    void blurLengthwise(std::size_t band, std::size_t y) {
        float* line = mBands.line(band);
        fillLine(y, line);
        const float** rows = tapRows(band);
        for (std::size_t tap = 0; tap < mTaps.size(); ++tap) {
            rows[tap] = line + tap * mShape.step;
        }
        float* target = mBands.row(band, y);
        for (std::size_t plane = 0; plane < mShape.planes; ++plane) {
            mSums.one(rows, plane * mBands.lineStride(), mTaps.data(), mTaps.size(), mWidth,
                      target + plane * mBands.planeStride());
        }
    }

    /// Reads the strip's stretch of a row with the pixels around it, repeating those at the picture's border.
    void fillLine(std::size_t y, float* line) {
        const std::size_t begin = mFirst - std::min(mFirst, mBands.border());
        const std::size_t end = std::min(mFirst + mWidth + mBands.border(), mTotalWidth);
        const std::size_t missing = begin + mBands.border() - mFirst; // on the left
        Run run;
        forEachRun(end - begin, [&](std::size_t offset, std::size_t length) {
            mRead(y, begin + offset, length, run);
            const float* const from[] = {run.r, run.g, run.b, run.a};
            for (std::size_t plane = 0; plane < mShape.planes; ++plane) {
                std::copy_n(from[plane], length, line + plane * mBands.lineStride() + missing + offset);
            }
        });
        for (std::size_t plane = 0; plane < mShape.planes; ++plane) {
            float* first = line + plane * mBands.lineStride();
            float* last = first + mWidth + 2 * mBands.border();
            repeatBorders({first, first + missing}, {first + missing + (end - begin), last});
        }
    }

    struct Gap {
        float* begin;
        float* end;
    };
    void repeatBorders(Gap left, Gap right) {
        for (float* element = left.end; element != left.begin; --element) {
            element[-1] = element[static_cast<std::ptrdiff_t>(mShape.step) - 1];
        }
        for (float* element = right.begin; element != right.end; ++element) {
            *element = *(element - mShape.step);
        }
    }

    /// Finishes one output row or a group of them.
    void sumDown(std::size_t band, std::size_t y, std::size_t count) {
        const float** rows = tapRows(band);
        for (std::size_t i = 0; i < mTaps.size() + count - 1; ++i) {
            const std::size_t above = std::max(y + i, mShape.radius) - mShape.radius; // the first row at least
            rows[i] = mBands.row(band, std::min(above, mShape.height - 1));
        }
        Run runs[BLUR_GROUP];
        forEachRun(mWidth, [&](std::size_t first, std::size_t length) {
            for (std::size_t plane = 0; plane < mShape.planes; ++plane) {
                sumPlane(rows, plane, first, length, count, runs);
            }
            for (std::size_t i = 0; i < count; ++i) {
                mWrite(y + i, mFirst + first, length, runs[i]);
            }
        });
    }

    void sumPlane(const float** rows, std::size_t plane, std::size_t first, std::size_t length, std::size_t count,
                  Run* runs) {
        const std::size_t offset = plane * mBands.planeStride() + first;
        float* targets[BLUR_GROUP];
        for (std::size_t i = 0; i < BLUR_GROUP; ++i) {
            float* const planes[] = {runs[i].r, runs[i].g, runs[i].b, runs[i].a};
            targets[i] = planes[plane];
        }
        if (count == BLUR_GROUP) {
            mSums.group(rows, offset, mTaps.data(), mTaps.size(), length, targets);
        } else {
            mSums.one(rows, offset, mTaps.data(), mTaps.size(), length, targets[0]);
        }
    }

    const BlurShape mShape; // of a strip
    const std::size_t mTotalWidth;
    std::size_t mFirst = 0; // of the strip at work
    std::size_t mWidth = 0;
    const std::vector<float>& mTaps;
    const Read& mRead;
    const Write& mWrite;
    const BlurBands mBands;
    std::vector<const float*> mRows;
    const WeightedSums mSums;
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
