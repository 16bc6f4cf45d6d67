// Sizes of downscaled pictures; a kernel computes their pixels.
#include <zqx/tools/Resize.h>

#include <algorithm>
#include <cstdint>

#include "kernels/geometry/AreaAverage.h"

namespace zqx::tools {

Size fitted(Size size, unsigned longestSide) {
    const std::uint64_t longest = std::max(size.width, size.height);
    if (longest <= longestSide) {
        return size;
    }
    const auto scaled = [&](std::uint64_t side) {
        return static_cast<unsigned>(std::max<std::uint64_t>(1, (side * longestSide + longest / 2) / longest));
    };
    return {scaled(size.width), scaled(size.height)};
}

pictures::PixelBuffer areaAverage(const img::Image& source, Size size) {
    pictures::PixelBuffer result(size.width, size.height, pictures::getLayout(source));
    img::kernels::averageArea(source, result.image());
    return result;
}

} // namespace zqx::tools
