// Colour grading: preparation of the settings, the steps on one pixel, whole pictures and both lookup tables.
#pragma once

#include <array>
#include <vector>

#include "oracle/Gradient.h"
#include "oracle/Pixels.h"

namespace oracle {

using Matrix = std::array<float, 9>;

/// The settings as a user gives them, already within their ranges.
struct Settings {
    float exposure = 0.0F;
    float contrast = 0.5F;
    float highlight = 0.0F;
    float shadow = 0.0F;
    float temperature = 6500.0F;
    float hue = 0.0F;
    float saturation = 1.0F;
    float intensity = 0.0F;
    std::vector<Values> stops;
};

struct Prepared {
    float exposureFactor;
    float exponent;
    float highlight;
    float shadow;
    bool hasWhiteBalance;
    Matrix whiteBalance;
    float hue;
    float saturation;
    float intensity;
    std::vector<Values> table;
};

constexpr Matrix XYZ_TO_RGB = {3.24097F,     -1.5373832F, -0.49861076F, -0.96924365F, 1.8759675F,
                               0.041555058F, 0.05563008F, -0.20397696F, 1.0569715F};
constexpr Matrix BRADFORD = {0.8951F, 0.2664F, -0.1614F, -0.7502F, 1.7135F, 0.0367F, 0.0389F, -0.0685F, 1.0296F};
constexpr double U_WHITE = 0.19783982482140777;
constexpr double V_WHITE = 0.4683363029324097;
constexpr double KAPPA = 903.2962962962963;
constexpr double EPSILON = 0.008856451679035631;
constexpr float FLOAT_EPSILON = 1.1920929e-7F;

inline Matrix multiply(const Matrix& a, const Matrix& b) {
    Matrix product{};
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            product[3 * row + column] =
                a[3 * row] * b[column] + a[3 * row + 1] * b[3 + column] + a[3 * row + 2] * b[6 + column];
        }
    }
    return product;
}

inline Values multiply(const Matrix& m, const Values& c) {
    return {m[0] * c.r + m[1] * c.g + m[2] * c.b, m[3] * c.r + m[4] * c.g + m[5] * c.b,
            m[6] * c.r + m[7] * c.g + m[8] * c.b, c.a};
}

/// Adjugate over determinant.
inline Matrix inverse(const Matrix& m) {
    const Matrix adjugate = {m[4] * m[8] - m[5] * m[7], m[2] * m[7] - m[1] * m[8], m[1] * m[5] - m[2] * m[4],
                             m[5] * m[6] - m[3] * m[8], m[0] * m[8] - m[2] * m[6], m[2] * m[3] - m[0] * m[5],
                             m[3] * m[7] - m[4] * m[6], m[1] * m[6] - m[0] * m[7], m[0] * m[4] - m[1] * m[3]};
    const float determinant = m[0] * adjugate[0] + m[1] * adjugate[3] + m[2] * adjugate[6];
    Matrix result{};
    for (int i = 0; i < 9; ++i) {
        result[i] = adjugate[i] / determinant;
    }
    return result;
}

inline Matrix rgbToXyz() {
    return inverse(XYZ_TO_RGB);
}

struct Chromaticity {
    float x;
    float y;
};

/// CIE daylight locus in double precision, rounded at the end.
inline Chromaticity daylight(float temperature) {
    const double t = temperature;
    const double x = t <= 7000.0 ? -4.607e9 / (t * t * t) + 2.9678e6 / (t * t) + 99.11 / t + 0.244063
                                 : -2.0064e9 / (t * t * t) + 1.9018e6 / (t * t) + 247.48 / t + 0.23704;
    const double y = 2.87 * x - 3.0 * x * x - 0.275;
    return {static_cast<float>(x), static_cast<float>(y)};
}

inline Values whiteXyz(const Chromaticity& white) {
    const float divisor = white.y < 1e-10F ? 1e-10F : white.y;
    return {white.x / divisor, 1.0F, (1.0F - white.x - white.y) / divisor, 0.0F};
}

inline Matrix whiteBalanceMatrix(float temperature) {
    const Values source = multiply(BRADFORD, whiteXyz(daylight(temperature)));
    const Values target = multiply(BRADFORD, whiteXyz({0.31271F, 0.32902F}));
    const Matrix gains = {target.r / source.r, 0, 0, 0, target.g / source.g, 0, 0, 0, target.b / source.b};
    const Matrix cones = multiply(BRADFORD, rgbToXyz());
    return multiply(XYZ_TO_RGB, multiply(inverse(BRADFORD), multiply(gains, cones)));
}

inline Prepared prepare(const Settings& s) {
    const float capped = s.contrast > 0.9999999F ? 0.9999999F : s.contrast;
    const bool balanced = s.temperature != 6500.0F;
    return {exp2f(s.exposure),
            tanf(capped * 1.5707964F),
            s.highlight,
            s.shadow,
            balanced,
            balanced ? whiteBalanceMatrix(s.temperature) : Matrix{},
            s.hue,
            s.saturation,
            s.intensity,
            gradientTable(s.stops)};
}

template <typename Curve>
Values onEachColour(const Values& c, Curve curve) {
    return {curve(c.r), curve(c.g), curve(c.b), c.a};
}

inline Values applyExposure(const Values& c, float factor) {
    return onEachColour(c, [=](float v) { return v * factor; });
}

inline Values applyContrast(const Values& c, float exponent) {
    return onEachColour(c, [=](float v) {
        const float logarithm = log2f(v + FLOAT_EPSILON);
        const double power = std::exp2((static_cast<double>(logarithm) + 1.0) * static_cast<double>(exponent) - 1.0);
        const float curved = static_cast<float>(power) - FLOAT_EPSILON;
        if (curved > 1000.0F) {
            return 1000.0F;
        }
        return curved < 0.0F ? 0.0F : curved;
    });
}

inline Values applyHighlights(const Values& c, float highlight) {
    return onEachColour(c, [=](float v) { return v > 0.66F ? v + (v - 0.66F) * highlight : v; });
}

inline Values applyShadows(const Values& c, float shadow) {
    return onEachColour(c, [=](float v) {
        if (!(v < 0.33F)) {
            return v;
        }
        const float lifted = v + (0.33F - v) * shadow;
        return lifted < 0.0F ? 0.0F : lifted; // NaN stays
    });
}

struct Luv {
    float lightness;
    float u;
    float v;
};

inline Luv toLuv(const Values& xyz) {
    const double x = xyz.r;
    const double y = xyz.g;
    const double z = xyz.b;
    const double divisor = x + 15.0 * y + 3.0 * z;
    const double uPrime = 4.0 * x / divisor;
    const double vPrime = 9.0 * y / divisor;
    const double lightness = y > EPSILON ? 116.0 * std::pow(y, 1.0 / 3.0) - 16.0 : KAPPA * y;
    return {static_cast<float>(lightness), static_cast<float>(13.0 * lightness * (uPrime - U_WHITE)),
            static_cast<float>(13.0 * lightness * (vPrime - V_WHITE))};
}

inline Values toXyz(const Luv& luv) {
    const double l = luv.lightness;
    const double u = luv.u;
    const double v = luv.v;
    const double cubeRoot = (l + 16.0) / 116.0;
    const double y = l > 8.0 ? cubeRoot * cubeRoot * cubeRoot : l / KAPPA;
    const double a = (52.0 * l / (u + 13.0 * l * U_WHITE) - 1.0) / 3.0;
    const double b = -5.0 * y;
    const double d = y * (39.0 * l / (v + 13.0 * l * V_WHITE) - 5.0);
    const double x = (d - b) / (a + 1.0 / 3.0);
    return {static_cast<float>(x), static_cast<float>(y), static_cast<float>(x * a + b), 0.0F};
}

inline Values turnHue(const Values& c, float degrees) {
    Luv luv = toLuv(multiply(rgbToXyz(), c));
    const float chroma = sqrtf(luv.u * luv.u + luv.v * luv.v);
    float angle = atan2f(luv.v, luv.u) * 57.29578F;
    if (angle < 0.0F) {
        angle += 360.0F;
    }
    const float turned = (angle + degrees) * 0.017453292F;
    luv.u = chroma * cosf(turned);
    luv.v = chroma * sinf(turned);
    Values result = multiply(XYZ_TO_RGB, toXyz(luv));
    result.a = c.a;
    return result;
}

inline Values saturate(const Values& c, float saturation) {
    const float grey = luma(c);
    return onEachColour(c, [=](float v) { return grey + (v - grey) * saturation; });
}

/// Index of the gradient's entry; a luma that is not a number has no entry, and its pixel stays NaN with any.
inline unsigned gradientIndex(float grey) {
    const float limited = limit(grey);
    return std::isnan(limited) ? 0U : static_cast<unsigned>(limited * 255.0F) % 256U;
}

inline Values mapGradient(const Values& c, const Values& entry, float weight) {
    return {c.r + (entry.r - c.r) * weight, c.g + (entry.g - c.g) * weight, c.b + (entry.b - c.b) * weight, c.a};
}

/// Everything up to saturation, from a decoded pixel.
inline Values gradeBeforeGradient(const Prepared& p, Values c) {
    c = applyExposure(c, p.exposureFactor);
    if (p.exponent != 1.0F) {
        c = applyContrast(c, p.exponent);
    }
    c = applyHighlights(c, p.highlight);
    // At 0 the step must not run: its lower limit would take the negative floats away.
    if (p.shadow != 0.0F) {
        c = applyShadows(c, p.shadow);
    }
    if (p.hasWhiteBalance) {
        c = multiply(p.whiteBalance, c);
    }
    if (p.hue != 0.0F) {
        c = turnHue(c, p.hue);
    }
    return saturate(c, p.saturation);
}

inline Values gradePixel(const Prepared& p, const Values& decoded) {
    const Values c = gradeBeforeGradient(p, decoded);
    return p.intensity != 0.0F ? mapGradient(c, p.table[gradientIndex(luma(c))], p.intensity) : c;
}

inline void grade(const Prepared& p, const Surface& source, const Surface& target) {
    if (!isKnown(source.format) || !isKnown(target.format)) {
        return;
    }
    for (std::size_t y = 0; y < source.height; ++y) {
        for (std::size_t x = 0; x < source.width; ++x) {
            writeLinear(target, x, y, gradePixel(p, readLinear(source, x, y)));
        }
    }
}

/// Calls visit(entry index, r, g, b) for the lattice on the 0..1 scale, red fastest.
template <typename Visit>
void forLattice(std::size_t size, Visit visit) {
    const float step = static_cast<float>(size) - 1.0F;
    std::size_t entry = 0;
    for (std::size_t b = 0; b < size; ++b) {
        for (std::size_t g = 0; g < size; ++g) {
            for (std::size_t r = 0; r < size; ++r) {
                visit(entry++, static_cast<float>(r) / step, static_cast<float>(g) / step,
                      static_cast<float>(b) / step);
            }
        }
    }
}

inline std::vector<float> floatTable(const Prepared& p, std::size_t size) {
    std::vector<float> table;
    forLattice(size, [&](std::size_t, float r, float g, float b) {
        const Values c = gradePixel(p, {r, g, b, 1.0F});
        table.insert(table.end(), {c.r, c.g, c.b});
    });
    return table;
}

inline std::vector<unsigned char> byteTable(const Prepared& p, std::size_t size) {
    std::vector<unsigned char> table;
    forLattice(size, [&](std::size_t, float r, float g, float b) {
        const Values c = gradePixel(p, {powf(r, 2.2F), powf(g, 2.2F), powf(b, 2.2F), 1.0F});
        table.insert(table.end(), {encodePower(c.r), encodePower(c.g), encodePower(c.b)});
    });
    return table;
}

} // namespace oracle
