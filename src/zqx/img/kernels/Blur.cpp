// Both passes are sums of shifted rows: acc[i] += tap * row[i + shift], with the taps outermost, so that every
// element sees its products in ascending order of taps whatever the vector width.
#include "Blur.h"

#include <algorithm>

#include "PixelFormat.h"
#include "Rows.h"

namespace zqx::img::kernels {

namespace {

/// Floats that are accumulated together: the sums and the inputs of a few taps stay in the first-level cache.
constexpr std::size_t SPAN = 2048;

float* rowOf(const Image& image, std::size_t y) {
    return static_cast<float*>(image.getRowPtr(y));
}

std::size_t floatsPerPixel(const Image& image) {
    return pixelFormat(image.getFormat()).elementCount();
}

/// Index of a row or column, replicated beyond the border: position runs from -radius, `radius` is added to stay
/// unsigned.
std::size_t replicated(std::size_t positionPlusRadius, std::size_t radius, std::size_t count) {
    return positionPlusRadius < radius ? 0 : std::min(positionPlusRadius - radius, count - 1);
}

void addScaled(float* sums, const float* values, std::size_t count, float factor) {
    for (std::size_t i = 0; i < count; ++i) {
        sums[i] += factor * values[i];
    }
}

/// target[i] = sum over taps of tap * input(tap)[i], in spans. `input` gives the values that a tap reads.
template <typename Input>
void sumTaps(float* target, std::size_t count, const std::vector<float>& taps, const Input& input) {
    float sums[SPAN];
    for (std::size_t first = 0; first < count; first += SPAN) {
        const std::size_t length = std::min(SPAN, count - first);
        std::fill_n(sums, length, 0.0F);
        for (std::size_t tap = 0; tap < taps.size(); ++tap) {
            addScaled(sums, input(tap) + first, length, taps[tap]);
        }
        std::copy_n(sums, length, target + first);
    }
}

} // namespace

void convolveRows(const Image& source, const Image& target, const std::vector<float>& taps) {
    const std::size_t channels = floatsPerPixel(source);
    const std::size_t width = source.getWidth();
    const std::size_t height = source.getHeight();
    if (width == 0 || height == 0) {
        return;
    }
    // Rows are extended by the radius on both sides. Allocated for all rows at once a row's worth would be wasted per
    // thread, so bands of rows share one.
    const std::size_t radius = taps.size() / 2;
    const std::size_t extended = (width + 2 * radius) * channels;
    const std::size_t bands = std::min<std::size_t>(height, 64);
    std::vector<float> lines(bands * extended);
    forEachRow(bands, [&](std::size_t band) {
        float* line = lines.data() + band * extended;
        for (std::size_t y = band * height / bands; y < (band + 1) * height / bands; ++y) {
            const float* row = rowOf(source, y);
            for (std::size_t x = 0; x < width + 2 * radius; ++x) {
                std::copy_n(row + replicated(x, radius, width) * channels, channels, line + x * channels);
            }
            sumTaps(rowOf(target, y), width * channels, taps, [&](std::size_t tap) { return line + tap * channels; });
        }
    });
}

void convolveColumns(const Image& source, const Image& target, const std::vector<float>& taps) {
    const std::size_t radius = taps.size() / 2;
    const std::size_t count = source.getWidth() * floatsPerPixel(source);
    const std::size_t height = source.getHeight();
    forEachRow(height, [&](std::size_t y) {
        sumTaps(rowOf(target, y), count, taps,
                [&](std::size_t tap) { return rowOf(source, replicated(y + tap, radius, height)); });
    });
}

} // namespace zqx::img::kernels
