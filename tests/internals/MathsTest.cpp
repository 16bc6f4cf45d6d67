// The vector functions against long double, over all of their domains, on every instruction set.
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "simd/Targets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "internals/MathsTest.cpp"
#include <hwy/foreach_target.h> // before highway.h
#include <hwy/highway.h>

#include "kernels/maths/Maths-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zqx::img::kernels::HWY_NAMESPACE {
namespace {

using F64 = hn::ScalableTag<double>;

/// Calls function(d, arguments) vector by vector. Arguments and results are padded to whole vectors.
template <typename T, typename Function>
void forEachVector(const std::vector<T>& arguments, std::vector<double>& results, const Function& function) {
    const F64 d;
    const hn::Rebind<T, F64> from;
    for (std::size_t i = 0; i + hn::Lanes(d) <= arguments.size(); i += hn::Lanes(d)) {
        hn::StoreU(function(d, hn::LoadU(from, arguments.data() + i)), d, results.data() + i);
    }
}

} // namespace

void logarithms(const std::vector<float>& arguments, std::vector<double>& results) {
    forEachVector(arguments, results, [](F64 d, auto x) HWY_ATTR { return log2(d, x); });
}

void powers(const std::vector<double>& arguments, std::vector<double>& results) {
    forEachVector(arguments, results, [](F64 d, auto x) HWY_ATTR { return exp2(d, x); });
}

void cubeRoots(const std::vector<double>& arguments, std::vector<double>& results) {
    forEachVector(arguments, results, [](F64 d, auto x) HWY_ATTR { return cubeRoot(d, x); });
}

const char* compiledFor() {
    return hwy::TargetName(HWY_TARGET);
}

} // namespace zqx::img::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace {

namespace kernels = zqx::img::kernels;
using namespace test;

constexpr double INFINITE = std::numeric_limits<double>::infinity();
constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();
constexpr float FLOAT_MAX = std::numeric_limits<float>::max();

/// No vector of doubles has more lanes.
constexpr std::size_t PADDING = 8;

} // namespace

namespace zqx::img::kernels {
namespace {

HWY_EXPORT(logarithms);
HWY_EXPORT(powers);
HWY_EXPORT(cubeRoots);
HWY_EXPORT(compiledFor);

void callLogarithms(const std::vector<float>& x, std::vector<double>& y) {
    HWY_DYNAMIC_DISPATCH(logarithms)(x, y);
}

void callPowers(const std::vector<double>& x, std::vector<double>& y) {
    HWY_DYNAMIC_DISPATCH(powers)(x, y);
}

void callCubeRoots(const std::vector<double>& x, std::vector<double>& y) {
    HWY_DYNAMIC_DISPATCH(cubeRoots)(x, y);
}

std::string callCompiledFor() {
    return HWY_DYNAMIC_DISPATCH(compiledFor)();
}

} // namespace
} // namespace zqx::img::kernels

namespace {

template <typename T>
using VectorFunction = void (*)(const std::vector<T>& arguments, std::vector<double>& results);

template <typename T>
std::vector<double> getValues(VectorFunction<T> function, std::vector<T> arguments) {
    const std::size_t count = arguments.size();
    arguments.resize((count + PADDING - 1) / PADDING * PADDING, T{1});
    std::vector<double> results(arguments.size());
    function(arguments, results);
    results.resize(count);
    return results;
}

double absoluteError(double actual, long double exact) {
    return static_cast<double>(std::fabs(actual - exact));
}

double relativeError(double actual, long double exact) {
    return static_cast<double>(std::fabs((actual - exact) / exact));
}

/// Expects the error of all results to stay below the bound on each instruction set.
template <typename T>
void expectErrorBelow(double bound, const std::vector<T>& arguments, VectorFunction<T> function,
                      long double (*exact)(long double), double (*getError)(double actual, long double exact)) {
    std::vector<long double> expected(arguments.size());
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        expected[i] = exact(static_cast<long double>(arguments[i]));
    }
    for (const Target target : availableTargets()) {
        const ForcedTarget forced(target);
        const std::vector<double> results = getValues(function, arguments);
        double largest = 0.0;
        std::size_t where = 0;
        for (std::size_t i = 0; i < results.size(); ++i) {
            const double error = getError(results[i], expected[i]);
            if (!(error <= largest)) { // also NaN
                largest = error;
                where = i;
            }
        }
        EXPECT_LT(largest, bound) << nameOfTarget(target) << " at " << testing::PrintToString(arguments[where]);
        testing::Test::RecordProperty("largest error on " + nameOfTarget(target), testing::PrintToString(largest));
    }
}

/// Expects these values, NaN included, on each instruction set.
template <typename T>
void expectValues(VectorFunction<T> function, const std::vector<T>& arguments, const std::vector<double>& expected) {
    for (const Target target : availableTargets()) {
        const ForcedTarget forced(target);
        const std::vector<double> results = getValues(function, arguments);
        for (std::size_t i = 0; i < expected.size(); ++i) {
            const bool isSame = std::isnan(expected[i]) ? std::isnan(results[i]) : results[i] == expected[i];
            EXPECT_TRUE(isSame) << nameOfTarget(target) << ": " << results[i] << " of " << arguments[i] << ", expected "
                                << expected[i];
        }
    }
}

/// Every `step`-th float between two positive ones.
template <typename T>
std::vector<T> floatsFrom(float first, float last, std::uint32_t step) {
    std::vector<T> floats;
    for (std::uint32_t bits = std::bit_cast<std::uint32_t>(first); bits <= std::bit_cast<std::uint32_t>(last);
         bits += step) {
        floats.push_back(std::bit_cast<float>(bits));
    }
    floats.push_back(last);
    return floats;
}

/// `count` + 1 doubles, evenly spaced.
std::vector<double> doublesFrom(double first, double last, std::size_t count) {
    std::vector<double> doubles;
    for (std::size_t i = 0; i <= count; ++i) {
        doubles.push_back(first + (last - first) * static_cast<double>(i) / static_cast<double>(count));
    }
    return doubles;
}

TEST(Maths, KernelsFollowTheForcedInstructionSet) {
    for (const Target target : availableTargets()) {
        const ForcedTarget forced(target);
        EXPECT_EQ(hwy::TargetName(target), kernels::callCompiledFor());
    }
}

TEST(Maths, Log2IsWithinItsBoundOnAllNormalFloats) {
    expectErrorBelow<float>(1e-13, floatsFrom<float>(std::numeric_limits<float>::min(), FLOAT_MAX, 1499),
                            &kernels::callLogarithms, &log2l, &absoluteError);
}

TEST(Maths, ExhaustiveLog2IsWithinItsBoundOnAllMantissas) {
    // Two binades hold the whole reduced range, and the place where the exponent steps.
    expectErrorBelow<float>(1e-13, floatsFrom<float>(0.5F, 2.0F, 1), &kernels::callLogarithms, &log2l, &absoluteError);
}

TEST(Maths, Log2OfPowersOfTwoIsExact) {
    std::vector<float> arguments;
    std::vector<double> expected;
    for (int exponent = -126; exponent <= 127; ++exponent) {
        arguments.push_back(std::ldexp(1.0F, exponent));
        expected.push_back(exponent);
    }
    expectValues<float>(&kernels::callLogarithms, arguments, expected);
}

TEST(Maths, Log2HasNoValueForNegativesAndEndsAtTheInfinities) {
    const float infinite = std::numeric_limits<float>::infinity();
    expectValues<float>(&kernels::callLogarithms,
                        {0.0F, -0.0F, infinite, -infinite, -1.0F, -FLOAT_MAX, -std::numeric_limits<float>::min(),
                         std::numeric_limits<float>::quiet_NaN(), -std::numeric_limits<float>::quiet_NaN()},
                        {-INFINITE, -INFINITE, INFINITE, NOT_A_NUMBER, NOT_A_NUMBER, NOT_A_NUMBER, NOT_A_NUMBER,
                         NOT_A_NUMBER, NOT_A_NUMBER});
}

TEST(Maths, Exp2IsWithinItsBoundOnItsDomain) {
    expectErrorBelow<double>(1e-13, doublesFrom(-1022.0, 1023.0, 1000003), &kernels::callPowers, &exp2l,
                             &relativeError);
}

TEST(Maths, Exp2IsWithinItsBoundOnAWholeStep) {
    expectErrorBelow<double>(1e-13, doublesFrom(-1.0, 1.0, 1000000), &kernels::callPowers, &exp2l, &relativeError);
}

TEST(Maths, Exp2OfIntegersIsExact) {
    std::vector<double> arguments;
    std::vector<double> expected;
    for (int exponent = -1022; exponent <= 1023; ++exponent) {
        arguments.push_back(exponent);
        expected.push_back(std::ldexp(1.0, exponent));
    }
    expectValues<double>(&kernels::callPowers, arguments, expected);
}

TEST(Maths, Exp2StopsAtTheEndsOfItsDomain) {
    const double least = std::ldexp(1.0, -1022);
    const double most = std::ldexp(1.0, 1023);
    expectValues<double>(&kernels::callPowers, {1023.5, 1e300, INFINITE, -1022.5, -1e300, -INFINITE, -0.0},
                         {most, most, most, least, least, least, 1.0});
}

TEST(Maths, Exp2OfNotANumberIsNotANumber) {
    const double withPayload =
        std::bit_cast<double>(std::uint64_t{0x7FF8000000000FFF}); // low bits look like an exponent
    expectValues<double>(&kernels::callPowers, {NOT_A_NUMBER, -NOT_A_NUMBER, withPayload},
                         {NOT_A_NUMBER, NOT_A_NUMBER, NOT_A_NUMBER});
}

TEST(Maths, CubeRootIsWithinItsBoundOnItsDomain) {
    expectErrorBelow<double>(1e-13, floatsFrom<double>(std::ldexp(1.0F, -100), FLOAT_MAX, 1499),
                             &kernels::callCubeRoots, &cbrtl, &relativeError);
}

TEST(Maths, ExhaustiveCubeRootIsWithinItsBoundOnThreeBinades) {
    // The first guess repeats itself every three binades.
    expectErrorBelow<double>(1e-13, floatsFrom<double>(1.0F, 8.0F, 3), &kernels::callCubeRoots, &cbrtl, &relativeError);
}

TEST(Maths, CubeRootOfInfinityIsInfinityAndNotANumberStays) {
    expectValues<double>(&kernels::callCubeRoots, {INFINITE, NOT_A_NUMBER, -NOT_A_NUMBER},
                         {INFINITE, NOT_A_NUMBER, NOT_A_NUMBER});
}

} // namespace
#endif
