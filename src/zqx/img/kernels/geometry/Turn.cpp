// One template over the pixel's size in bytes serves every format.
#include "kernels/geometry/Turn.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

#include <hwy/cache_control.h>

#include "kernels/Rows.h"
#include "kernels/samples/PixelFormat.h"

namespace zqx::img::kernels {

namespace {

/// A pixel as opaque bytes; alignment 1, so any address will do.
template <std::size_t Size>
using Pixel = std::array<std::uint8_t, Size>;

template <std::size_t Size>
Pixel<Size>* getRow(const Image& image, std::size_t y) {
    return static_cast<Pixel<Size>*>(image.getRowPtr(y));
}

/// Calls a template lambda with the pixel size as a compile-time constant; does nothing for an unknown format.
template <typename Function>
void withPixelSize(Format format, const Function& function) {
    switch (pixelByteSize(format)) {
    case 1: function.template operator()<1>(); break;
    case 3: function.template operator()<3>(); break;
    case 4: function.template operator()<4>(); break;
    case 12: function.template operator()<12>(); break;
    case 16: function.template operator()<16>(); break;
    default: break;
    }
}

/// Pixels along the edge of a square tile that is turned at once. Rows of one picture are columns of the other, so as
/// many cache lines and memory pages as a tile has rows must stay within reach.
template <std::size_t Size>
constexpr std::size_t TILE_EDGE = Size <= 4 ? 64 : 32;

/// A column of the source as it becomes a row of the target.
struct Column {
    const std::uint8_t* first;
    std::ptrdiff_t step; ///< bytes to the next pixel

    const std::uint8_t* at(std::size_t x) const { return first + static_cast<std::ptrdiff_t>(x) * step; }
};

/// Asks for the source of a tile: a stretch of bytes from each of several rows, which no processor foresees.
void prefetchRows(const std::uint8_t* first, std::ptrdiff_t step, std::size_t rows, std::size_t bytes) {
    constexpr std::size_t CACHE_LINE = 64;
    for (std::size_t row = 0; row < rows; ++row, first += step) {
        for (std::size_t i = 0; i < bytes; i += CACHE_LINE) {
            hwy::Prefetch(first + i);
        }
    }
}

/// Fills the target tile by tile; column(y) tells which source column lands in target row y.
template <std::size_t Size, typename GetColumn>
void fillFromColumns(const Image& target, const GetColumn& getColumn) {
    constexpr std::size_t EDGE = TILE_EDGE<Size>;
    const std::size_t width = target.getWidth();
    const std::size_t height = target.getHeight();
    if (width == 0) {
        return; // columns of no pixels have no address
    }
    forEachRow((height + EDGE - 1) / EDGE, [&](std::size_t band) {
        const std::size_t beginY = band * EDGE;
        const std::size_t endY = std::min(beginY + EDGE, height);
        const Column leftmost{std::min(getColumn(beginY).first, getColumn(endY - 1).first), getColumn(beginY).step};
        for (std::size_t startX = 0; startX < width; startX += EDGE) {
            const std::size_t endX = std::min(startX + EDGE, width);
            if (endX < width) {
                prefetchRows(leftmost.at(endX), leftmost.step, std::min(EDGE, width - endX), (endY - beginY) * Size);
            }
            for (std::size_t y = beginY; y < endY; ++y) {
                const Column column = getColumn(y);
                const std::uint8_t* from = column.at(startX);
                Pixel<Size>* row = getRow<Size>(target, y);
                for (std::size_t x = startX; x < endX; ++x, from += column.step) {
                    std::memcpy(row + x, from, Size);
                }
            }
        }
    });
}

/// std::swap of pixels goes byte by byte; this moves whole words.
template <std::size_t Size>
void exchange(Pixel<Size>* a, Pixel<Size>* b) {
    std::uint8_t saved[Size];
    std::memcpy(saved, a, Size);
    std::memcpy(a, b, Size);
    std::memcpy(b, saved, Size);
}

/// Four pixels of three bytes are three words: taken as numbers (first byte lowest) they are turned by shifts.
struct FourPixels {
    std::uint64_t low;
    std::uint32_t high;

    static FourPixels load(const Pixel<3>* pixels) {
        FourPixels four;
        std::memcpy(&four.low, pixels, sizeof four.low);
        std::memcpy(&four.high, pixels->data() + sizeof four.low, sizeof four.high);
        return four;
    }

    void storeReversed(Pixel<3>* pixels) const {
        constexpr std::uint64_t PIXEL = 0xFFFFFF;
        const std::uint64_t first = low & PIXEL;
        const std::uint64_t second = low >> 24U & PIXEL;
        const std::uint64_t third = low >> 48U | (high & 0xFFU) << 16U;
        const std::uint64_t fourth = high >> 8U;
        const std::uint64_t newLow = fourth | third << 24U | second << 48U;
        const auto newHigh = static_cast<std::uint32_t>(second >> 16U | first << 8U);
        std::memcpy(pixels, &newLow, sizeof newLow);
        std::memcpy(pixels->data() + sizeof newLow, &newHigh, sizeof newHigh);
    }
};

/// Mirrors as much of a row as goes by fours, from both ends; what is left in the middle lies between the pointers.
template <std::size_t Size>
void mirrorByFours(Pixel<Size>*& left, Pixel<Size>*& right) {
    if constexpr (Size == 3 && std::endian::native == std::endian::little) {
        for (; right - left >= 8; left += 4, right -= 4) {
            const FourPixels fromLeft = FourPixels::load(left);
            const FourPixels fromRight = FourPixels::load(right - 4);
            fromRight.storeReversed(left);
            fromLeft.storeReversed(right - 4);
        }
    }
}

} // namespace

void mirrorColumns(const Image& image) {
    withPixelSize(image.getFormat(), [&]<std::size_t Size>() {
        forEachRow(image.getHeight(), [&](std::size_t y) {
            Pixel<Size>* left = getRow<Size>(image, y);
            Pixel<Size>* right = left + image.getWidth();
            mirrorByFours<Size>(left, right);
            while (left + 1 < right) {
                exchange<Size>(left++, --right);
            }
        });
    });
}

void mirrorRows(const Image& image) {
    const std::size_t bytes = image.getWidth() * pixelByteSize(image.getFormat());
    forEachRow(image.getHeight() / 2, [&](std::size_t y) {
        auto* upper = static_cast<std::uint8_t*>(image.getRowPtr(y));
        std::swap_ranges(upper, upper + bytes, static_cast<std::uint8_t*>(image.getRowPtr(image.getHeight() - 1 - y)));
    });
}

void turnClockwise(const Image& source, const Image& target) {
    const auto step = static_cast<std::ptrdiff_t>(source.getByteRowStride());
    withPixelSize(source.getFormat(), [&]<std::size_t Size>() {
        fillFromColumns<Size>(target, [&](std::size_t y) {
            const auto* bottom = getRow<Size>(source, source.getHeight() - 1) + y;
            return Column{bottom->data(), -step};
        });
    });
}

void turnAround(const Image& source, const Image& target) {
    withPixelSize(source.getFormat(), [&]<std::size_t Size>() {
        forEachRow(source.getHeight(), [&](std::size_t y) {
            const auto* row = getRow<Size>(source, y);
            std::reverse_copy(row, row + source.getWidth(), getRow<Size>(target, source.getHeight() - 1 - y));
        });
    });
}

void turnCounterClockwise(const Image& source, const Image& target) {
    const auto step = static_cast<std::ptrdiff_t>(source.getByteRowStride());
    withPixelSize(source.getFormat(), [&]<std::size_t Size>() {
        fillFromColumns<Size>(target, [&](std::size_t y) {
            const auto* top = getRow<Size>(source, 0) + (source.getWidth() - 1 - y);
            return Column{top->data(), step};
        });
    });
}

} // namespace zqx::img::kernels
