// Vector functions in double precision, from polynomials with coefficients of their Taylor series. They take the place
// of the system's mathematics library, whose last bits depend on the processor. For inclusion by kernel files, once
// per instruction set.
//
// Errors stated are the largest seen by a test that visits the domain densely, against long double.

#if defined(ZQX_IMG_MATHS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef ZQX_IMG_MATHS_INL_H_
#undef ZQX_IMG_MATHS_INL_H_
#else
#define ZQX_IMG_MATHS_INL_H_
#endif

#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>

#include <hwy/highway.h>

#include "kernels/maths/Gamma.h"

HWY_BEFORE_NAMESPACE();
namespace zqx::img::kernels::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

/// The part of a polynomial from one coefficient on, divided by its power of x.
template <std::size_t Begin, std::size_t Count, class D, class V, std::size_t Total>
HWY_INLINE V polynomialPart(D d, const double (&coefficients)[Total], V x, V x2, V x4, V x8) {
    if constexpr (Count == 1) {
        return hn::Set(d, coefficients[Begin]);
    } else {
        constexpr std::size_t HALF = std::bit_ceil(Count) / 2;
        static_assert(HALF <= 8);
        const V power = HALF == 1 ? x : HALF == 2 ? x2 : HALF == 4 ? x4 : x8;
        const V low = polynomialPart<Begin, HALF>(d, coefficients, x, x2, x4, x8);
        const V high = polynomialPart<Begin + HALF, Count - HALF>(d, coefficients, x, x2, x4, x8);
        return hn::Add(low, hn::Mul(high, power));
    }
}

/// Coefficients from the constant term up, by Estrin's scheme: halves are computed side by side.
template <class D, class V, std::size_t Count>
HWY_INLINE V polynomial(D d, V x, const double (&coefficients)[Count]) {
    const V x2 = hn::Mul(x, x);
    const V x4 = hn::Mul(x2, x2);
    return polynomialPart<0, Count>(d, coefficients, x, x2, x4, hn::Mul(x4, x4));
}

/// Rounds to the nearest float; what is beyond the range of floats becomes infinity.
template <class D>
HWY_INLINE hn::Vec<hn::Rebind<float, D>> roundToFloat(D d, hn::Vec<D> v) {
    const hn::Rebind<float, D> df;
#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128
    // Highway's own limits infinity to the largest float, here alone.
    alignas(16) double wide[hn::MaxLanes(d)];
    alignas(16) float narrow[hn::MaxLanes(d)];
    hn::Store(v, d, wide);
    for (std::size_t i = 0; i < hn::Lanes(d); ++i) {
        narrow[i] = static_cast<float>(wide[i]);
    }
    return hn::Load(df, narrow);
#else
    return hn::DemoteTo(df, v);
#endif
}

/// log2 of doubles that are positive, finite and not subnormal. Absolute error below 1e-13.
/// What is outside the domain gives any number.
template <class D, class V>
HWY_INLINE V log2Positive(D d, V x) {
    const hn::RebindToUnsigned<D> du;
    // x = 2^exponent * mantissa, the mantissa between the roots of 1/2 and 2. Conversions between integers and doubles
    // are slow: the exponent becomes one as the last bits of 2^52.
    constexpr std::uint64_t ROOT_OF_HALF = 0x3fe6a09e667f3bcd;
    constexpr std::uint64_t ONE = 0x3ff0000000000000;
    constexpr std::uint64_t EXPONENT_BITS = 0xfff0000000000000;
    const auto bits = hn::BitCast(du, x);
    const auto shifted = hn::Add(bits, hn::Set(du, ONE - ROOT_OF_HALF));
    const auto biased = hn::Or(hn::ShiftRight<52>(shifted), hn::BitCast(du, hn::Set(d, 0x1p52)));
    const auto exponent = hn::Sub(hn::BitCast(d, biased), hn::Set(d, 0x1p52 + 1023.0));
    const auto power = hn::Sub(hn::And(shifted, hn::Set(du, EXPONENT_BITS)), hn::Set(du, ONE));
    const auto mantissa = hn::BitCast(d, hn::Sub(bits, power));

    // log2 m = 2 / ln 2 * artanh((m - 1) / (m + 1))
    constexpr double SERIES[] = {
        0x1.71547652b82fep+1, // 2 / ln 2, and that by 3, by 5 and so on
        0x1.ec709dc3a03fdp-1, 0x1.2776c50ef9bfep-1, 0x1.a61762a7aded9p-2, 0x1.484b13d7c02a9p-2,
        0x1.0c9a84994022dp-2, 0x1.c68f568d31760p-3, 0x1.89f3b1694cffep-3,
    };
    const auto one = hn::Set(d, 1.0);
    const auto t = hn::Div(hn::Sub(mantissa, one), hn::Add(mantissa, one));
    return hn::Add(exponent, hn::Mul(t, polynomial(d, hn::Mul(t, t), SERIES)));
}

/// The same for all floats but subnormal ones: zero gives -infinity, infinity itself, what is negative or NaN gives
/// NaN.
template <class D, class VF>
HWY_INLINE hn::Vec<D> log2(D d, VF x) {
    const auto wide = hn::PromoteTo(d, x);
    const auto logarithm = log2Positive(d, wide);
    const auto infinity = hn::Set(d, std::numeric_limits<double>::infinity());
    const auto notPositive = hn::IfThenElse(hn::Eq(wide, hn::Zero(d)), hn::Neg(infinity),
                                            hn::Set(d, std::numeric_limits<double>::quiet_NaN()));
    const auto positive = hn::IfThenElse(hn::Eq(wide, infinity), infinity, logarithm);
    return hn::IfThenElse(hn::Gt(wide, hn::Zero(d)), positive, notPositive);
}

/// 2^x in double precision. Relative error below 1e-13. x is limited to [-1022, 1023]; NaN gives NaN.
template <class D, class V>
HWY_INLINE V exp2(D d, V x) {
    const hn::RebindToUnsigned<D> du;
    const auto most = hn::Set(d, 1023.0);
    const auto least = hn::Set(d, -1022.0);
    const auto limited = hn::IfThenElse(hn::Gt(x, most), most, hn::IfThenElse(hn::Lt(x, least), least, x));
    // Adding this pushes the fraction out of the mantissa and leaves the nearest integer in its low bits.
    const auto shifter = hn::Set(d, 0x1.8p52);
    const auto shifted = hn::Add(limited, shifter);
    const auto fraction = hn::Sub(limited, hn::Sub(shifted, shifter));

    constexpr double SERIES[] = {
        1.0,
        0x1.62e42fefa39efp-1,
        0x1.ebfbdff82c58ep-3,
        0x1.c6b08d704a0bfp-5,
        0x1.3b2ab6fba4e77p-7,
        0x1.5d87fe78a6730p-10,
        0x1.430912f86c786p-13,
        0x1.ffcbfc588b0c5p-17,
        0x1.62c0223a5c822p-20,
        0x1.b5253d395e7c1p-24,
        0x1.e4cf5158b8ec7p-28,
        0x1.e8cac7351bb22p-32, // (ln 2)^k / k!
    };
    const auto power = polynomial(d, fraction, SERIES);
    const auto exponent = hn::ShiftLeft<52>(hn::BitCast(du, shifted));
    const auto scaled = hn::BitCast(d, hn::Add(hn::BitCast(du, power), exponent));
    return hn::IfThenElse(hn::Eq(x, x), scaled, x);
}

/// The linear light of stored values: their power 2.2, with the exponent in single precision, rounded to single
/// precision.
template <class D, class VF>
HWY_INLINE VF decodeStored(D d, VF stored) {
    return roundToFloat(d, exp2(d, hn::Mul(hn::Set(d, static_cast<double>(DECODING_EXPONENT)), log2(d, stored))));
}

/// Cube root of doubles that are floats from 2^-100 to the largest. Relative error below 1e-13.
/// Infinity gives itself, NaN gives NaN; what is below the domain gives any number.
template <class D, class V>
HWY_INLINE V cubeRoot(D d, V x) {
    const hn::Rebind<float, D> df;
    const hn::RebindToSigned<decltype(df)> di;
    // Halving the exponent's third: a first guess of x^(-1/3) within 4 %, from the bits as a logarithm.
    const auto bits = hn::ConvertTo(df, hn::BitCast(di, hn::DemoteTo(df, x)));
    const auto third = hn::Sub(hn::Set(df, 1419915776.0F), hn::Mul(bits, hn::Set(df, 1.0F / 3.0F)));
    auto root = hn::PromoteTo(d, hn::BitCast(df, hn::ConvertTo(di, third)));
    // Newton's rule for root^-3 = x, which needs no division: the error is squared (and doubled) each time.
    const auto fourThirds = hn::Set(d, 4.0 / 3.0);
    const auto xThird = hn::Mul(x, hn::Set(d, 1.0 / 3.0));
    for (int step = 0; step < 4; ++step) {
        const auto cube = hn::Mul(hn::Mul(root, root), root);
        root = hn::Mul(root, hn::Sub(fourThirds, hn::Mul(xThird, cube)));
    }
    return hn::Mul(x, hn::Mul(root, root));
}

} // namespace zqx::img::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
