// How far a picture made of tiles is from the same picture made at once.
#pragma once

#include <cstddef>

#include <zqx/img/Image.h>

namespace tiled_denoise {

/// Differences of values, relative to max(|value|, 0.05): in the dark, a difference that shows is one of absolute size.
struct Difference {
    double largest = 0;
    double sum = 0;
    std::size_t count = 0;

    void add(double difference);
    double mean() const { return count > 0 ? sum / static_cast<double>(count) : 0; }
};

struct Comparison {
    Difference alongSeams; ///< where two tiles are cross-faded
    Difference elsewhere;

    /// A difference that is not a number exceeds every bound.
    bool isWithin(double bound) const { return alongSeams.largest <= bound && elsewhere.largest <= bound; }
};

/// Compares two RGB32F pictures of one size.
/// @param tileSize of the TiledDenoiser that made the first
Comparison compare(const zqx::img::Image& tiled, const zqx::img::Image& whole, std::size_t tileSize);

} // namespace tiled_denoise
