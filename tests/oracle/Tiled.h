// A run over tiles, pixel by pixel: where the tiles lie, and what becomes of every pixel of a tile's result.
#pragma once

#include <algorithm>
#include <cstdint>

#include "oracle/Pixels.h"

namespace oracle {

/// A piece of a row or of a column.
struct Piece {
    std::uint64_t start;
    std::uint64_t length;

    bool operator==(const Piece& other) const { return start == other.start && length == other.length; }
};

inline std::vector<Piece> pieces(std::uint64_t total, std::uint64_t size, std::uint64_t overlap) {
    std::vector<Piece> result;
    std::uint64_t start = 0;
    while (start < total) {
        const std::uint64_t length = total - start < size ? total - start : size;
        if (!result.empty() && result.back().start + result.back().length >= start + length) {
            return result;
        }
        result.push_back({start, length});
        start = start + (size - overlap);
    }
    return result;
}

struct Rectangle {
    std::size_t x;
    std::size_t y;
    std::size_t width;
    std::size_t height;
};

struct Tiling {
    std::size_t size;
    std::size_t overlap;
    std::size_t margin;
};

/// All tiles in the order in which they are filtered: along a band, then the next band.
inline std::vector<Rectangle> getTiles(std::size_t width, std::size_t height, const Tiling& tiling) {
    std::vector<Rectangle> tiles;
    for (const Piece& band : pieces(height, tiling.size, tiling.overlap)) {
        for (const Piece& column : pieces(width, tiling.size, tiling.overlap)) {
            tiles.push_back({column.start, band.start, column.length, band.length});
        }
    }
    return tiles;
}

inline Surface cut(const Surface& whole, const Rectangle& r) {
    return {whole.format, whole.at(r.x, r.y), r.width, r.height, whole.pixelStride, whole.rowStride};
}

/// What a position along one axis of a tile is for.
struct Place {
    enum Kind { DISCARDED, FADED, PLAIN } kind;
    std::int64_t step; // of the fade, from 0
};

inline Place getPlace(std::int64_t position, std::int64_t tileStart, std::int64_t tileLength, std::int64_t total,
                      std::int64_t overlap, std::int64_t margin) {
    const bool hasNeighbourBefore = tileStart > 0;
    const bool hasNeighbourBehind = tileStart + tileLength != total;
    const std::int64_t fade = 2 * margin > overlap ? 0 : overlap - 2 * margin;
    if (hasNeighbourBefore && position < margin) {
        return {Place::DISCARDED, 0};
    }
    if (hasNeighbourBehind && position >= tileLength - margin) {
        return {Place::DISCARDED, 0};
    }
    if (hasNeighbourBefore && position < margin + fade) {
        return {Place::FADED, position - margin};
    }
    return {Place::PLAIN, 0};
}

inline void copyPixel(const Surface& result, const Surface& region, std::size_t x, std::size_t y) {
    std::memcpy(region.at(x, y), result.at(x, y), pixelSize(result.format));
}

/// A pixel counts as three floats; those that would begin or end behind the row of the tile do not exist.
inline void fadePixel(const Surface& result, const Surface& region, std::size_t x, std::size_t y, double weight) {
    for (std::size_t channel = 0; channel < 3; ++channel) {
        if (x * region.pixelStride + 4 * (channel + 1) > region.width * region.pixelStride) {
            return;
        }
        const double before = loadFloat(region.at(x, y) + 4 * channel);
        const double fresh = loadFloat(result.at(x, y) + 4 * channel);
        storeFloat(region.at(x, y) + 4 * channel, static_cast<float>(before * (1.0 - weight) + fresh * weight));
    }
}

/// Brings the result of one tile into the output: plain pixels first, then the fades on the left, at the top and in
/// the corner. The order shows in narrow formats alone, where the three floats of a pixel reach into its neighbours.
inline void mergeTile(const Surface& result, const Surface& output, const Rectangle& tile, const Tiling& tiling) {
    const Surface region = cut(output, tile);
    const auto overlap = static_cast<std::int64_t>(tiling.overlap);
    const auto margin = static_cast<std::int64_t>(tiling.margin);
    const auto forPixels = [&](Place::Kind across, Place::Kind down, auto visit) {
        for (std::size_t y = 0; y < tile.height; ++y) {
            for (std::size_t x = 0; x < tile.width; ++x) {
                const Place h = getPlace(x, tile.x, tile.width, output.width, overlap, margin);
                const Place v = getPlace(y, tile.y, tile.height, output.height, overlap, margin);
                if (h.kind == across && v.kind == down) {
                    visit(x, y, h.step, v.step);
                }
            }
        }
    };
    const auto weight = [&](std::int64_t step) {
        return static_cast<double>(step + 1) / static_cast<double>(overlap - 2 * margin + 1);
    };
    forPixels(Place::PLAIN, Place::PLAIN,
              [&](std::size_t x, std::size_t y, auto, auto) { copyPixel(result, region, x, y); });
    forPixels(Place::FADED, Place::PLAIN, [&](std::size_t x, std::size_t y, std::int64_t column, auto) {
        fadePixel(result, region, x, y, weight(column));
    });
    forPixels(Place::PLAIN, Place::FADED, [&](std::size_t x, std::size_t y, auto, std::int64_t row) {
        fadePixel(result, region, x, y, weight(row));
    });
    forPixels(Place::FADED, Place::FADED, [&](std::size_t x, std::size_t y, std::int64_t column, std::int64_t row) {
        fadePixel(result, region, x, y, weight(row < column ? row : column));
    });
}

/// The first so many tiles of a run. An output no larger than a tile is one tile, and written directly.
/// @param filter called with the number of the tile, its rectangle and the surface to fill
template <typename Filter>
void runTiled(const Surface& output, const Tiling& tiling, Filter filter, std::size_t count = SIZE_MAX) {
    if (output.width <= tiling.size && output.height <= tiling.size) {
        filter(std::size_t{0}, Rectangle{0, 0, output.width, output.height}, output);
        return;
    }
    const std::vector<Rectangle> tiles = getTiles(output.width, output.height, tiling);
    for (std::size_t number = 0; number < std::min(count, tiles.size()); ++number) {
        if (tiling.overlap == 0) {
            filter(number, tiles[number], cut(output, tiles[number]));
        } else {
            const Picture result(tiles[number].width, tiles[number].height, output.format);
            filter(number, tiles[number], result.surface);
            mergeTile(result.surface, output, tiles[number], tiling);
        }
    }
}

} // namespace oracle
