// One template over the pixel's size in bytes serves every format.
#include "Turn.h"

#include <algorithm>
#include <array>

#include "PixelFormat.h"
#include "Rows.h"

namespace zqx::img::kernels {

namespace {

/// A pixel as opaque bytes; alignment 1, so any address will do.
template <std::size_t Size>
using Pixel = std::array<std::uint8_t, Size>;

template <std::size_t Size>
Pixel<Size>* rowOf(const Image& image, std::size_t y) {
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

/// Target rows that are filled together: they are source columns, and a cache line of the source serves them all.
constexpr std::size_t BLOCK_ROWS = 16;

/// Fills the target row by row from source columns; source(x, y) tells which source pixel lands at target (x, y).
template <std::size_t Size, typename SourcePixel>
void fillFromColumns(const Image& target, const SourcePixel& source) {
    const std::size_t height = target.getHeight();
    forEachRow((height + BLOCK_ROWS - 1) / BLOCK_ROWS, [&](std::size_t block) {
        const std::size_t end = std::min((block + 1) * BLOCK_ROWS, height);
        for (std::size_t x = 0; x < target.getWidth(); ++x) {
            for (std::size_t y = block * BLOCK_ROWS; y < end; ++y) {
                rowOf<Size>(target, y)[x] = source(x, y);
            }
        }
    });
}

} // namespace

void mirrorColumns(const Image& image) {
    withPixelSize(image.getFormat(), [&]<std::size_t Size>() {
        forEachRow(image.getHeight(), [&](std::size_t y) {
            auto* row = rowOf<Size>(image, y);
            std::reverse(row, row + image.getWidth());
        });
    });
}

void mirrorRows(const Image& image) {
    withPixelSize(image.getFormat(), [&]<std::size_t Size>() {
        forEachRow(image.getHeight() / 2, [&](std::size_t y) {
            auto* upper = rowOf<Size>(image, y);
            std::swap_ranges(upper, upper + image.getWidth(), rowOf<Size>(image, image.getHeight() - 1 - y));
        });
    });
}

void turnClockwise(const Image& source, const Image& target) {
    withPixelSize(source.getFormat(), [&]<std::size_t Size>() {
        fillFromColumns<Size>(
            target, [&](std::size_t x, std::size_t y) { return rowOf<Size>(source, source.getHeight() - 1 - x)[y]; });
    });
}

void turnAround(const Image& source, const Image& target) {
    withPixelSize(source.getFormat(), [&]<std::size_t Size>() {
        forEachRow(source.getHeight(), [&](std::size_t y) {
            const auto* row = rowOf<Size>(source, y);
            std::reverse_copy(row, row + source.getWidth(), rowOf<Size>(target, source.getHeight() - 1 - y));
        });
    });
}

void turnCounterClockwise(const Image& source, const Image& target) {
    withPixelSize(source.getFormat(), [&]<std::size_t Size>() {
        fillFromColumns<Size>(
            target, [&](std::size_t x, std::size_t y) { return rowOf<Size>(source, x)[source.getWidth() - 1 - y]; });
    });
}

} // namespace zqx::img::kernels
