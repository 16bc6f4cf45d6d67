/// @file
/// Filtering an image of any size tile by tile, with bounded working memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

#include <zqx/img/Export.h>
#include <zqx/img/Filter.h>
#include <zqx/img/Image.h>
#include <zqx/img/Warnings.h>

namespace zqx::img {

ZQX_IMG_BEGIN_PLAIN_DESTRUCTORS

/// A rectangle of pixels.
/// @ingroup filters
struct ZQX_IMG_API Tile {
    std::size_t x;      ///< left column
    std::size_t y;      ///< top row
    std::size_t width;  ///< pixels
    std::size_t height; ///< pixels

    /// Cuts the tile along its width into pieces of at most size pixels, neighbours sharing overlap pixels, from left
    /// to right. The last piece is what remains. An overlap of size or more gives the first piece alone, a tile
    /// without width gives none.
    std::vector<Tile> splitHorizontal(std::size_t size, std::size_t overlap) const;
    /// Cuts the tile along its height, from top to bottom, by the rules of splitHorizontal.
    std::vector<Tile> splitVertical(std::size_t size, std::size_t overlap) const;

    /// A view of this rectangle of an image. It reports GRAY8 whatever the image holds: see Image::getSubImage.
    Image getAsSubImage(const Image& image) const;
};

/// A filter that runs an operation over its output tile by tile, so that the working memory of the operation follows
/// the tile and not the image.
///
/// Derive from it and implement filterRegion(). Neighbouring tiles overlap. Of the result of a tile, the margin next
/// to each inner edge is discarded, and what remains of the overlap is cross-faded with what the tiles to the left and
/// above have written: linearly, over overlap - 2 * margin pixels. With a margin of more than half the overlap, seams
/// of 2 * margin - overlap pixels are never written and keep their content. Every key of the inputs is cut as the
/// output is, so the inputs have its size.
///
/// With an overlap the output must be RGB32F: cross-fading takes a pixel for three floats, whatever the format says.
/// (In narrower formats it stays within the row, and is of no use.) Without an overlap any format will do; tiles are
/// then written straight into the output, and nothing is discarded.
///
/// Thread-safety: one thread at a time per filter. Tiles are filtered one after another on the calling thread.
/// @ingroup filters
class ZQX_IMG_API TiledFilter : public Filter {
public:
    /// @param tileSize largest width and height of a tile, in pixels
    /// @param overlap pixels that neighbouring tiles share
    /// @param margin pixels of a tile's result that are discarded at each edge inside the image
    explicit TiledFilter(std::size_t tileSize = 1024, std::size_t overlap = 32, std::size_t margin = 8);

    /// Filters all tiles, in bands from top to bottom and from left to right in each. An output of at most one tile is
    /// filtered by one call with the inputs and the output themselves.
    /// @return false without inputs or without output pixels, and at the first region that fails; what earlier tiles
    ///         wrote stays. The message is the operation's to set.
    /// @throws std::bad_alloc
    bool execute() override;

protected:
    /// The operation: reads the inputs, cut to a region, and writes its output.
    ///
    /// Inputs are views whose format reads GRAY8 as soon as there is more than one tile; the same holds for the output
    /// when there is no overlap. Take the pixel layout from the strides, or from the images that were set.
    /// @param inputs the regions, under the keys of setInput
    /// @param output of the size of the region
    /// @return false when the region could not be filtered; the run ends there
    virtual bool filterRegion(const std::map<int, Image>& inputs, Image& output) = 0;

private:
    bool filterStripe(const Tile& band);
    bool filterTile(const Tile& tile);
    void setupTileOutputBuffer();
    void tileToOutImage(const Tile& tile, const Image& result);

    std::size_t mTileSize;
    std::size_t mOverlap;
    std::size_t mMargin;
    std::vector<std::uint8_t> mTileBuffer; // the result of one tile, when tiles overlap
};

ZQX_IMG_END_PLAIN_DESTRUCTORS

} // namespace zqx::img
