// The grading settings: defaults, ranges, order.
#include <cmath>
#include <iterator>
#include <limits>
#include <utility>

#include <gtest/gtest.h>

#include <zqx/img/ColorGrading.h>

#include "unit/support/Gradings.h"

namespace {

using namespace test;
using zqx::img::Color;
using zqx::img::ColorGradient;
using zqx::img::ColorGrading;

/// One setting: how it is reached, its range and its default. In the order of comparison.
struct Setting {
    const char* name;
    void (ColorGrading::*set)(float);
    float (ColorGrading::*get)() const;
    float low;
    float high;
    float neutral;
};

const Setting SETTINGS[] = {
    {"exposure", &ColorGrading::setExposure, &ColorGrading::getExposure, -5, 5, 0},
    {"contrast", &ColorGrading::setContrast, &ColorGrading::getContrast, 0, 1, 0.5F},
    {"highlight", &ColorGrading::setHighlight, &ColorGrading::getHighlight, -1, 8, 0},
    {"shadow", &ColorGrading::setShadow, &ColorGrading::getShadow, -8, 1, 0},
    {"temperature", &ColorGrading::setTemperature, &ColorGrading::getTemperature, 2500, 10500, 6500},
    {"hue", &ColorGrading::setHue, &ColorGrading::getHue, -180, 180, 0},
    {"saturation", &ColorGrading::setSaturation, &ColorGrading::getSaturation, 0, 2, 1},
    {"gradient map intensity", &ColorGrading::setGradientMapIntensity, &ColorGrading::getGradientMapIntensity, 0, 1, 0},
};

float stored(const Setting& setting, float value) {
    ColorGrading grading;
    (grading.*setting.set)(value);
    return (grading.*setting.get)();
}

ColorGrading with(const Setting& setting, float value) {
    ColorGrading grading;
    (grading.*setting.set)(value);
    return grading;
}

const ColorGradient RED_TO_BLUE(Color{1, 0, 0, 1}, Color{0, 0, 1, 1});

TEST(ColorGradingTest, DefaultsAreNeutral) {
    const ColorGrading grading;
    for (const Setting& setting : SETTINGS) {
        EXPECT_EQ(setting.neutral, (grading.*setting.get)()) << setting.name;
    }
    EXPECT_EQ(0, grading.getGradientMap().compare(ColorGradient()));
}

TEST(ColorGradingTest, SettersLimitToTheRange) {
    const float infinity = std::numeric_limits<float>::infinity();
    for (const Setting& setting : SETTINGS) {
        SCOPED_TRACE(setting.name);
        EXPECT_EQ(setting.low, stored(setting, setting.low));
        EXPECT_EQ(setting.high, stored(setting, setting.high));
        EXPECT_EQ(setting.low, stored(setting, std::nextafter(setting.low, -infinity)));
        EXPECT_EQ(setting.high, stored(setting, std::nextafter(setting.high, infinity)));
        EXPECT_EQ(setting.low, stored(setting, -infinity));
        EXPECT_EQ(setting.high, stored(setting, infinity));
        const float inside = setting.low + 0.3F * (setting.high - setting.low);
        EXPECT_EQ(inside, stored(setting, inside));
    }
}

TEST(ColorGradingTest, ValuesOutsideTheRangeBecomeItsNearestEnd) {
    ColorGrading grading;
    grading.setExposure(7.0F);
    grading.setHighlight(-3.0F);
    grading.setShadow(3.0F);
    grading.setHue(200.0F);
    grading.setSaturation(-1.0F);
    grading.setGradientMapIntensity(2.0F);
    grading.setContrast(1.0F);
    EXPECT_EQ(5.0F, grading.getExposure());
    EXPECT_EQ(-1.0F, grading.getHighlight());
    EXPECT_EQ(1.0F, grading.getShadow());
    EXPECT_EQ(180.0F, grading.getHue());
    EXPECT_EQ(0.0F, grading.getSaturation());
    EXPECT_EQ(1.0F, grading.getGradientMapIntensity());
    EXPECT_EQ(1.0F, grading.getContrast());
}

TEST(ColorGradingTest, SettersKeepNotANumber) {
    for (const Setting& setting : SETTINGS) {
        EXPECT_TRUE(std::isnan(stored(setting, std::numeric_limits<float>::quiet_NaN()))) << setting.name;
    }
}

TEST(ColorGradingTest, ASetterTouchesItsOwnSettingOnly) {
    for (const Setting& setting : SETTINGS) {
        const ColorGrading grading = with(setting, setting.high);
        for (const Setting& other : SETTINGS) {
            if (other.set != setting.set) {
                EXPECT_EQ(other.neutral, (grading.*other.get)()) << setting.name << " changed " << other.name;
            }
        }
    }
}

TEST(ColorGradingTest, GradientMapIsTakenAsItIs) {
    ColorGrading grading;
    grading.setGradientMap(RED_TO_BLUE);
    EXPECT_EQ(0, grading.getGradientMap().compare(RED_TO_BLUE));
    for (int i = 0; i < 256; ++i) {
        const auto index = static_cast<unsigned char>(i);
        EXPECT_EQ(0, grading.getGradientMap().getColorAt(index).compare(RED_TO_BLUE.getColorAt(index)));
    }
}

TEST(ColorGradingTest, EqualGradingsCompareEqual) {
    EXPECT_EQ(0, ColorGrading().compare(ColorGrading()));
    ColorGrading grading;
    grading.setGradientMap(RED_TO_BLUE);
    grading.setHue(12.0F);
    EXPECT_EQ(0, grading.compare(ColorGrading(grading)));
}

TEST(ColorGradingTest, ComparesWithoutTolerance) {
    for (const Setting& setting : SETTINGS) {
        const float inside = setting.low + 0.3F * (setting.high - setting.low);
        const ColorGrading smaller = with(setting, inside);
        const ColorGrading larger = with(setting, std::nextafter(inside, setting.high));
        EXPECT_EQ(-1, smaller.compare(larger)) << setting.name;
        EXPECT_EQ(1, larger.compare(smaller)) << setting.name;
    }
}

TEST(ColorGradingTest, EarlierSettingsDecideFirst) {
    for (std::size_t i = 0; i + 1 < std::size(SETTINGS); ++i) {
        const Setting& first = SETTINGS[i];
        const Setting& second = SETTINGS[i + 1];
        ColorGrading a;
        (a.*first.set)(first.low);
        (a.*second.set)(second.high);
        ColorGrading b;
        (b.*first.set)(first.high);
        (b.*second.set)(second.low);
        EXPECT_EQ(-1, a.compare(b)) << first.name << " before " << second.name;
        EXPECT_EQ(1, b.compare(a)) << first.name << " before " << second.name;
    }
}

TEST(ColorGradingTest, GradientMapsDecideLast) {
    ColorGrading a;
    ColorGrading b;
    b.setGradientMap(RED_TO_BLUE);
    EXPECT_EQ(ColorGradient().compare(RED_TO_BLUE), a.compare(b));
    EXPECT_EQ(-1, a.compare(b));
    EXPECT_EQ(1, b.compare(a));
    a.setGradientMapIntensity(0.5F);
    EXPECT_EQ(1, a.compare(b)) << "intensity comes before the map";
}

TEST(ColorGradingTest, ComparesAsGreaterWithNotANumber) {
    for (const Setting& setting : SETTINGS) {
        const ColorGrading nan = with(setting, std::numeric_limits<float>::quiet_NaN());
        EXPECT_EQ(1, nan.compare(ColorGrading())) << setting.name;
        EXPECT_EQ(1, ColorGrading().compare(nan)) << setting.name;
        EXPECT_EQ(1, nan.compare(nan)) << setting.name;
    }
}

TEST(ColorGradingTest, CopiesAndMovesCarryEverything) {
    ColorGrading original;
    for (const Setting& setting : SETTINGS) {
        (original.*setting.set)(setting.low + 0.25F * (setting.high - setting.low));
    }
    original.setGradientMap(RED_TO_BLUE);
    const ColorGrading copy(original);
    ColorGrading assigned;
    assigned = original;
    ColorGrading movedFrom(original);
    const ColorGrading moved(std::move(movedFrom));
    EXPECT_EQ(0, copy.compare(original));
    EXPECT_EQ(0, assigned.compare(original));
    EXPECT_EQ(0, moved.compare(original));
    EXPECT_EQ(1.0F, moved.getGradientMap().getColorAt(255).b);
}

} // namespace
