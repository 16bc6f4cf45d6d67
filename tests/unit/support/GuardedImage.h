// An image over test memory whose every byte outside the pixels is a guard: before, behind, in the row padding and
// between the pixels. A write to any of them is found by guardsIntact().
#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

#include <gtest/gtest.h>

#include <zqx/img/Image.h>

#include "unit/support/Formats.h"

namespace test {

/// An image whose pixel stride is free, as bitmaps and interleaved buffers have it.
class StridedImage : public Image {
public:
    StridedImage(void* data, std::size_t width, std::size_t height, Format format, std::size_t pixelStride,
                 std::size_t rowStride) {
        setView(data, width, height, format, pixelStride, rowStride);
    }
};

/// Bytes left free behind every pixel and every row, rounded up to whole elements of the format.
struct Gaps {
    std::size_t pixel = 0;
    std::size_t row = 0;
};

class GuardedImage {
public:
    GuardedImage(std::size_t width, std::size_t height, Image::Format format, Gaps gaps = {})
        : mPixelStride(oracle::pixelSize(format) + wholeElements(gaps.pixel, format)),
          mRowStride(width * mPixelStride + wholeElements(gaps.row, format)),
          mMemory(2 * MARGIN + height * mRowStride, GUARD),
          mImage(mMemory.data() + MARGIN, width, height, format, mPixelStride, mRowStride) {}
    GuardedImage(const GuardedImage&) = delete;
    GuardedImage& operator=(const GuardedImage&) = delete;

    Image& image() { return mImage; }
    const Image& image() const { return mImage; }
    oracle::Surface surface() const { return getSurface(mImage); }

    /// Everything, guards included.
    const std::vector<unsigned char>& memory() const { return mMemory; }
    void setMemory(const std::vector<unsigned char>& memory) {
        std::copy(memory.begin(), memory.end(), mMemory.begin());
    }

    testing::AssertionResult guardsIntact() const {
        for (std::size_t i = 0; i < mMemory.size(); ++i) {
            if (mMemory[i] != GUARD && !isPixelByte(i)) {
                return testing::AssertionFailure()
                       << "byte " << static_cast<std::ptrdiff_t>(i - MARGIN) << " from the first pixel was written";
            }
        }
        return testing::AssertionSuccess();
    }

private:
    static constexpr std::size_t MARGIN = 64;
    static constexpr unsigned char GUARD = 0xA5;

    static std::size_t wholeElements(std::size_t bytes, Image::Format format) {
        const std::size_t element = oracle::isKnown(format) ? oracle::elementSize(format) : 1;
        return (bytes + element - 1) / element * element;
    }

    bool isPixelByte(std::size_t index) const {
        if (index < MARGIN || index >= mMemory.size() - MARGIN) {
            return false;
        }
        const std::size_t inRow = (index - MARGIN) % mRowStride;
        return inRow < mImage.getWidth() * mPixelStride && inRow % mPixelStride < oracle::pixelSize(mImage.getFormat());
    }

    std::size_t mPixelStride;
    std::size_t mRowStride;
    std::vector<unsigned char> mMemory;
    StridedImage mImage;
};

} // namespace test
