#include <zqx/img/TiledFilter.h>

#include <algorithm>

#include "kernels/filters/Blend.h"

namespace zqx::img {

namespace {

struct Range {
    std::size_t start;
    std::size_t length;

    std::size_t end() const { return start + length; }
};

std::vector<Range> splitRange(std::size_t total, std::size_t size, std::size_t overlap) {
    std::vector<Range> ranges;
    // An overlap beyond the size makes the step wrap around, to more than any sensible length: that ends the loop.
    for (std::size_t start = 0; start < total; start += size - overlap) {
        const Range next{start, std::min(total - start, size)};
        if (!ranges.empty() && ranges.back().end() >= next.end()) {
            break;
        }
        ranges.push_back(next);
    }
    return ranges;
}

/// What is left of a length; nothing where more is taken away than there is.
std::size_t remaining(std::size_t length, std::size_t taken) {
    return length > taken ? length - taken : 0;
}

/// How one axis of a tile's result is divided: a discarded margin, a cross-fade with the tile before, then plain pixels
/// up to the margin at the far side.
struct Axis {
    std::size_t margin;
    std::size_t blend;
    std::size_t plain;

    std::size_t plainStart() const { return margin + blend; }
};

Axis divide(Range range, std::size_t total, std::size_t overlap, std::size_t margin) {
    const bool isFirst = range.start == 0;
    const std::size_t near = isFirst ? 0 : margin;
    const std::size_t far = range.end() == total ? 0 : margin;
    const std::size_t blend = isFirst || margin > overlap / 2 ? 0 : overlap - 2 * margin;
    const std::size_t kept = remaining(range.length, near + far);
    return {near, std::min(blend, kept), remaining(kept, blend)};
}

} // namespace

std::vector<Tile> Tile::splitHorizontal(std::size_t size, std::size_t overlap) const {
    std::vector<Tile> tiles;
    for (const Range& range : splitRange(width, size, overlap)) {
        tiles.push_back({x + range.start, y, range.length, height});
    }
    return tiles;
}

std::vector<Tile> Tile::splitVertical(std::size_t size, std::size_t overlap) const {
    std::vector<Tile> tiles;
    for (const Range& range : splitRange(height, size, overlap)) {
        tiles.push_back({x, y + range.start, width, range.length});
    }
    return tiles;
}

Image Tile::getAsSubImage(const Image& image) const {
    return image.getSubImage(x, y, width, height);
}

TiledFilter::TiledFilter(std::size_t tileSize, std::size_t overlap, std::size_t margin)
    : mTileSize(tileSize), mOverlap(overlap), mMargin(margin) {
}

bool TiledFilter::execute() {
    if (mInputs.empty() || mOutImage.getDataPtr() == nullptr) {
        return false;
    }
    if (mOutImage.getWidth() <= mTileSize && mOutImage.getHeight() <= mTileSize) {
        return filterRegion(mInputs, mOutImage);
    }
    setupTileOutputBuffer();
    const Tile whole{0, 0, mOutImage.getWidth(), mOutImage.getHeight()};
    const std::vector<Tile> bands = whole.splitVertical(mTileSize, mOverlap);
    return std::all_of(bands.begin(), bands.end(), [this](const Tile& band) { return filterStripe(band); });
}

bool TiledFilter::filterStripe(const Tile& band) {
    const std::vector<Tile> tiles = band.splitHorizontal(mTileSize, mOverlap);
    return std::all_of(tiles.begin(), tiles.end(), [this](const Tile& tile) { return filterTile(tile); });
}

bool TiledFilter::filterTile(const Tile& tile) {
    std::map<int, Image> inputs;
    for (const auto& [key, image] : mInputs) {
        inputs.emplace(key, tile.getAsSubImage(image));
    }
    if (mOverlap == 0) {
        Image output = tile.getAsSubImage(mOutImage);
        return filterRegion(inputs, output);
    }
    const std::size_t byteRowStride = mOutImage.getBytePixelStride() * std::min(mTileSize, mOutImage.getWidth());
    Image result(mTileBuffer.data(), tile.width, tile.height, mOutImage.getFormat(), byteRowStride);
    if (!filterRegion(inputs, result)) {
        return false;
    }
    tileToOutImage(tile, result);
    return true;
}

void TiledFilter::setupTileOutputBuffer() {
    mTileBuffer.resize(mOutImage.getBytePixelStride() * std::min(mTileSize, mOutImage.getWidth()) *
                       std::min(mTileSize, mOutImage.getHeight()));
}

void TiledFilter::tileToOutImage(const Tile& tile, const Image& result) {
    const Axis h = divide({tile.x, tile.width}, mOutImage.getWidth(), mOverlap, mMargin);
    const Axis v = divide({tile.y, tile.height}, mOutImage.getHeight(), mOverlap, mMargin);
    const Image target = tile.getAsSubImage(mOutImage);

    using kernels::Ramp;
    kernels::copyRectangle(result, target, {h.plainStart(), v.plainStart(), h.plain, v.plain});
    kernels::blendRectangle(result, target, {h.margin, v.plainStart(), h.blend, v.plain}, Ramp::COLUMNS);
    kernels::blendRectangle(result, target, {h.plainStart(), v.margin, h.plain, v.blend}, Ramp::ROWS);
    kernels::blendRectangle(result, target, {h.margin, v.margin, h.blend, v.blend}, Ramp::CORNER);
}

} // namespace zqx::img
