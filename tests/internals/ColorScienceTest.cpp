// Matrices of colour science against published values and double precision.
#include "kernels/maths/ColorScience.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "kernels/grading/GradingParams.h"

namespace {

using namespace zqx::img::kernels;

void expectNear(const Matrix3& actual, const std::array<double, 9>& expected, double tolerance) {
    for (std::size_t i = 0; i < 9; ++i) {
        EXPECT_NEAR(actual[i], expected[i], tolerance) << "element " << i;
    }
}

TEST(ColorScience, RgbToXyzIsTheInverseOfXyzToRgb) {
    expectNear(RGB_TO_XYZ, {0.41239, 0.35758, 0.18048, 0.21264, 0.71517, 0.07219, 0.01933, 0.11919, 0.95053}, 6e-6);
    expectNear(multiply(XYZ_TO_RGB, RGB_TO_XYZ), {1, 0, 0, 0, 1, 0, 0, 0, 1}, 3e-7);
}

TEST(ColorScience, DaylightAt6500KelvinIsNotQuiteD65) {
    const Chromaticity white = daylightWhite(6500.0);
    EXPECT_NEAR(white.x, 0.31278, 5e-6);
    EXPECT_NEAR(white.y, 0.32918, 5e-6);
}

TEST(ColorScience, At7000KelvinTheFirstDaylightFormulaApplies) {
    const double t = 7000.0;
    EXPECT_EQ(daylightWhite(t).x,
              static_cast<float>(-4.607e9 / (t * t * t) + 2.9678e6 / (t * t) + 99.11 / t + 0.244063));
    const double above = 7000.001;
    EXPECT_EQ(daylightWhite(above).x, static_cast<float>(-2.0064e9 / (above * above * above) +
                                                         1.9018e6 / (above * above) + 247.48 / above + 0.23704));
}

TEST(ColorScience, WhiteBalanceMapsWhiteToItsReferenceValues) {
    const auto whiteAt = [](float kelvin) { return multiply(whiteBalanceMatrix(kelvin), Vector3{1, 1, 1}); };
    const struct {
        float kelvin;
        double r, g, b;
    } references[] = {{2500, 0.073, 1.180, 4.067}, {3000, 0.284, 1.129, 3.138}, {10500, 1.196, 0.985, 0.682}};
    for (const auto& reference : references) {
        const Vector3 white = whiteAt(reference.kelvin);
        EXPECT_NEAR(white[0], reference.r, 6e-4) << reference.kelvin;
        EXPECT_NEAR(white[1], reference.g, 6e-4) << reference.kelvin;
        EXPECT_NEAR(white[2], reference.b, 6e-4) << reference.kelvin;
    }
}

TEST(ColorScience, ThereIsNoWhiteBalanceAtExactly6500Kelvin) {
    EXPECT_FALSE(whiteBalance(6500.0F).has_value());
}

TEST(ColorScience, JustBeside6500KelvinWhiteBalanceIsCloseToIdentity) {
    ASSERT_TRUE(whiteBalance(6499.99F).has_value());
    expectNear(*whiteBalance(6499.99F), {1, 0, 0, 0, 1, 0, 0, 0, 1}, 2e-3);
}

TEST(ColorScience, EveryConeSpaceMapsTheSourceWhiteToTheTargetWhite) {
    for (const Matrix3& cones : {BRADFORD, VON_KRIES, XYZ_SCALING}) {
        const Vector3 sourceWhite = multiply(XYZ_TO_RGB, whitePoint(daylightWhite(4000.0)));
        const Vector3 adapted = multiply(whiteBalanceMatrix(4000.0F, cones), sourceWhite);
        const Vector3 expected = multiply(XYZ_TO_RGB, whitePoint({D65_X, D65_Y}));
        for (std::size_t i = 0; i < 3; ++i) {
            EXPECT_NEAR(adapted[i], expected[i], 3e-6);
        }
    }
}

TEST(GradingParams, NeutralContrastIsExactlyExponentOne) {
    EXPECT_EQ(contrastExponent(0.5F), 1.0F);
    EXPECT_EQ(contrastExponent(0.0F), 0.0F);
}

TEST(GradingParams, FullContrastIsLargeButFinite) {
    EXPECT_EQ(contrastExponent(1.0F), std::tan(0.9999999F * 1.5707964F));
    EXPECT_TRUE(std::isfinite(contrastExponent(1.0F)));
    EXPECT_GT(contrastExponent(1.0F), 1e6F);
}

TEST(GradingParams, NaNContrastStaysNaN) {
    EXPECT_TRUE(std::isnan(contrastExponent(std::numeric_limits<float>::quiet_NaN())));
}

} // namespace
