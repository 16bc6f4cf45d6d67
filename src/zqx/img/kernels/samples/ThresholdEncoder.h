// Codes of floats by the smallest float of each: exact for every float, whatever curve lies between, and without a
// power. One template for bytes and 16-bit codes, truncated or rounded: its thresholds make the difference.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace zqx::img::kernels {

/// Positive floats order like their bits, so the upper 16 bits (exponent and 7 mantissa bits) name buckets of floats
/// that follow each other.
inline constexpr int BUCKET_SHIFT = 16;

constexpr std::uint32_t bucketIndex(float positive) {
    return std::bit_cast<std::uint32_t>(positive) >> BUCKET_SHIFT;
}

/// Encodes values from 0 to 1; what is beyond, infinities too, gets the first or the last code, and NaN the first.
///
/// For curves that rise ever less steeply, as encoding curves do. Bytes: no bucket may hold two thresholds. More codes:
/// within a bucket the curve may bulge above its chord by no more than a code.
template <std::size_t Codes>
class ThresholdEncoder {
public:
    using Code = std::conditional_t<Codes <= 256, std::uint8_t, std::uint16_t>;

    /// @param threshold tells the smallest float of each code from 1 on
    template <typename Threshold>
    constexpr explicit ThresholdEncoder(const Threshold& threshold) {
        for (std::size_t code = 1; code < Codes; ++code) {
            mThresholds[code] = threshold(code);
        }
        mThresholds[Codes] = std::numeric_limits<float>::infinity();
        std::size_t code = 0;
        for (std::uint32_t bucket = bucketIndex(mThresholds[1]); bucket < BUCKETS; ++bucket) {
            while (std::bit_cast<float>(bucket << BUCKET_SHIFT) >= mThresholds[code + 1]) {
                ++code;
            }
            mFirstCodes[bucket] = static_cast<Code>(code);
        }
    }

    constexpr Code operator()(float v) const {
        if (!(v >= mThresholds[1])) { // also NaN
            return 0;
        }
        if (v >= 1.0F) {
            return Codes - 1;
        }
        std::uint32_t code = guess(v); // right, or too small by what is added
        for (int i = 0; i < MOST_MISSING; ++i) {
            code += v >= mThresholds[code + 1] ? 1U : 0U;
        }
        return static_cast<Code>(code);
    }

private:
    static constexpr std::uint32_t BUCKETS = bucketIndex(1.0F) + 1;
    static constexpr bool HAS_BUCKETS_OF_MANY = Codes > 256;
    /// Codes at both ends of a bucket are rounded down, and the curve lies above their chord.
    static constexpr int MOST_MISSING = HAS_BUCKETS_OF_MANY ? 2 : 1;

    constexpr std::uint32_t guess(float v) const {
        const std::uint32_t bucket = bucketIndex(v);
        const std::uint32_t first = mFirstCodes[bucket];
        if constexpr (HAS_BUCKETS_OF_MANY) {
            const std::uint32_t within = std::bit_cast<std::uint32_t>(v) & ((1U << BUCKET_SHIFT) - 1U);
            return first + ((mFirstCodes[bucket + 1] - first) * within >> BUCKET_SHIFT);
        }
        return first;
    }

    std::array<float, Codes + 1> mThresholds{}; ///< and one that nothing reaches
    std::array<Code, BUCKETS> mFirstCodes{};    ///< of the smallest float of each bucket; the last is that of 1
};

} // namespace zqx::img::kernels
