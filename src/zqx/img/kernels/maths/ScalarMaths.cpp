#include "kernels/maths/ScalarMaths.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace zqx::img::kernels::maths {

namespace {

constexpr double INFINITE = std::numeric_limits<double>::infinity();
constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

/// A number as the sum of a double and of what is missing from it: some 106 bits.
struct Pair {
    double high;
    double low;
};

constexpr Pair LN_2 = {0x1.62e42fefa39efp-1, 0x1.abc9e3b39803fp-56};
constexpr Pair PER_LN_10 = {0x1.bcb7b1526e50ep-2, 0x1.95355baaafad3p-57};
constexpr Pair MINUS_SIXTH = {-0x1.5555555555555p-3, -0x1.5555555555555p-57};
constexpr Pair TWENTY_FOURTH = {0x1.5555555555555p-5, 0x1.5555555555555p-59};

/// The sum of two doubles, exactly; the first is not smaller than the second in magnitude.
constexpr Pair sumOfOrdered(double a, double b) {
    const double sum = a + b;
    return {sum, b - (sum - a)};
}

/// The sum of two doubles, exactly (D. E. Knuth).
constexpr Pair sum(double a, double b) {
    const double high = a + b;
    const double part = high - a;
    return {high, (a - (high - part)) + (b - part)};
}

constexpr Pair sum(const Pair& a, const Pair& b) {
    const Pair high = sum(a.high, b.high);
    return sumOfOrdered(high.high, high.low + (a.low + b.low));
}

/// The halves of a double's digits (G. W. Veltkamp).
constexpr Pair split(double x) {
    const double shifted = x * 134217729.0; // 2^27 + 1
    const double high = shifted - (shifted - x);
    return {high, x - high};
}

/// The product of two doubles, exactly.
constexpr Pair product(double a, double b) {
    const Pair x = split(a);
    const Pair y = split(b);
    const double high = a * b;
    return {high, ((x.high * y.high - high) + x.high * y.low + x.low * y.high) + x.low * y.low};
}

constexpr Pair product(const Pair& a, const Pair& b) {
    const Pair high = product(a.high, b.high);
    return sumOfOrdered(high.high, high.low + (a.high * b.low + a.low * b.high));
}

constexpr Pair product(const Pair& a, double b) {
    const Pair high = product(a.high, b);
    return sumOfOrdered(high.high, high.low + a.low * b);
}

constexpr Pair quotient(const Pair& a, const Pair& b) {
    const double high = a.high / b.high;
    const Pair back = product(b, high);
    return sumOfOrdered(high, (((a.high - back.high) - back.low) + a.low) / b.high);
}

constexpr Pair quotient(const Pair& a, double b) {
    return quotient(a, Pair{b, 0.0});
}

constexpr Pair times(const Pair& a, double powerOfTwo) {
    return {a.high * powerOfTwo, a.low * powerOfTwo};
}

/// By Horner's rule, from the constant term up.
template <std::size_t Count>
double polynomial(double x, const double (&coefficients)[Count]) {
    double value = coefficients[Count - 1];
    for (std::size_t i = Count - 1; i-- > 0;) {
        value = value * x + coefficients[i];
    }
    return value;
}

/// 2^exponent for an exponent of normal doubles.
double powerOfTwo(int exponent) {
    return std::bit_cast<double>(static_cast<std::uint64_t>(exponent + 1023) << 52U);
}

/// value * 2^exponent, rounded once: in two steps, as neither factor may leave the range before the product does.
double scale(double value, int exponent) {
    const int half = exponent / 2;
    return value * powerOfTwo(half) * powerOfTwo(exponent - half);
}

/// Places per unit in the tables.
constexpr int STEPS = 128;

/// 2^(i / STEPS), by the series of the exponential from its far end.
constexpr std::array<Pair, STEPS> POWERS = [] {
    std::array<Pair, STEPS> powers{};
    for (int i = 0; i < STEPS; ++i) {
        const Pair x = times(product(LN_2, i), 1.0 / STEPS);
        Pair series = {1.0, 0.0};
        for (int term = 32; term > 0; --term) {
            series = sum(Pair{1.0, 0.0}, quotient(product(series, x), term));
        }
        powers[static_cast<std::size_t>(i)] = series;
    }
    return powers;
}();

/// 2^(steps / STEPS) * e^r of a small r.
double expFromTable(int steps, const Pair& r) {
    constexpr double REST[] = {1.0 / 2.0, 1.0 / 6.0, 1.0 / 24.0, 1.0 / 120.0, 1.0 / 720.0};
    const double more = r.high + (r.high * r.high * polynomial(r.high, REST) + r.low); // e^r - 1
    const int place = steps & (STEPS - 1);
    const Pair& start = POWERS[static_cast<std::size_t>(place)];
    return scale(start.high + (start.high * more + start.low), (steps - place) / STEPS);
}

/// e^x of a pair, for any x but infinity and NaN.
double expPair(const Pair& x) {
    constexpr double MOST = 710.0;   // the results are beyond all doubles
    constexpr double LEAST = -746.0; // the results are nearer to 0 than to any double
    constexpr double STEPS_PER_UNIT = STEPS * 0x1.71547652b82fep+0;
    if (x.high > MOST) {
        return INFINITE;
    }
    if (x.high < LEAST) {
        return 0.0;
    }
    constexpr double STEP_START = 0x1.62e42fee00000p-1 / STEPS; // 32 bits: products with numbers of steps are exact
    constexpr double STEP_REST = 0x1.a39ef35793c76p-33 / STEPS;
    const double steps = std::floor(x.high * STEPS_PER_UNIT + 0.5);
    const Pair rest = sum(x.high - steps * STEP_START, -steps * STEP_REST);
    return expFromTable(static_cast<int>(steps), sum(rest, Pair{x.low, 0.0}));
}

/// The places of the table of logarithms lie between the roots of 1/2 and of 2.
constexpr int FIRST_PLACE = 90;
constexpr int LAST_PLACE = 182;

/// A factor that brings what is near to i / STEPS near to 1, and what its logarithm is short of 0.
struct Place {
    double factor;
    Pair logarithm;
};

/// log x = 2 artanh t of t = (x - 1) / (x + 1), by the series from its far end.
constexpr std::array<Place, LAST_PLACE - FIRST_PLACE + 1> PLACES = [] {
    std::array<Place, LAST_PLACE - FIRST_PLACE + 1> places{};
    for (int i = FIRST_PLACE; i <= LAST_PLACE; ++i) {
        const double factor = static_cast<double>(STEPS) / i;
        const Pair t = quotient(sum(1.0, -factor), sum(1.0, factor));
        const Pair square = product(t, t);
        Pair series = {0.0, 0.0};
        for (int power = 61; power > 0; power -= 2) {
            series = sum(quotient(Pair{1.0, 0.0}, power), product(series, square));
        }
        places[static_cast<std::size_t>(i - FIRST_PLACE)] = {factor, times(product(series, t), 2.0)};
    }
    return places;
}();

/// The natural logarithm of a positive and finite double.
Pair logPair(double x) {
    // x = 2^exponent * mantissa, the mantissa between the roots of 1/2 and 2.
    constexpr std::uint64_t ROOT_OF_HALF = 0x3fe6a09e667f3bcd;
    constexpr std::uint64_t ONE = 0x3ff0000000000000;
    constexpr std::uint64_t EXPONENT_BITS = 0xfff0000000000000;
    const bool isSubnormal = x < std::numeric_limits<double>::min();
    const auto bits = std::bit_cast<std::uint64_t>(isSubnormal ? x * 0x1p54 : x);
    const std::uint64_t shifted = bits + (ONE - ROOT_OF_HALF);
    const auto exponent = static_cast<int>(shifted >> 52U) - 1023 - (isSubnormal ? 54 : 0);
    const auto mantissa = std::bit_cast<double>(bits - ((shifted & EXPONENT_BITS) - ONE));

    const auto place = static_cast<int>(mantissa * STEPS + 0.5);
    const auto& [factor, logarithm] = PLACES[static_cast<std::size_t>(place - FIRST_PLACE)];
    const Pair nearOne = product(mantissa, factor);
    const Pair r = sum(nearOne.high - 1.0, nearOne.low);

    // log(1 + r) = r - r^2 / 2 + r^3 / 3 - ..., the first two terms in pairs.
    constexpr double REST[] = {1.0 / 3.0, -1.0 / 4.0, 1.0 / 5.0, -1.0 / 6.0, 1.0 / 7.0, -1.0 / 8.0, 1.0 / 9.0};
    const Pair square = product(r, r);
    const double rest = square.high * r.high * polynomial(r.high, REST);
    const Pair series = sum(r, sum(times(square, -0.5), Pair{rest, 0.0}));
    return sum(sum(product(LN_2, exponent), logarithm), series);
}

bool isWhole(double x) {
    return std::floor(x) == x;
}

bool isOdd(double whole) {
    return !isWhole(whole * 0.5);
}

/// x^y of a positive x that is neither 1 nor infinite, and a finite y.
double powOfPositive(double x, double y) {
    const Pair logarithm = logPair(x);
    const double estimate = y * logarithm.high;
    if (!(std::fabs(estimate) < 1000.0)) {
        return estimate > 0.0 ? INFINITE : 0.0;
    }
    return expPair(product(logarithm, y));
}

/// An angle as what it is away from the nearest quarter of a turn, at most an eighth, and the number of the quarter.
struct Angle {
    Pair rest;
    unsigned quarter;
};

constexpr double LARGEST_ANGLE = 1e5;

Angle reduce(double x) {
    constexpr double PER_QUARTER = 0x1.45f306dc9c883p-1;
    constexpr double QUARTER_START = 0x1.921fb54400000p+0; // 33 bits each: products with whole numbers are exact
    constexpr double QUARTER_MIDDLE = 0x1.0b4611a600000p-34;
    constexpr double QUARTER_REST = 0x1.3198a2e037073p-69;
    const double quarters = std::floor(x * PER_QUARTER + 0.5);
    const Pair rest =
        sum(sum(x - quarters * QUARTER_START, -quarters * QUARTER_MIDDLE), Pair{-quarters * QUARTER_REST, 0.0});
    return {rest, static_cast<unsigned>(static_cast<int>(quarters)) % 4U};
}

Pair sinePair(const Pair& r) {
    constexpr double REST[] = {
        1.0 / 120.0,        -1.0 / 5040.0,          1.0 / 362880.0,          -1.0 / 39916800.0,
        1.0 / 6227020800.0, -1.0 / 1307674368000.0, 1.0 / 355687428096000.0, -1.0 / 121645100408832000.0};
    const Pair square = product(r, r);
    const Pair cubic = product(product(square, r), MINUS_SIXTH);
    const double rest = square.high * square.high * r.high * polynomial(square.high, REST);
    return sum(r, sum(cubic, Pair{rest, 0.0}));
}

Pair cosinePair(const Pair& r) {
    constexpr double REST[] = {
        -1.0 / 720.0,         1.0 / 40320.0,          -1.0 / 3628800.0,          1.0 / 479001600.0,
        -1.0 / 87178291200.0, 1.0 / 20922789888000.0, -1.0 / 6402373705728000.0, 1.0 / 2432902008176640000.0};
    const Pair square = product(r, r);
    const Pair quartic = product(product(square, square), TWENTY_FOURTH);
    const double rest = square.high * square.high * square.high * polynomial(square.high, REST);
    const Pair start = sum(Pair{1.0, 0.0}, Pair{square.high * -0.5, square.low * -0.5});
    return sum(start, sum(quartic, Pair{rest, 0.0}));
}

/// The sine of an angle that is so many quarters further.
double sineAfter(const Angle& angle, unsigned quarters) {
    const unsigned quarter = (angle.quarter + quarters) % 4U;
    const Pair value = quarter % 2U == 0U ? sinePair(angle.rest) : cosinePair(angle.rest);
    return quarter < 2U ? value.high : -value.high;
}

bool hasValue(double angle) {
    return std::fabs(angle) <= LARGEST_ANGLE; // not so for NaN
}

} // namespace

double exp(double x) {
    if (std::isnan(x)) {
        return x;
    }
    return std::isinf(x) ? (x > 0.0 ? INFINITE : 0.0) : expPair({x, 0.0});
}

double exp2(double x) {
    constexpr double BEYOND = 1100.0;
    if (!(std::fabs(x) < BEYOND)) { // also NaN
        return x > 0.0 ? INFINITE : x < 0.0 ? 0.0 : x;
    }
    const double steps = std::floor(x * STEPS + 0.5);
    return expFromTable(static_cast<int>(steps), product(LN_2, x - steps / STEPS));
}

double log(double x) {
    if (!(x > 0.0)) { // also NaN
        return x == 0.0 ? -INFINITE : NOT_A_NUMBER;
    }
    return std::isinf(x) ? x : logPair(x).high;
}

double log10(double x) {
    const bool isOrdinary = x > 0.0 && !std::isinf(x);
    return isOrdinary ? product(logPair(x), PER_LN_10).high : log(x);
}

double pow(double x, double y) {
    if (x == 1.0 || y == 0.0) {
        return 1.0;
    }
    if (std::isnan(x) || std::isnan(y)) {
        return NOT_A_NUMBER;
    }
    const double magnitude = std::fabs(x);
    if (std::isinf(y)) {
        return magnitude == 1.0 ? 1.0 : (magnitude > 1.0) == (y > 0.0) ? INFINITE : 0.0;
    }
    if (x < 0.0 && !std::isinf(x) && !isWhole(y)) {
        return NOT_A_NUMBER;
    }
    double power = 1.0;
    if (magnitude == 0.0 || std::isinf(magnitude)) {
        power = (magnitude == 0.0) == (y > 0.0) ? 0.0 : INFINITE;
    } else if (magnitude != 1.0) {
        power = powOfPositive(magnitude, y);
    }
    const bool isNegative = std::signbit(x) && isWhole(y) && isOdd(y);
    return isNegative ? -power : power;
}

float pow(float x, float y) {
    return static_cast<float>(pow(static_cast<double>(x), static_cast<double>(y)));
}

double sin(double x) {
    if (x == 0.0) {
        return x; // keeps its sign
    }
    return hasValue(x) ? sineAfter(reduce(x), 0) : NOT_A_NUMBER;
}

double cos(double x) {
    return hasValue(x) ? sineAfter(reduce(x), 1) : NOT_A_NUMBER;
}

double tan(double x) {
    if (x == 0.0) {
        return x; // keeps its sign
    }
    if (!hasValue(x)) {
        return NOT_A_NUMBER;
    }
    const Angle angle = reduce(x);
    const Pair sine = sinePair(angle.rest);
    const Pair cosine = cosinePair(angle.rest);
    return angle.quarter % 2U == 0U ? quotient(sine, cosine).high : quotient({-cosine.high, -cosine.low}, sine).high;
}

} // namespace zqx::img::kernels::maths
