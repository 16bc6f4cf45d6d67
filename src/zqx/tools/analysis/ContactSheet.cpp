// Layout of the sheet, and placing of the pictures on it.
#include <zqx/tools/ContactSheet.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <utility>

#include <zqx/img/Color.h>

#include "kernels/geometry/Compose.h"
#include "zqx/pictures/files/Error.h"

namespace zqx::tools {

using namespace pictures;

namespace {

constexpr unsigned NARROWEST_CELL = 160; // room for a label
constexpr unsigned SMALLEST_LETTERS = 13;
constexpr unsigned LARGEST_LETTERS = 36;

unsigned gapFor(unsigned letters) {
    return letters * 3 / 2;
}

unsigned labelHeightFor(unsigned letters) {
    return letters * 2;
}

/// The length of a side of the sheet: cells with a gap before each and after the last.
std::size_t getSide(std::size_t cells, std::size_t cell, std::size_t gap) {
    return cells * (cell + gap) + gap;
}

std::size_t rowsFor(std::size_t cells, std::size_t columns) {
    return (cells + columns - 1) / columns;
}

/// The number of columns that brings the aspect ratio of the sheet closest to 3:2. Of equally good numbers the smallest
/// is taken.
std::size_t bestColumns(std::size_t cells, std::size_t cellWidth, std::size_t cellHeight, std::size_t gap) {
    constexpr double SHAPE = 1.5;
    std::size_t best = 1;
    double least = std::numeric_limits<double>::infinity();
    for (std::size_t columns = 1; columns <= cells; ++columns) {
        const std::size_t rows = rowsFor(cells, columns);
        const double shape =
            static_cast<double>(getSide(columns, cellWidth, gap)) / static_cast<double>(getSide(rows, cellHeight, gap));
        if (const double distance = std::max(shape / SHAPE, SHAPE / shape); distance < least) {
            least = distance;
            best = columns;
        }
    }
    return best;
}

} // namespace

ContactSheet::ContactSheet(const std::vector<std::string>& labels, unsigned pictureWidth, unsigned pictureHeight,
                           LabelPainter& painter)
    : mPictureWidth(pictureWidth), mPictureHeight(pictureHeight), mCellWidth(std::max(pictureWidth, NARROWEST_CELL)),
      mLetters(std::clamp(mCellWidth / 30, SMALLEST_LETTERS, LARGEST_LETTERS)) {
    const unsigned gap = gapFor(mLetters);
    const std::size_t cellHeight = std::size_t{mPictureHeight} + labelHeightFor(mLetters);
    mColumns = bestColumns(labels.size(), mCellWidth, cellHeight, gap);
    mRows = rowsFor(labels.size(), mColumns);
    const std::size_t width = getSide(mColumns, mCellWidth, gap);
    const std::size_t height = getSide(mRows, cellHeight, gap);
    constexpr auto LARGEST = static_cast<std::size_t>(std::numeric_limits<int>::max());
    if (width > LARGEST / 4 || height > LARGEST) {
        throw UsageError("--size", "too large for a sheet of this many pictures; choose a smaller size");
    }
    mSheet = PixelBuffer(width, height, SampleLayout::RGB8);
    constexpr std::array<std::uint8_t, 3> PIXEL = {GROUND, GROUND, GROUND};
    img::kernels::fillRectangle(mSheet.image(), {0, 0, width, height}, PIXEL);
    for (std::size_t number = 0; number < labels.size(); ++number) {
        drawLabel(number, labels[number], painter);
    }
}

ContactSheet::Corner ContactSheet::cellCorner(std::size_t number) const {
    const unsigned gap = gapFor(mLetters);
    const auto column = static_cast<unsigned>(number % mColumns);
    const auto row = static_cast<unsigned>(number / mColumns);
    return {gap + column * (mCellWidth + gap), gap + row * (mPictureHeight + labelHeightFor(mLetters) + gap)};
}

img::Image ContactSheet::areaAt(Corner corner, unsigned width, unsigned height) {
    img::Image& sheet = mSheet.image();
    return {sheet.getPixelPtr(corner.x, corner.y), width, height, sheet.getFormat(), sheet.getByteRowStride()};
}

void ContactSheet::drawLabel(std::size_t number, const std::string& text, LabelPainter& painter) {
    constexpr unsigned WIDEST = 4096; // wider than any label, and not too wide to draw on
    const unsigned width = std::min(mCellWidth, WIDEST);
    const Corner corner = cellCorner(number);
    img::Image area =
        areaAt({corner.x + (mCellWidth - width) / 2, corner.y + mPictureHeight}, width, labelHeightFor(mLetters));
    if (!painter.drawLabel(area, text, mLetters)) {
        warn(text, "no installed font has all characters of this label");
    }
}

void ContactSheet::place(std::size_t number, const img::Image& picture) {
    Corner corner = cellCorner(number);
    corner.x += (mCellWidth - mPictureWidth) / 2;
    img::Image area = areaAt(corner, mPictureWidth, mPictureHeight);
    img::kernels::placeOver(picture, area, img::srgb2linear(GROUND));
}

PixelBuffer ContactSheet::take() {
    return std::move(mSheet);
}

} // namespace zqx::tools
