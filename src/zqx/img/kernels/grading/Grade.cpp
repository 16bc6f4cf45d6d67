// One function per grading step, each over planes of a run; then its application to images and lookup tables.
// The order of single-precision operations in here is part of the result: do not regroup.
#include "kernels/grading/Grade.h"

#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

#include "kernels/Rows.h"
#include "kernels/maths/ColorScience.h"
#include "kernels/maths/LookUp.h"
#include "kernels/maths/ScalarMaths.h"
#include "kernels/samples/Codec.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/grading/Grade.cpp"
#include <hwy/foreach_target.h> // before highway.h
#include <hwy/highway.h>

#include "kernels/Simd.h"
#include "kernels/maths/Maths-inl.h"

#ifndef ZQX_IMG_GRADE_SETTINGS_
#define ZQX_IMG_GRADE_SETTINGS_
namespace zqx::img::kernels {

namespace {

/// The prepared parameters with what a kernel would otherwise compute for every pixel.
struct Settings {
    explicit Settings(const ColorGradingParamsInternal& prepared)
        : params(prepared), hueCosine(static_cast<float>(maths::cos(radians(prepared.hue)))),
          hueSine(static_cast<float>(maths::sin(radians(prepared.hue)))) {}

    static double radians(float degrees) { return static_cast<double>(degrees) * (3.14159265358979323846 / 180.0); }

    const ColorGradingParamsInternal& params;
    float hueCosine;
    float hueSine;
};

/// What is compiled for an instruction set. Planes are aligned to 64 bytes and padded to whole vectors.
struct Steps {
    /// The steps that treat each channel by itself.
    void (*gradeChannel)(float* plane, std::size_t length, const Settings& settings);
    /// The steps that mix channels, which follow.
    void (*gradeColor)(Run& run, std::size_t length, const Settings& settings);
    /// Decodes encoded values: v^2.2.
    void (*decodePower)(float* plane, std::size_t length);
};

} // namespace

} // namespace zqx::img::kernels
#endif

HWY_BEFORE_NAMESPACE();
namespace zqx::img::kernels::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using F32 = hn::ScalableTag<float>;
using F64 = hn::ScalableTag<double>;
using HalfF32 = hn::Rebind<float, F64>; // as many floats as a vector holds doubles

/// Keeps the logarithm of black finite; the spacing of floats at 1.
constexpr float CONTRAST_OFFSET = 1.1920929e-7F;
/// The curve may be nearly vertical: without a limit highlights would overflow.
constexpr float CONTRAST_LIMIT = 1000.0F;

void expose(float* plane, std::size_t length, float factor) {
    const F32 d;
    for (std::size_t i = 0; i < length; i += hn::Lanes(d)) {
        hn::Store(hn::Mul(hn::Load(d, plane + i), hn::Set(d, factor)), d, plane + i);
    }
}

// Long chains of dependent operations leave a processor waiting: so what takes logarithms or roots is done in several
// short loops over a run, which stays in the first-level cache, and not in one.

/// log2(c + CONTRAST_OFFSET) in single precision.
void log2InPlace(float* plane, std::size_t length) {
    const F64 d;
    const HalfF32 df;
    const auto offset = hn::Set(df, CONTRAST_OFFSET);
    for (std::size_t i = 0; i < length; i += hn::Lanes(d)) {
        hn::Store(roundToFloat(d, log2(d, hn::Add(hn::Load(df, plane + i), offset))), df, plane + i);
    }
}

/// 2^((l + 1) * exponent - 1) of logarithms l, limited.
void contrastFromLog2InPlace(float* plane, std::size_t length, float exponent) {
    const F64 d;
    const HalfF32 df;
    const auto offset = hn::Set(df, CONTRAST_OFFSET);
    const auto limit = hn::Set(df, CONTRAST_LIMIT);
    const auto one = hn::Set(d, 1.0);
    const auto k = hn::Set(d, static_cast<double>(exponent));
    for (std::size_t i = 0; i < length; i += hn::Lanes(d)) {
        const auto stops = hn::PromoteTo(d, hn::Load(df, plane + i));
        const auto curved = exp2(d, hn::Sub(hn::Mul(hn::Add(stops, one), k), one));
        const auto value = hn::Sub(roundToFloat(d, curved), offset);
        const auto notNegative = hn::IfThenElse(hn::Lt(value, hn::Zero(df)), hn::Zero(df), value);
        hn::Store(hn::IfThenElse(hn::Gt(value, limit), limit, notNegative), df, plane + i);
    }
}

/// A power curve through (0.5, 0.5), evaluated as 0.5 * (2c)^exponent in the logarithmic domain.
void applyContrast(float* plane, std::size_t length, float exponent) {
    log2InPlace(plane, length);
    contrastFromLog2InPlace(plane, length, exponent);
}

HWY_INLINE hn::Vec<F32> adjustHighlight(hn::Vec<F32> c, float highlight) {
    const F32 d;
    const auto knee = hn::Set(d, 0.66F);
    const auto stretched = hn::Add(c, hn::Mul(hn::Sub(c, knee), hn::Set(d, highlight)));
    return hn::IfThenElse(hn::Gt(c, knee), stretched, c);
}

HWY_INLINE hn::Vec<F32> adjustShadow(hn::Vec<F32> c, float shadow) {
    const F32 d;
    const auto knee = hn::Set(d, 0.33F);
    const auto lifted = hn::Add(c, hn::Mul(hn::Sub(knee, c), hn::Set(d, shadow)));
    const auto limited = hn::IfThenElse(hn::Lt(lifted, hn::Zero(d)), hn::Zero(d), lifted); // NaN passes
    return hn::IfThenElse(hn::Lt(c, knee), limited, c);
}

void adjustTones(float* plane, std::size_t length, float highlight, float shadow) {
    const F32 d;
    for (std::size_t i = 0; i < length; i += hn::Lanes(d)) {
        const auto c = adjustHighlight(hn::Load(d, plane + i), highlight);
        // At 0 the limit must not cut negative values.
        hn::Store(shadow != 0.0F ? adjustShadow(c, shadow) : c, d, plane + i);
    }
}

template <class D>
struct Triple {
    hn::Vec<D> x;
    hn::Vec<D> y;
    hn::Vec<D> z;
};

template <class D>
HWY_INLINE hn::Vec<D> dot(D d, const float* row, const Triple<D>& v) {
    const auto sum = hn::Add(hn::Mul(hn::Set(d, row[0]), v.x), hn::Mul(hn::Set(d, row[1]), v.y));
    return hn::Add(sum, hn::Mul(hn::Set(d, row[2]), v.z));
}

template <class D>
HWY_INLINE Triple<D> transform(D d, const Matrix3& matrix, const Triple<D>& v) {
    return {dot(d, matrix.data(), v), dot(d, matrix.data() + 3, v), dot(d, matrix.data() + 6, v)};
}

template <class D>
HWY_INLINE Triple<D> loadColor(D d, const Run& run, std::size_t i) {
    return {hn::Load(d, run.r + i), hn::Load(d, run.g + i), hn::Load(d, run.b + i)};
}

template <class D>
HWY_INLINE void storeColor(D d, const Triple<D>& color, Run& run, std::size_t i) {
    hn::Store(color.x, d, run.r + i);
    hn::Store(color.y, d, run.g + i);
    hn::Store(color.z, d, run.b + i);
}

void applyMatrix(Run& run, std::size_t length, const Matrix3& matrix) {
    const F32 d;
    for (std::size_t i = 0; i < length; i += hn::Lanes(d)) {
        storeColor(d, transform(d, matrix, loadColor(d, run, i)), run, i);
    }
}

/// CIE 1976 lightness of relative luminance.
void computeLightness(const float* luminance, std::size_t length, float* lightness) {
    const F64 d;
    const HalfF32 df;
    for (std::size_t i = 0; i < length; i += hn::Lanes(d)) {
        const auto y = hn::PromoteTo(d, hn::Load(df, luminance + i));
        const auto root = hn::Sub(hn::Mul(hn::Set(d, 116.0), cubeRoot(d, y)), hn::Set(d, 16.0));
        const auto line = hn::Mul(hn::Set(d, CIE_KAPPA), y);
        hn::Store(roundToFloat(d, hn::IfThenElse(hn::Gt(y, hn::Set(d, CIE_EPSILON)), root, line)), df, lightness + i);
    }
}

/// XYZ in the planes into lightness and the chroma plane of CIE 1976 L*u*v*.
void xyzToLuvInPlace(Run& run, std::size_t length, const float* lightness) {
    const F64 d;
    const HalfF32 df;
    for (std::size_t i = 0; i < length; i += hn::Lanes(d)) {
        const Triple<HalfF32> xyz = loadColor(df, run, i);
        const auto x = hn::PromoteTo(d, xyz.x);
        const auto y = hn::PromoteTo(d, xyz.y);
        const auto z = hn::PromoteTo(d, xyz.z);
        const auto sum = hn::Add(hn::Add(x, hn::Mul(hn::Set(d, 15.0), y)), hn::Mul(hn::Set(d, 3.0), z));
        const auto scale = hn::Div(hn::Set(d, 1.0), sum);
        const auto l = hn::Load(df, lightness + i);
        const auto factor = hn::Mul(hn::Set(d, 13.0), hn::PromoteTo(d, l));
        const auto u = hn::Sub(hn::Mul(hn::Mul(hn::Set(d, 4.0), x), scale), hn::Set(d, WHITE_U));
        const auto v = hn::Sub(hn::Mul(hn::Mul(hn::Set(d, 9.0), y), scale), hn::Set(d, WHITE_V));
        storeColor(df, {l, roundToFloat(d, hn::Mul(factor, u)), roundToFloat(d, hn::Mul(factor, v))}, run, i);
    }
}

/// Turns the chroma plane. Chroma beyond the range of floats leaves no colour, as it would in polar coordinates.
void rotateChromaInPlace(Run& run, std::size_t length, float cosine, float sine) {
    const F32 d;
    const auto c = hn::Set(d, cosine);
    const auto s = hn::Set(d, sine);
    const auto infinity = hn::Set(d, std::numeric_limits<float>::infinity());
    const auto nothing = hn::Set(d, std::numeric_limits<float>::quiet_NaN());
    for (std::size_t i = 0; i < length; i += hn::Lanes(d)) {
        const Triple<F32> luv = loadColor(d, run, i);
        const auto u = hn::Sub(hn::Mul(luv.y, c), hn::Mul(luv.z, s));
        const auto v = hn::Add(hn::Mul(luv.y, s), hn::Mul(luv.z, c));
        const auto squaredChroma = hn::Add(hn::Mul(luv.y, luv.y), hn::Mul(luv.z, luv.z));
        storeColor(d, {luv.x, hn::IfThenElse(hn::Eq(squaredChroma, infinity), nothing, u), v}, run, i);
    }
}

/// L*u*v* in the planes into XYZ, with the intermediate terms of the usual formulas (B. Lindbloom, Luv to XYZ)
/// multiplied out: one division. A colour of u' = 0 is left without a value by those formulas, and so it is here.
void luvToXyzInPlace(Run& run, std::size_t length) {
    const F64 d;
    const HalfF32 df;
    const auto nothing = hn::Set(d, std::numeric_limits<double>::quiet_NaN());
    for (std::size_t i = 0; i < length; i += hn::Lanes(d)) {
        const Triple<HalfF32> luv = loadColor(df, run, i);
        const auto lightness = hn::PromoteTo(d, luv.x);
        const auto root = hn::Mul(hn::Add(lightness, hn::Set(d, 16.0)), hn::Set(d, 1.0 / 116.0));
        const auto cube = hn::Mul(hn::Mul(root, root), root);
        const auto line = hn::Mul(lightness, hn::Set(d, 1.0 / CIE_KAPPA));
        const auto y = hn::IfThenElse(hn::Gt(lightness, hn::Set(d, 8.0)), cube, line);

        const auto factor = hn::Mul(hn::Set(d, 13.0), lightness);
        const auto u = hn::Add(hn::PromoteTo(d, luv.y), hn::Mul(factor, hn::Set(d, WHITE_U)));
        const auto v = hn::Add(hn::PromoteTo(d, luv.z), hn::Mul(factor, hn::Set(d, WHITE_V)));
        const auto perV = hn::Div(hn::Set(d, 1.0), v);
        const auto x = hn::Mul(hn::Mul(hn::Mul(hn::Set(d, 2.25), y), u), perV);
        const auto rest = hn::Mul(hn::Sub(hn::Mul(hn::Set(d, 52.0), lightness), u), perV);
        const auto z = hn::Mul(y, hn::Sub(hn::Mul(hn::Set(d, 0.75), rest), hn::Set(d, 5.0)));
        const auto zOrNothing = hn::IfThenElse(hn::Eq(u, hn::Zero(d)), nothing, z);
        storeColor(df, {roundToFloat(d, x), roundToFloat(d, y), roundToFloat(d, zOrNothing)}, run, i);
    }
}

/// Turns the hue angle of CIE LCh(uv), keeping lightness and chroma. Black has no hue: its 0/0 is left to stand.
void rotateHue(Run& run, std::size_t length, float cosine, float sine) {
    alignas(64) float lightness[RUN_LENGTH];
    applyMatrix(run, length, RGB_TO_XYZ);
    computeLightness(run.g, length, lightness);
    xyzToLuvInPlace(run, length, lightness);
    rotateChromaInPlace(run, length, cosine, sine);
    luvToXyzInPlace(run, length);
    applyMatrix(run, length, XYZ_TO_RGB);
}

HWY_INLINE hn::Vec<F32> luma(const Triple<F32>& color) {
    constexpr float WEIGHTS[] = {LUMA_RED, LUMA_GREEN, LUMA_BLUE};
    return dot(F32(), WEIGHTS, color);
}

/// from + (to - from) * weight
HWY_INLINE hn::Vec<F32> mix(hn::Vec<F32> from, hn::Vec<F32> to, hn::Vec<F32> weight) {
    return hn::Add(from, hn::Mul(hn::Sub(to, from), weight));
}

void saturate(Run& run, std::size_t length, float saturation) {
    const F32 d;
    const auto factor = hn::Set(d, saturation);
    for (std::size_t i = 0; i < length; i += hn::Lanes(d)) {
        const Triple<F32> color = loadColor(d, run, i);
        const auto y = luma(color);
        storeColor(d, {mix(y, color.x, factor), mix(y, color.y, factor), mix(y, color.z, factor)}, run, i);
    }
}

/// Places of the gradient's entries for colours, in floats: an entry is four of them.
void findEntries(const Run& run, std::size_t length, std::int32_t* entries) {
    const F32 d;
    const hn::RebindToSigned<F32> di;
    const auto one = hn::Set(d, 1.0F);
    for (std::size_t i = 0; i < length; i += hn::Lanes(d)) {
        const auto y = luma(loadColor(d, run, i));
        const auto limited = hn::IfThenElse(hn::Lt(y, one), y, one);
        const auto code = hn::IfThenElseZero(hn::Gt(y, hn::Zero(d)), hn::Mul(hn::Set(d, 255.0F), limited));
        hn::Store(hn::ShiftLeft<2>(hn::ConvertTo(di, code)), di, entries + i);
    }
}

void mapGradient(Run& run, std::size_t length, const Color* table, float intensity) {
    alignas(64) std::int32_t entries[RUN_LENGTH];
    Run mapped;
    findEntries(run, length, entries);
    lookUp(&table->r, entries, length, mapped.r);
    lookUp(&table->g, entries, length, mapped.g);
    lookUp(&table->b, entries, length, mapped.b);
    const F32 d;
    const auto weight = hn::Set(d, intensity);
    for (std::size_t i = 0; i < length; i += hn::Lanes(d)) {
        const Triple<F32> color = loadColor(d, run, i);
        const Triple<F32> entry = loadColor(d, mapped, i);
        storeColor(d, {mix(color.x, entry.x, weight), mix(color.y, entry.y, weight), mix(color.z, entry.z, weight)},
                   run, i);
    }
}

void gradeChannel(float* plane, std::size_t length, const Settings& settings) {
    const ColorGradingParamsInternal& params = settings.params;
    expose(plane, length, params.exposureFactor);
    if (params.contrastExponent != 1.0F) {
        applyContrast(plane, length, params.contrastExponent);
    }
    adjustTones(plane, length, params.highlight, params.shadow);
}

/// Neutral steps are skipped by exact comparison.
void gradeColor(Run& run, std::size_t length, const Settings& settings) {
    const ColorGradingParamsInternal& params = settings.params;
    if (params.whiteBalance) {
        applyMatrix(run, length, *params.whiteBalance);
    }
    if (params.hue != 0.0F) {
        rotateHue(run, length, settings.hueCosine, settings.hueSine);
    }
    saturate(run, length, params.saturation);
    if (params.gradientMapIntensity != 0.0F) {
        mapGradient(run, length, params.gradientMap->getLUTPtr(), params.gradientMapIntensity);
    }
}

void decodePower(float* plane, std::size_t length) {
    const F64 d;
    const HalfF32 df;
    for (std::size_t i = 0; i < length; i += hn::Lanes(d)) {
        hn::Store(decodeStored(d, hn::Load(df, plane + i)), df, plane + i);
    }
}

} // namespace

Steps steps() {
    return {&gradeChannel, &gradeColor, &decodePower};
}

} // namespace zqx::img::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zqx::img::kernels {

namespace {

HWY_EXPORT(steps);

Steps chosenSteps() {
    return HWY_DYNAMIC_DISPATCH(steps)();
}

/// Reads runs of pixels with the steps done that treat each channel by itself: of bytes, they are done once per code.
class GradedReader {
public:
    GradedReader(Format format, const Settings& settings)
        : mSettings(settings), mGradeChannel(chosenSteps().gradeChannel), mDecode(getDecoder(format)),
          mTable(linearLightTable(format)), mFormat(pixelFormat(format)) {
        if (!mFormat.isFloat()) {
            mGradeChannel(mTable.data(), mTable.size(), settings);
        }
    }

    /// Fills r, g and b for grey formats too. Alpha is left as it is where there is none.
    void read(const std::uint8_t* pixels, std::size_t stride, std::size_t length, Run& run) const {
        mDecode(pixels, stride, length, mTable, run);
        if (mFormat.isFloat()) {
            gradePlanes(length, run);
        }
        if (mFormat.isGrey()) {
            std::copy_n(run.r, length, run.g);
            std::copy_n(run.r, length, run.b);
        }
    }

private:
    void gradePlanes(std::size_t length, Run& run) const {
        mGradeChannel(run.r, length, mSettings);
        if (!mFormat.isGrey()) {
            mGradeChannel(run.g, length, mSettings);
            mGradeChannel(run.b, length, mSettings);
        }
    }

    const Settings& mSettings;
    decltype(Steps::gradeChannel) mGradeChannel;
    DecodeRun mDecode;
    alignas(64) ByteTable mTable;
    const PixelFormat& mFormat;
};

/// Calls kernel(plane, length) with all of the values in turn, at addresses that kernels can work on.
template <typename Kernel>
void forEachPlane(std::vector<float>& values, const Kernel& kernel) {
    alignas(64) float plane[RUN_LENGTH] = {};
    forEachRun(values.size(), [&](std::size_t first, std::size_t length) {
        std::copy_n(values.data() + first, length, plane);
        kernel(plane, length);
        std::copy_n(plane, length, values.data() + first);
    });
}

/// Grades a lattice of size^3 colours whose coordinates along each axis are `levels`, and hands over run by run.
template <typename Element>
void bakeTable(Format format, std::vector<float> levels, Element* table, const Settings& settings) {
    const std::size_t size = levels.size();
    const EncodeRun encode = getEncoder(format);
    const auto grade = chosenSteps().gradeColor;
    const auto gradeLevels = chosenSteps().gradeChannel;
    forEachPlane(levels, [&](float* plane, std::size_t length) { gradeLevels(plane, length, settings); });
    forEachRow(size, [&](std::size_t blue) {
        Run run;
        for (std::size_t green = 0; green < size; ++green) {
            Element* row = table + (blue * size + green) * size * 3;
            forEachRun(size, [&](std::size_t first, std::size_t length) {
                std::copy_n(levels.data() + first, length, run.r);
                std::fill_n(run.g, length, levels[green]);
                std::fill_n(run.b, length, levels[blue]);
                grade(run, length, settings);
                encode({run.r, run.g, run.b, run.a}, length, reinterpret_cast<std::uint8_t*>(row + first * 3),
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
    const Settings settings(params);
    const GradedReader reader(source.getFormat(), settings);
    const EncodeRun encode = getEncoder(destination.getFormat(), chooseWriting(source, destination));
    const auto grade = chosenSteps().gradeColor;
    forEachRow(source.getHeight(), [&](std::size_t y) {
        const auto* from = static_cast<const std::uint8_t*>(source.getRowPtr(y));
        auto* to = static_cast<std::uint8_t*>(destination.getRowPtr(y));
        Run run;
        std::fill_n(run.a, RUN_LENGTH, 1.0F); // for sources without alpha
        forEachRun(source.getWidth(), [&](std::size_t first, std::size_t length) {
            reader.read(from + first * source.getBytePixelStride(), source.getBytePixelStride(), length, run);
            grade(run, length, settings);
            encode({run.r, run.g, run.b, run.a}, length, to + first * destination.getBytePixelStride(),
                   destination.getBytePixelStride());
        });
    });
}

void bakeLinearTable(std::size_t size, float* table, const ColorGradingParamsInternal& params) {
    bakeTable(Image::RGB32F, latticeLevels(size), table, Settings(params));
}

void bakeEncodedTable(std::size_t size, std::uint8_t* table, const ColorGradingParamsInternal& params) {
    std::vector<float> levels = latticeLevels(size);
    forEachPlane(levels, chosenSteps().decodePower);
    bakeTable(Image::SRGB8, std::move(levels), table, Settings(params));
}

} // namespace zqx::img::kernels
#endif
