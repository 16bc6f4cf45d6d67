// Constants of colour science, each once and with its origin, and the 3x3 matrices made from them.
// All in single precision and evaluated by the compiler, in a fixed order: the same bits in every build.
#pragma once

#include <array>
#include <cstddef>

namespace zqx::img::kernels {

/// Row-major, acting on column vectors.
using Matrix3 = std::array<float, 9>;
using Vector3 = std::array<float, 3>;

constexpr Vector3 multiply(const Matrix3& m, const Vector3& v) {
    return {m[0] * v[0] + m[1] * v[1] + m[2] * v[2], m[3] * v[0] + m[4] * v[1] + m[5] * v[2],
            m[6] * v[0] + m[7] * v[1] + m[8] * v[2]};
}

constexpr Matrix3 multiply(const Matrix3& left, const Matrix3& right) {
    Matrix3 product{};
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column) {
            product[row * 3 + column] = left[row * 3] * right[column] + left[row * 3 + 1] * right[3 + column] +
                                        left[row * 3 + 2] * right[6 + column];
        }
    }
    return product;
}

/// Adjugate over determinant.
constexpr Matrix3 inverse(const Matrix3& m) {
    const float c00 = m[4] * m[8] - m[5] * m[7];
    const float c01 = m[5] * m[6] - m[3] * m[8];
    const float c02 = m[3] * m[7] - m[4] * m[6];
    const float determinant = m[0] * c00 + m[1] * c01 + m[2] * c02;
    return {c00 / determinant, (m[2] * m[7] - m[1] * m[8]) / determinant, (m[1] * m[5] - m[2] * m[4]) / determinant,
            c01 / determinant, (m[0] * m[8] - m[2] * m[6]) / determinant, (m[2] * m[3] - m[0] * m[5]) / determinant,
            c02 / determinant, (m[1] * m[6] - m[0] * m[7]) / determinant, (m[0] * m[4] - m[1] * m[3]) / determinant};
}

/// Linear RGB of the ITU-R BT.709 primaries with the D65 white point.
inline constexpr Matrix3 XYZ_TO_RGB = {3.24097F,     -1.5373832F, -0.49861076F, -0.96924365F, 1.8759675F,
                                       0.041555058F, 0.05563008F, -0.20397696F, 1.0569715F};
/// The inverse as computed, not a rounded textbook matrix: going there and back must cancel.
inline constexpr Matrix3 RGB_TO_XYZ = inverse(XYZ_TO_RGB);

/// Cone responses of K. M. Lam's adaptation transform, commonly called Bradford.
inline constexpr Matrix3 BRADFORD = {0.8951F, 0.2664F, -0.1614F, -0.7502F, 1.7135F,
                                     0.0367F, 0.0389F, -0.0685F, 1.0296F};
/// Cone responses of Hunt, Pointer and Estevez, and plain XYZ scaling: the other usual choices for adaptation.
inline constexpr Matrix3 VON_KRIES = {0.40024F, 0.7076F, -0.08081F, -0.2263F, 1.16532F, 0.0457F, 0.0F, 0.0F, 0.91822F};
inline constexpr Matrix3 XYZ_SCALING = {1.0F, 0.0F, 0.0F, 0.0F, 1.0F, 0.0F, 0.0F, 0.0F, 1.0F};

/// D65 chromaticity (CIE 15, 2 degree observer).
inline constexpr float D65_X = 0.31271F;
inline constexpr float D65_Y = 0.32902F;
/// CIE 1976 u', v' of the white that hue turns around.
inline constexpr double WHITE_U = 0.19783982482140777;
inline constexpr double WHITE_V = 0.4683363029324097;
/// CIE lightness: the linear segment's slope 24389 / 27 and its end 216 / 24389.
inline constexpr double CIE_KAPPA = 903.2962962962963;
inline constexpr double CIE_EPSILON = 0.008856451679035631;

/// Luma weights of ITU-R BT.709.
inline constexpr float LUMA_RED = 0.2126F;
inline constexpr float LUMA_GREEN = 0.7152F;
inline constexpr float LUMA_BLUE = 0.0722F;

/// Luma weights of ITU-R BT.601 to four digits, which are applied to encoded values; they sum to 0.9999.
inline constexpr float ENCODED_LUMA_RED = 0.2989F;
inline constexpr float ENCODED_LUMA_GREEN = 0.587F;
inline constexpr float ENCODED_LUMA_BLUE = 0.114F;

constexpr float luma(float r, float g, float b) {
    return LUMA_RED * r + LUMA_GREEN * g + LUMA_BLUE * b;
}

/// Chromaticity of daylight of a correlated colour temperature in kelvin (CIE 15, daylight locus).
/// Used as it stands outside its domain of 4000 K to 25000 K too.
struct Chromaticity {
    float x;
    float y;
};
constexpr Chromaticity daylightWhite(double kelvin) {
    const double t2 = kelvin * kelvin;
    const double t3 = t2 * kelvin;
    const double x = kelvin <= 7000.0 ? -4.607e9 / t3 + 2.9678e6 / t2 + 99.11 / kelvin + 0.244063
                                      : -2.0064e9 / t3 + 1.9018e6 / t2 + 247.48 / kelvin + 0.23704;
    const double y = 2.87 * x - 3.0 * x * x - 0.275;
    return {static_cast<float>(x), static_cast<float>(y)};
}

/// XYZ of a chromaticity at Y = 1.
constexpr Vector3 whitePoint(Chromaticity c) {
    const float y = c.y < 1e-10F ? 1e-10F : c.y;
    return {c.x / y, 1.0F, (1.0F - c.x - c.y) / y};
}

/// The matrix on linear RGB that adapts the daylight white of a temperature to D65 by scaling cone responses (J. von
/// Kries; see B. Lindbloom, Chromatic Adaptation).
constexpr Matrix3 whiteBalanceMatrix(float kelvin, const Matrix3& cones = BRADFORD) {
    const Vector3 source = multiply(cones, whitePoint(daylightWhite(static_cast<double>(kelvin))));
    const Vector3 target = multiply(cones, whitePoint({D65_X, D65_Y}));
    const Matrix3 scaling = {target[0] / source[0], 0, 0, 0, target[1] / source[1], 0, 0, 0, target[2] / source[2]};
    return multiply(XYZ_TO_RGB, multiply(inverse(cones), multiply(scaling, multiply(cones, RGB_TO_XYZ))));
}

} // namespace zqx::img::kernels
