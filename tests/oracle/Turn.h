// Mirror images and quarter turns. Pixels are packed within a row; rows lie a row stride apart.
#pragma once

#include <cstring>

#include "oracle/Pixels.h"

namespace oracle {

inline unsigned char* packedAt(const Surface& s, std::size_t x, std::size_t y) {
    return s.data + y * s.rowStride + x * pixelSize(s.format);
}

/// Copies every source pixel to where place(x, y) puts it in the target.
template <typename Place>
void scatter(const Surface& source, const Surface& target, Place place) {
    for (std::size_t y = 0; y < source.height; ++y) {
        for (std::size_t x = 0; x < source.width; ++x) {
            std::size_t toX = 0;
            std::size_t toY = 0;
            place(x, y, toX, toY);
            std::memcpy(packedAt(target, toX, toY), packedAt(source, x, y), pixelSize(source.format));
        }
    }
}

inline void mirrorLeftRight(const Surface& source, const Surface& target) {
    scatter(source, target, [&](std::size_t x, std::size_t y, std::size_t& toX, std::size_t& toY) {
        toX = source.width - 1 - x;
        toY = y;
    });
}

inline void mirrorTopBottom(const Surface& source, const Surface& target) {
    scatter(source, target, [&](std::size_t x, std::size_t y, std::size_t& toX, std::size_t& toY) {
        toX = x;
        toY = source.height - 1 - y;
    });
}

inline void turnClockwise(const Surface& source, const Surface& target) {
    scatter(source, target, [&](std::size_t x, std::size_t y, std::size_t& toX, std::size_t& toY) {
        toX = source.height - 1 - y;
        toY = x;
    });
}

inline void turnAround(const Surface& source, const Surface& target) {
    scatter(source, target, [&](std::size_t x, std::size_t y, std::size_t& toX, std::size_t& toY) {
        toX = source.width - 1 - x;
        toY = source.height - 1 - y;
    });
}

inline void turnCounterClockwise(const Surface& source, const Surface& target) {
    scatter(source, target, [&](std::size_t x, std::size_t y, std::size_t& toX, std::size_t& toY) {
        toX = y;
        toY = source.width - 1 - x;
    });
}

} // namespace oracle
