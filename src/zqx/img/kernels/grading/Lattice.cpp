#include "kernels/grading/Lattice.h"

#include <algorithm>
#include <vector>

#include "kernels/Rows.h"
#include "kernels/maths/Gamma.h"
#include "kernels/maths/ScalarMaths.h"

namespace zqx::img::kernels {

void fillEncodedLattice(std::size_t size, std::span<float> table) {
    std::vector<float> axis(size);
    for (std::size_t i = 0; i < size; ++i) {
        axis[i] = static_cast<float>(maths::pow(static_cast<double>(i) / static_cast<double>(size - 1), GAMMA));
    }
    forEachRow(size, [&](std::size_t blue) {
        float* entry = table.data() + 3 * size * size * blue;
        for (std::size_t green = 0; green < size; ++green) {
            for (std::size_t red = 0; red < size; ++red, entry += 3) {
                entry[0] = axis[red];
                entry[1] = axis[green];
                entry[2] = axis[blue];
            }
        }
    });
}

void encodeInPlace(std::span<float> values) {
    forEachBand(values.size(), [&](std::size_t, std::size_t first, std::size_t end) {
        for (float& value : values.subspan(first, end - first)) {
            value = static_cast<float>(maths::pow(std::clamp(static_cast<double>(value), 0.0, 1.0), 1.0 / GAMMA));
        }
    });
}

} // namespace zqx::img::kernels
