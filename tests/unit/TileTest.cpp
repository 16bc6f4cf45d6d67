// Tiles: how a length is cut into pieces that overlap, and the view of a tile's pixels.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <zqx/img/TiledFilter.h>

#include "oracle/Tiled.h"
#include "unit/support/Formats.h"

namespace {

using oracle::Piece;
using test::ALL_FORMATS;
using test::Image;
using zqx::img::Tile;

using Pieces = std::vector<Piece>;

Pieces getColumns(const std::vector<Tile>& tiles) {
    Pieces pieces;
    for (const Tile& tile : tiles) {
        pieces.push_back({tile.x, tile.width});
    }
    return pieces;
}

Pieces getRows(const std::vector<Tile>& tiles) {
    Pieces pieces;
    for (const Tile& tile : tiles) {
        pieces.push_back({tile.y, tile.height});
    }
    return pieces;
}

Pieces splitWidth(std::size_t width, std::size_t size, std::size_t overlap) {
    return getColumns(Tile{0, 0, width, 1}.splitHorizontal(size, overlap));
}

Pieces splitHeight(std::size_t height, std::size_t size, std::size_t overlap) {
    return getRows(Tile{0, 0, 1, height}.splitVertical(size, overlap));
}

/// Both axes follow the same rule.
void expectPieces(const Pieces& expected, std::size_t length, std::size_t size, std::size_t overlap) {
    EXPECT_TRUE(splitWidth(length, size, overlap) == expected)
        << "width " << length << ", size " << size << ", overlap " << overlap;
    EXPECT_TRUE(splitHeight(length, size, overlap) == expected)
        << "height " << length << ", size " << size << ", overlap " << overlap;
}

TEST(TileTest, IsARecordOfFourSizes) {
    static_assert(std::is_aggregate_v<Tile> && std::is_standard_layout_v<Tile>);
    static_assert(std::is_same_v<std::size_t, decltype(Tile::x)>);
    static_assert(offsetof(Tile, x) == 0);
    static_assert(offsetof(Tile, y) == sizeof(std::size_t));
    static_assert(offsetof(Tile, width) == 2 * sizeof(std::size_t));
    static_assert(offsetof(Tile, height) == 3 * sizeof(std::size_t));
    static_assert(sizeof(Tile) == 4 * sizeof(std::size_t));
}

TEST(TileTest, AssignmentCopiesAllMembers) {
    const Tile source{1, 2, 3, 4};
    Tile copied{};
    copied = source;
    Tile moved{};
    moved = Tile{5, 6, 7, 8};
    EXPECT_EQ(1U, copied.x);
    EXPECT_EQ(2U, copied.y);
    EXPECT_EQ(3U, copied.width);
    EXPECT_EQ(4U, copied.height);
    EXPECT_EQ(5U, moved.x);
    EXPECT_EQ(6U, moved.y);
    EXPECT_EQ(7U, moved.width);
    EXPECT_EQ(8U, moved.height);
}

TEST(TileTest, NeighboursShareTheOverlapAndTheLastIsWhatRemains) {
    expectPieces({{0, 512}, {448, 512}, {896, 104}}, 1000, 512, 64);
}

TEST(TileTest, WithoutOverlapPiecesLieSideBySide) {
    expectPieces({{0, 4}, {4, 4}, {8, 2}}, 10, 4, 0);
    expectPieces({{0, 4}, {4, 4}}, 8, 4, 0);
}

TEST(TileTest, OnePixelPieces) {
    expectPieces({{0, 1}, {1, 1}, {2, 1}}, 3, 1, 0);
    expectPieces({{0, 2}, {1, 2}, {2, 2}}, 4, 2, 1);
}

TEST(TileTest, NoPieceLiesWithinTheOneBeforeIt) {
    expectPieces({{0, 6}, {2, 6}}, 8, 6, 4); // (4, 4) would add nothing
    expectPieces({{0, 500}, {250, 500}, {500, 500}}, 1000, 500, 250);
}

TEST(TileTest, LengthUpToTheSizeIsOnePiece) {
    expectPieces({{0, 7}}, 7, 8, 3);
    expectPieces({{0, 8}}, 8, 8, 3);
    expectPieces({{0, 8}, {5, 4}}, 9, 8, 3);
}

TEST(TileTest, NothingIsCutIntoNoPieces) {
    expectPieces({}, 0, 8, 3);
    expectPieces({}, 0, 0, 0);
}

TEST(TileTest, SizeZeroGivesOneEmptyPiece) {
    expectPieces({{0, 0}}, 10, 0, 0);
    expectPieces({{0, 0}}, 10, 0, 4);
}

TEST(TileTest, OverlapOfTheSizeGivesTheFirstPieceAlone) {
    expectPieces({{0, 8}}, 100, 8, 8);
}

TEST(TileTest, OverlapBeyondTheSizeGivesTheFirstPieceAlone) {
    expectPieces({{0, 8}}, 100, 8, 9);
    expectPieces({{0, 8}}, 100, 8, 1000);
}

TEST(TileTest, LargestSizeIsOnePiece) {
    constexpr std::size_t LARGEST = std::numeric_limits<std::size_t>::max();
    expectPieces({{0, 100}}, 100, LARGEST, 0);
    expectPieces({{0, 100}}, 100, LARGEST, 32);
    expectPieces({{0, LARGEST}}, LARGEST, LARGEST, 0);
}

TEST(TileTest, PiecesKeepTheOffsetAndTheOtherAxis) {
    const std::vector<Tile> across = Tile{100, 200, 10, 20}.splitHorizontal(6, 2);
    ASSERT_EQ(2U, across.size());
    EXPECT_EQ(100U, across[0].x);
    EXPECT_EQ(104U, across[1].x);
    const std::vector<Tile> down = Tile{100, 200, 10, 20}.splitVertical(12, 4);
    ASSERT_EQ(2U, down.size());
    EXPECT_EQ(200U, down[0].y);
    EXPECT_EQ(208U, down[1].y);
    for (const std::size_t i : {0U, 1U}) {
        EXPECT_EQ(6U, across[i].width);
        EXPECT_EQ(200U, across[i].y);
        EXPECT_EQ(20U, across[i].height);
        EXPECT_EQ(12U, down[i].height);
        EXPECT_EQ(100U, down[i].x);
        EXPECT_EQ(10U, down[i].width);
    }
}

TEST(TileTest, OtherAxisMayBeEmpty) {
    EXPECT_EQ(2U, (Tile{0, 0, 10, 0}.splitHorizontal(6, 2).size()));
    EXPECT_EQ(2U, (Tile{0, 0, 0, 10}.splitVertical(6, 2).size()));
}

TEST(TileTest, PiecesAreThoseOfThePlainLoop) {
    for (std::size_t length = 0; length <= 33; ++length) {
        for (std::size_t size = 0; size <= 12; ++size) {
            for (std::size_t overlap = 0; overlap <= 14; ++overlap) {
                expectPieces(oracle::pieces(length, size, overlap), length, size, overlap);
            }
        }
    }
    for (const std::size_t length : {1000U, 1024U, 1025U, 2000U, 4096U}) {
        for (const std::size_t size : {100U, 512U, 1024U}) {
            for (const std::size_t overlap : {0U, 1U, 32U, 64U, 99U, 511U, 2000U}) {
                expectPieces(oracle::pieces(length, size, overlap), length, size, overlap);
            }
        }
    }
}

TEST(TileTest, PiecesCoverTheLengthInAscendingOrder) {
    for (std::size_t length = 1; length <= 40; ++length) {
        for (std::size_t size = 1; size <= 9; ++size) {
            for (std::size_t overlap = 0; overlap < size; ++overlap) {
                const Pieces pieces = splitWidth(length, size, overlap);
                ASSERT_FALSE(pieces.empty());
                EXPECT_EQ(0U, pieces.front().start);
                EXPECT_EQ(length, pieces.back().start + pieces.back().length);
                for (std::size_t i = 1; i < pieces.size(); ++i) {
                    EXPECT_EQ(pieces[i - 1].start + size, pieces[i].start + overlap);
                    EXPECT_GT(pieces[i].length, overlap);
                }
            }
        }
    }
}

TEST(TileTest, SubImageIsAViewOfTheRectangle) {
    for (const Image::Format format : ALL_FORMATS) {
        const Image image(9, 7, format, 64);
        const Image view = Tile{2, 3, 5, 4}.getAsSubImage(image);
        EXPECT_EQ(image.getPixelPtr(2, 3), view.getDataPtr());
        EXPECT_EQ(5U, view.getWidth());
        EXPECT_EQ(4U, view.getHeight());
        EXPECT_EQ(image.getBytePixelStride(), view.getBytePixelStride());
        EXPECT_EQ(image.getByteRowStride(), view.getByteRowStride());
        EXPECT_EQ(Image::GRAY8, view.getFormat());
    }
}

} // namespace
