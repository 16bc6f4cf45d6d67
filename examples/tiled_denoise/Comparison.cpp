#include "Comparison.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include <zqx/img/TiledFilter.h>

#include "TiledDenoiser.h"

namespace tiled_denoise {

using zqx::img::Image;
using zqx::img::Tile;

namespace {

constexpr double DARKEST = 0.05;

/// For each position along one side, whether it lies in a cross-fade.
std::vector<bool> seams(std::size_t length, std::size_t tileSize) {
    std::vector<bool> isSeam(length, false);
    for (const Tile& tile : Tile{0, 0, length, 1}.splitHorizontal(tileSize, TiledDenoiser::OVERLAP)) {
        for (std::size_t i = TiledDenoiser::MARGIN; tile.x > 0 && i < TiledDenoiser::OVERLAP - TiledDenoiser::MARGIN;
             ++i) {
            isSeam[tile.x + i] = true;
        }
    }
    return isSeam;
}

double relativeDifference(float value, float expected) {
    return std::fabs(static_cast<double>(value) - expected) / std::max<double>(std::fabs(expected), DARKEST);
}

} // namespace

void Difference::add(double difference) {
    largest = std::isnan(difference) ? std::numeric_limits<double>::infinity() : std::max(largest, difference);
    sum += difference;
    ++count;
}

Comparison compare(const Image& tiled, const Image& whole, std::size_t tileSize) {
    const std::vector<bool> seamColumns = seams(whole.getWidth(), tileSize);
    const std::vector<bool> seamRows = seams(whole.getHeight(), tileSize);
    Comparison comparison;
    for (std::size_t y = 0; y < whole.getHeight(); ++y) {
        for (std::size_t x = 0; x < whole.getWidth(); ++x) {
            const auto* value = static_cast<const float*>(tiled.getPixelPtr(x, y));
            const auto* expected = static_cast<const float*>(whole.getPixelPtr(x, y));
            Difference& place = seamColumns[x] || seamRows[y] ? comparison.alongSeams : comparison.elsewhere;
            for (std::size_t channel = 0; channel < 3; ++channel) {
                place.add(relativeDifference(value[channel], expected[channel]));
            }
        }
    }
    return comparison;
}

} // namespace tiled_denoise
