// One function per grading step, each over whole planes of a run; then the kernels of the format pairs and the tables.
// The order of single-precision operations in here is part of the result: do not regroup.
#include "Grade.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "Codec.h"
#include "ColorScience.h"
#include "PairTable.h"
#include "Rows.h"

namespace zqx::img::kernels {

namespace {

/// Applies a function to each of the three colour planes.
template <typename Function>
void forEachChannel(Run& run, std::size_t length, const Function& function) {
    for (float* plane : {run.r, run.g, run.b}) {
        for (std::size_t i = 0; i < length; ++i) {
            plane[i] = function(plane[i]);
        }
    }
}

/// Keeps the logarithm of black finite; the spacing of floats at 1.
constexpr float CONTRAST_OFFSET = 1.1920929e-7F;
/// The curve may be nearly vertical: without a limit highlights would overflow.
constexpr float CONTRAST_LIMIT = 1000.0F;

/// A power curve through (0.5, 0.5), evaluated as 0.5 * (2c)^exponent in the logarithmic domain.
float contrastCurve(float c, float exponent) {
    const float stops = std::log2(c + CONTRAST_OFFSET);
    const double curved = std::exp2((static_cast<double>(stops) + 1.0) * static_cast<double>(exponent) - 1.0);
    const float value = static_cast<float>(curved) - CONTRAST_OFFSET;
    return value > CONTRAST_LIMIT ? CONTRAST_LIMIT : value < 0.0F ? 0.0F : value;
}

void adjustHighlights(Run& run, std::size_t length, float highlight) {
    forEachChannel(run, length, [=](float c) { return c > 0.66F ? c + (c - 0.66F) * highlight : c; });
}

void adjustShadows(Run& run, std::size_t length, float shadow) {
    forEachChannel(run, length, [=](float c) {
        const float lifted = c + (0.33F - c) * shadow;
        const float limited = lifted < 0.0F ? 0.0F : lifted; // NaN passes
        return c < 0.33F ? limited : c;
    });
}

void applyMatrix(Run& run, std::size_t length, const Matrix3& matrix) {
    for (std::size_t i = 0; i < length; ++i) {
        const Vector3 rgb = multiply(matrix, Vector3{run.r[i], run.g[i], run.b[i]});
        run.r[i] = rgb[0];
        run.g[i] = rgb[1];
        run.b[i] = rgb[2];
    }
}

constexpr float DEGREES_PER_RADIAN = 57.29578F;
constexpr float RADIANS_PER_DEGREE = 0.017453292F;

/// Lightness and the chroma plane of CIE 1976 L*u*v*.
struct Luv {
    float lightness;
    float u;
    float v;
};

Luv xyzToLuv(const Vector3& xyz) {
    const double x = xyz[0];
    const double y = xyz[1];
    const double z = xyz[2];
    const double d = x + 15.0 * y + 3.0 * z;
    const double lightness = y > CIE_EPSILON ? 116.0 * std::cbrt(y) - 16.0 : CIE_KAPPA * y;
    return {static_cast<float>(lightness), static_cast<float>(13.0 * lightness * (4.0 * x / d - WHITE_U)),
            static_cast<float>(13.0 * lightness * (9.0 * y / d - WHITE_V))};
}

Vector3 luvToXyz(const Luv& luv) {
    const double lightness = luv.lightness;
    const double root = (lightness + 16.0) / 116.0;
    const double y = lightness > 8.0 ? root * root * root : lightness / CIE_KAPPA;
    const double a = (52.0 * lightness / (luv.u + 13.0 * lightness * WHITE_U) - 1.0) / 3.0;
    const double b = -5.0 * y;
    const double d = y * (39.0 * lightness / (luv.v + 13.0 * lightness * WHITE_V) - 5.0);
    const double x = (d - b) / (a + 1.0 / 3.0);
    return {static_cast<float>(x), static_cast<float>(y), static_cast<float>(x * a + b)};
}

/// Turns the hue angle of CIE LCh(uv), keeping lightness and chroma. Black has no hue: its 0/0 is left to stand.
void turnHue(Run& run, std::size_t length, float degrees) {
    for (std::size_t i = 0; i < length; ++i) {
        Luv luv = xyzToLuv(multiply(RGB_TO_XYZ, Vector3{run.r[i], run.g[i], run.b[i]}));
        const float chroma = std::sqrt(luv.u * luv.u + luv.v * luv.v);
        float angle = std::atan2(luv.v, luv.u) * DEGREES_PER_RADIAN;
        if (angle < 0.0F) {
            angle += 360.0F;
        }
        const float turned = (angle + degrees) * RADIANS_PER_DEGREE;
        luv.u = chroma * std::cos(turned);
        luv.v = chroma * std::sin(turned);
        const Vector3 rgb = multiply(XYZ_TO_RGB, luvToXyz(luv));
        run.r[i] = rgb[0];
        run.g[i] = rgb[1];
        run.b[i] = rgb[2];
    }
}

void saturate(Run& run, std::size_t length, float saturation) {
    for (std::size_t i = 0; i < length; ++i) {
        const float y = luma(run.r[i], run.g[i], run.b[i]);
        run.r[i] = y + (run.r[i] - y) * saturation;
        run.g[i] = y + (run.g[i] - y) * saturation;
        run.b[i] = y + (run.b[i] - y) * saturation;
    }
}

void mapGradient(Run& run, std::size_t length, const Color* table, float weight) {
    for (std::size_t i = 0; i < length; ++i) {
        const Color& entry = table[encodeUnit(luma(run.r[i], run.g[i], run.b[i]))];
        run.r[i] += (entry.r - run.r[i]) * weight;
        run.g[i] += (entry.g - run.g[i]) * weight;
        run.b[i] += (entry.b - run.b[i]) * weight;
    }
}

/// The whole operation, on linear light in the colour planes. Neutral steps are skipped by exact comparison.
void gradeRun(Run& run, std::size_t length, const ColorGradingParamsInternal& params) {
    forEachChannel(run, length, [factor = params.exposureFactor](float c) { return c * factor; });
    if (params.contrastExponent != 1.0F) {
        forEachChannel(run, length, [k = params.contrastExponent](float c) { return contrastCurve(c, k); });
    }
    adjustHighlights(run, length, params.highlight);
    if (params.shadow != 0.0F) { // at 0 the limit must not cut negative values
        adjustShadows(run, length, params.shadow);
    }
    if (params.whiteBalance) {
        applyMatrix(run, length, *params.whiteBalance);
    }
    if (params.hue != 0.0F) {
        turnHue(run, length, params.hue);
    }
    saturate(run, length, params.saturation);
    if (params.gradientMapIntensity != 0.0F) {
        mapGradient(run, length, params.gradientMap->getLUTPtr(), params.gradientMapIntensity);
    }
}

template <Format S, Format T>
struct Grading {
    static void row(const std::uint8_t* source, std::size_t sourceStride, std::uint8_t* destination,
                    std::size_t destinationStride, std::size_t width, const ColorGradingParamsInternal& params) {
        Run run;
        const Planes planes{run.r, run.g, run.b, run.a};
        forEachRun(width, [&](std::size_t first, std::size_t length) {
            decodeRun<S, Reading::LINEAR_LIGHT, pixelFormat(T).hasAlpha()>(source + first * sourceStride, sourceStride,
                                                                           length, run);
            if constexpr (pixelFormat(S).isGrey()) {
                std::copy_n(run.r, length, run.g);
                std::copy_n(run.r, length, run.b);
            }
            gradeRun(run, length, params);
            encodeRun<T>(planes, length, destination + first * destinationStride, destinationStride);
        });
    }
};

/// Grades a lattice of size^3 colours whose coordinates along each axis are `levels`, and hands over run by run.
template <Format T, typename Element>
void bakeTable(const std::vector<float>& levels, Element* table, const ColorGradingParamsInternal& params) {
    const std::size_t size = levels.size();
    forEachRow(size, [&](std::size_t blue) {
        Run run;
        for (std::size_t green = 0; green < size; ++green) {
            Element* row = table + (blue * size + green) * size * 3;
            forEachRun(size, [&](std::size_t first, std::size_t length) {
                std::copy_n(levels.data() + first, length, run.r);
                std::fill_n(run.g, length, levels[green]);
                std::fill_n(run.b, length, levels[blue]);
                gradeRun(run, length, params);
                encodeRun<T>({run.r, run.g, run.b, run.a}, length, reinterpret_cast<std::uint8_t*>(row + first * 3),
                             3 * sizeof(Element));
            });
        }
    });
}

/// Coordinates 0 to 1 of a lattice axis; a single point lies at 0/0.
std::vector<float> latticeLevels(std::size_t size) {
    std::vector<float> levels(size);
    const float step = static_cast<float>(size) - 1.0F;
    for (std::size_t i = 0; i < size; ++i) {
        levels[i] = static_cast<float>(i) / step;
    }
    return levels;
}

} // namespace

void gradePixels(const Image& source, const Image& destination, const ColorGradingParamsInternal& params) {
    if (!isKnown(source.getFormat()) || !isKnown(destination.getFormat())) {
        return;
    }
    const auto gradeRow = pairKernel<Grading>(source.getFormat(), destination.getFormat());
    forEachRow(source.getHeight(), [&](std::size_t y) {
        gradeRow(static_cast<const std::uint8_t*>(source.getRowPtr(y)), source.getBytePixelStride(),
                 static_cast<std::uint8_t*>(destination.getRowPtr(y)), destination.getBytePixelStride(),
                 source.getWidth(), params);
    });
}

void bakeLinearTable(std::size_t size, float* table, const ColorGradingParamsInternal& params) {
    bakeTable<Image::RGB32F>(latticeLevels(size), table, params);
}

void bakeEncodedTable(std::size_t size, std::uint8_t* table, const ColorGradingParamsInternal& params) {
    std::vector<float> levels = latticeLevels(size);
    for (float& level : levels) {
        level = std::pow(level, 2.2F);
    }
    bakeTable<Image::SRGB8>(levels, table, params);
}

} // namespace zqx::img::kernels
