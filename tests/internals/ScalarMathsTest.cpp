// The library's own powers, logarithms and circular functions: how near they come to the exact values, which long
// doubles stand for, and what they make of zeros, infinities and what is not a number.
#include "kernels/maths/ScalarMaths.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "kernels/grading/GradingParams.h"

namespace {

namespace maths = zqx::img::kernels::maths;

using Limits = std::numeric_limits<double>;

constexpr double INFINITE = Limits::infinity();
constexpr double NOT_A_NUMBER = Limits::quiet_NaN();

/// What ScalarMaths.h promises, in units in the last place of a double.
constexpr double BOUND = 0.52;

constexpr float ENCODING = 0.45454544F;
constexpr float DECODING = 2.2F;

// Long doubles have to have some bits more than doubles, or they are no measure.
static_assert(std::numeric_limits<long double>::digits >= Limits::digits + 11);

/// How far a result is from the exact one, in the distance between doubles there.
double errorInUnits(double actual, long double exact) {
    const double near = std::fabs(static_cast<double>(exact));
    const double unit = std::nextafter(near, INFINITE) - near;
    return static_cast<double>(std::fabs(static_cast<long double>(actual) - exact) / static_cast<long double>(unit));
}

/// Numbers in [first, last] at places that have nothing to do with each other: multiples of the golden ratio.
std::vector<double> scattered(double first, double last, int count = 100000) {
    std::vector<double> numbers = {first, last};
    for (int i = 1; i <= count; ++i) {
        const double share = std::fmod(i * 0.6180339887498949, 1.0);
        numbers.push_back(first + (last - first) * share);
    }
    return numbers;
}

/// The same of magnitudes: 2^first to 2^last.
std::vector<double> scatteredMagnitudes(int first, int last) {
    std::vector<double> numbers = scattered(first, last);
    for (double& number : numbers) {
        number = std::exp2(number);
    }
    return numbers;
}

template <typename Function, typename Exact>
void expectWithinBound(const std::vector<double>& arguments, const Function& function, const Exact& exact) {
    double largest = 0.0;
    double where = 0.0;
    for (const double x : arguments) {
        const double error = errorInUnits(function(x), exact(static_cast<long double>(x)));
        if (!(error <= largest)) { // also NaN
            largest = error;
            where = x;
        }
    }
    EXPECT_LT(largest, BOUND) << std::hexfloat << where;
    testing::Test::RecordProperty("largest error in units", testing::PrintToString(largest));
}

bool isSame(double a, double b) {
    return std::isnan(a) ? std::isnan(b) : std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

TEST(ScalarMaths, ExponentialsAreWithinTheirBound) {
    const auto function = [](double x) { return maths::exp(x); };
    const auto exact = [](long double x) { return std::exp(x); };
    expectWithinBound(scattered(-708.0, 709.7), function, exact);
    expectWithinBound(scattered(-1.0, 1.0), function, exact);
    expectWithinBound(scattered(-1e-10, 1e-10), function, exact);
}

TEST(ScalarMaths, PowersOfTwoAreWithinTheirBound) {
    const auto function = [](double x) { return maths::exp2(x); };
    const auto exact = [](long double x) { return std::exp2(x); };
    expectWithinBound(scattered(-1022.0, 1023.9), function, exact);
    expectWithinBound(scattered(-5.0, 5.0), function, exact);
}

TEST(ScalarMaths, WholePowersOfTwoAreExact) {
    for (int exponent = -1074; exponent <= 1023; ++exponent) {
        EXPECT_EQ(std::ldexp(1.0, exponent), maths::exp2(exponent)) << exponent;
    }
}

TEST(ScalarMaths, LogarithmsAreWithinTheirBound) {
    const auto function = [](double x) { return maths::log(x); };
    const auto exact = [](long double x) { return std::log(x); };
    expectWithinBound(scatteredMagnitudes(-1022, 1023), function, exact);
    expectWithinBound(scattered(0.5, 2.0), function, exact);
    expectWithinBound(scattered(0.9999, 1.0001), function, exact);
    expectWithinBound({Limits::denorm_min(), 3 * Limits::denorm_min(), Limits::min() * 0.75, Limits::max()}, function,
                      exact);
}

TEST(ScalarMaths, DecimalLogarithmsAreWithinTheirBound) {
    const auto function = [](double x) { return maths::log10(x); };
    const auto exact = [](long double x) { return std::log10(x); };
    expectWithinBound(scatteredMagnitudes(-300, 300), function, exact);
    expectWithinBound(scattered(0.5, 2.0), function, exact);
}

TEST(ScalarMaths, DecimalLogarithmsOfPowersOfTenAreExact) {
    double power = 1.0;
    for (int exponent = 0; exponent <= 22; ++exponent, power *= 10.0) {
        EXPECT_EQ(exponent, maths::log10(power));
    }
}

TEST(ScalarMaths, PowersAreWithinTheirBound) {
    for (const double y : {2.2, 1.0 / 2.2, 0.5, -1.5, 7.3}) {
        const auto function = [=](double x) { return maths::pow(x, y); };
        const auto exact = [=](long double x) { return std::pow(x, static_cast<long double>(y)); };
        expectWithinBound(scattered(1e-5, 1.0, 50000), function, exact);
        expectWithinBound(scattered(0.99, 1.01, 50000), function, exact);
        expectWithinBound(scatteredMagnitudes(-130, 130), function, exact);
    }
    expectWithinBound(
        scattered(-900.0, 900.0), [](double y) { return maths::pow(1.9, y); },
        [](long double y) { return std::pow(static_cast<long double>(1.9), y); });
}

TEST(ScalarMaths, PowersThatAreDoublesAreExact) {
    double ofThree = 1.0;
    double ofTen = 1.0;
    for (int exponent = 0; exponent <= 22; ++exponent, ofThree *= 3.0, ofTen *= 10.0) {
        EXPECT_EQ(ofThree, maths::pow(3.0, exponent));
        EXPECT_EQ(ofTen, maths::pow(10.0, exponent));
        EXPECT_EQ(exponent % 2 == 0 ? ofThree : -ofThree, maths::pow(-3.0, exponent));
    }
    EXPECT_EQ(1.5, maths::pow(2.25, 0.5));
    EXPECT_EQ(0x1p-1074, maths::pow(2.0, -1074.0));
}

TEST(ScalarMaths, PowersOfFloatsAreTheNearestFloats) {
    for (const float y : {ENCODING, DECODING}) {
        for (std::uint32_t bits = 1; bits < 0x7f800000; bits += 4999) { // from the smallest float to the largest
            const auto x = std::bit_cast<float>(bits);
            const auto exact = std::pow(static_cast<long double>(x), static_cast<long double>(y));
            ASSERT_EQ(static_cast<float>(exact), maths::pow(x, y)) << std::hexfloat << x;
        }
    }
}

TEST(ScalarMaths, CircularFunctionsAreWithinTheirBound) {
    for (const double range : {1e-4, 0.8, 4.0, 1e5}) {
        const std::vector<double> angles = scattered(-range, range);
        expectWithinBound(
            angles, [](double x) { return maths::sin(x); }, [](long double x) { return std::sin(x); });
        expectWithinBound(
            angles, [](double x) { return maths::cos(x); }, [](long double x) { return std::cos(x); });
        expectWithinBound(
            angles, [](double x) { return maths::tan(x); }, [](long double x) { return std::tan(x); });
    }
}

TEST(ScalarMaths, CircularFunctionsAreWithinTheirBoundNextToTheirZeros) {
    std::vector<double> angles;
    for (int quarter = -8; quarter <= 8; ++quarter) {
        const double zero = quarter * 1.5707963267948966;
        angles.insert(angles.end(), {zero, std::nextafter(zero, 10.0), std::nextafter(zero, -10.0),
                                     static_cast<double>(static_cast<float>(zero))});
    }
    angles.erase(std::find(angles.begin(), angles.end(), 0.0)); // has no distance to other doubles
    expectWithinBound(
        angles, [](double x) { return maths::sin(x); }, [](long double x) { return std::sin(x); });
    expectWithinBound(
        angles, [](double x) { return maths::cos(x); }, [](long double x) { return std::cos(x); });
    expectWithinBound(
        angles, [](double x) { return maths::tan(x); }, [](long double x) { return std::tan(x); });
}

TEST(ScalarMaths, CircularFunctionsEndWithTheirDomain) {
    EXPECT_FALSE(std::isnan(maths::sin(1e5)));
    for (const double x : {100001.0, -1e300, INFINITE, -INFINITE, NOT_A_NUMBER}) {
        EXPECT_TRUE(std::isnan(maths::sin(x))) << x;
        EXPECT_TRUE(std::isnan(maths::cos(x))) << x;
        EXPECT_TRUE(std::isnan(maths::tan(x))) << x;
    }
}

TEST(ScalarMaths, ZerosKeepTheirSign) {
    for (const double zero : {0.0, -0.0}) {
        EXPECT_TRUE(isSame(zero, maths::sin(zero)));
        EXPECT_TRUE(isSame(zero, maths::tan(zero)));
        EXPECT_EQ(1.0, maths::cos(zero));
    }
}

TEST(ScalarMaths, ResultsBelowTheNormalDoublesAreWithinOneUnit) {
    for (const double x : scattered(-745.0, -708.5, 10000)) {
        EXPECT_LE(errorInUnits(maths::exp(x), std::exp(static_cast<long double>(x))), 1.0) << x;
    }
}

TEST(ScalarMaths, ExponentialsEndAtTheInfinities) {
    for (const auto function : {maths::exp, maths::exp2}) {
        EXPECT_EQ(INFINITE, function(INFINITE));
        EXPECT_EQ(INFINITE, function(1e308));
        EXPECT_EQ(INFINITE, function(1024.0));
        EXPECT_TRUE(isSame(0.0, function(-1080.0)));
        EXPECT_TRUE(isSame(0.0, function(-1e308)));
        EXPECT_TRUE(isSame(0.0, function(-INFINITE)));
        EXPECT_EQ(1.0, function(0.0));
        EXPECT_EQ(1.0, function(-0.0));
        EXPECT_EQ(1.0, function(Limits::denorm_min()));
        EXPECT_TRUE(std::isnan(function(NOT_A_NUMBER)));
    }
    EXPECT_EQ(INFINITE, maths::exp(709.79));
    EXPECT_LT(maths::exp(709.78), INFINITE);
}

TEST(ScalarMaths, LogarithmsHaveNoValueForNegatives) {
    for (const auto function : {maths::log, maths::log10}) {
        EXPECT_EQ(-INFINITE, function(0.0));
        EXPECT_EQ(-INFINITE, function(-0.0));
        EXPECT_EQ(INFINITE, function(INFINITE));
        EXPECT_TRUE(isSame(0.0, function(1.0)));
        for (const double x : {-Limits::denorm_min(), -1.0, -INFINITE, NOT_A_NUMBER}) {
            EXPECT_TRUE(std::isnan(function(x))) << x;
        }
    }
}

TEST(ScalarMaths, PowersOfSpecialValuesAreThoseOfTheStandard) {
    const std::vector<double> specials = {0.0, 1.0,   0.5,    2.0,  3.0,      4.0,         0.75,
                                          2.5, 1e308, 1e-320, 1e16, INFINITE, NOT_A_NUMBER};
    std::vector<double> values = specials;
    for (const double special : specials) {
        values.push_back(-special);
    }
    for (const double x : values) {
        for (const double y : values) {
            const double expected = std::pow(x, y);
            const double actual = maths::pow(x, y);
            const bool isOrdinary = expected != 0.0 && std::isfinite(expected);
            const bool isRight =
                isOrdinary ? errorInUnits(actual, static_cast<long double>(expected)) <= 1.0 : isSame(expected, actual);
            EXPECT_TRUE(isRight) << x << "^" << y << " is " << actual << ", expected " << expected;
        }
    }
}

TEST(ScalarMaths, GradingParametersAreTheNearestFloats) {
    for (int i = 0; i <= 10000; ++i) {
        const float contrast = static_cast<float>(i) / 10000.0F;
        const float angle = (contrast > 0.9999999F ? 0.9999999F : contrast) * 1.5707964F;
        ASSERT_EQ(static_cast<float>(std::tan(static_cast<long double>(angle))),
                  zqx::img::kernels::contrastExponent(contrast))
            << contrast;
        const float stops = static_cast<float>(i) / 1000.0F - 5.0F;
        ASSERT_EQ(static_cast<float>(std::exp2(static_cast<long double>(stops))),
                  zqx::img::kernels::exposureFactor(stops))
            << stops;
    }
    EXPECT_EQ(1.0F, zqx::img::kernels::contrastExponent(0.5F));
    EXPECT_EQ(0.0F, zqx::img::kernels::contrastExponent(0.0F));
    EXPECT_EQ(1.0F, zqx::img::kernels::exposureFactor(0.0F));
    EXPECT_TRUE(std::isnan(zqx::img::kernels::contrastExponent(std::numeric_limits<float>::quiet_NaN())));
    EXPECT_TRUE(std::isnan(zqx::img::kernels::exposureFactor(std::numeric_limits<float>::quiet_NaN())));
}

} // namespace
