// The scale of gamma-encoded bytes, for values that are linear.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace zqx::pictures {

constexpr std::size_t CODES = 256;

/// Encoded bytes as linear light.
const std::array<double, CODES>& decodedCodes();

/// Finds the encoded byte nearest to a linear value. Conversion by the library truncates, which suits values that have
/// been bytes before; averages scatter around the right one and would come out half a step too dark.
class NearestCode {
public:
    NearestCode();

    /// Limited to 0 and 255; NaN becomes 0.
    unsigned char operator()(float linear) const {
        if (!(linear > 0.0F)) {
            return 0;
        }
        if (linear >= 1.0F) {
            return CODES - 1;
        }
        const std::size_t code = mGuess[std::bit_cast<std::uint32_t>(linear) >> KEY_SHIFT];
        return static_cast<unsigned char>(linear >= mLower[code + 1] ? code + 1 : code);
    }

private:
    static constexpr unsigned KEY_SHIFT = 16; // exponent and 7 bits: a step of the key is less than one code
    static constexpr std::size_t KEYS = std::bit_cast<std::uint32_t>(1.0F) >> KEY_SHIFT;

    std::array<float, CODES + 1> mLower{};    // the least value of each code, and one that nothing reaches
    std::array<unsigned char, KEYS> mGuess{}; // the code of the least float of each key
};

/// The one table of the program.
const NearestCode& nearestCode();

} // namespace zqx::pictures
