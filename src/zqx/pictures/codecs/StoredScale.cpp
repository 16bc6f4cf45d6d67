// Tables of the gamma curve, the pure power of 2.2.
#include "zqx/pictures/codecs/StoredScale.h"

#include <limits>

#include <zqx/img/Color.h>
#include "kernels/ScalarMaths.h"

namespace zqx::pictures {

const std::array<double, CODES>& decodedCodes() {
    static const std::array<double, CODES> table = [] {
        std::array<double, CODES> values{};
        for (std::size_t code = 0; code < CODES; ++code) {
            values[code] = img::srgb2linear(static_cast<unsigned char>(code));
        }
        return values;
    }();
    return table;
}

NearestCode::NearestCode() {
    constexpr double GAMMA = 2.2;
    constexpr double LARGEST = CODES - 1;
    for (std::size_t code = 1; code < CODES; ++code) {
        mLower[code] = static_cast<float>(img::kernels::maths::pow((static_cast<double>(code) - 0.5) / LARGEST, GAMMA));
    }
    mLower[CODES] = std::numeric_limits<float>::infinity();
    std::size_t code = 0;
    for (std::uint32_t key = 0; key < KEYS; ++key) {
        while (std::bit_cast<float>(key << KEY_SHIFT) >= mLower[code + 1]) {
            ++code;
        }
        mGuess[key] = static_cast<unsigned char>(code);
    }
}

const NearestCode& nearestCode() {
    static const NearestCode table;
    return table;
}

} // namespace zqx::pictures
