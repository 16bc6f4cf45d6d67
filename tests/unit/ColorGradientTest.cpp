// The gradient map's stops and its table.
#include <cstring>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <zqx/img/ColorGradient.h>

#include "oracle/Gradient.h"
#include "unit/support/Compare.h"
#include "unit/support/Fill.h"
#include "unit/support/Gradings.h"

namespace {

using namespace test;
using zqx::img::Color;
using zqx::img::ColorGradient;

const Color BLACK{0, 0, 0, 1};
const Color WHITE{1, 1, 1, 1};
const Color RED{1, 0, 0, 1};
const Color BLUE{0, 0, 1, 0.5F};

void expectColor(const Color& expected, const Color& actual) {
    EXPECT_TRUE(sameFloat(expected.r, actual.r)) << expected.r << " and " << actual.r;
    EXPECT_TRUE(sameFloat(expected.g, actual.g)) << expected.g << " and " << actual.g;
    EXPECT_TRUE(sameFloat(expected.b, actual.b)) << expected.b << " and " << actual.b;
    EXPECT_TRUE(sameFloat(expected.a, actual.a)) << expected.a << " and " << actual.a;
}

void expectSameTable(const ColorGradient& expected, const ColorGradient& actual) {
    EXPECT_EQ(0, std::memcmp(expected.getLUTPtr(), actual.getLUTPtr(), 256 * sizeof(Color)));
}

ColorGradient colourful() {
    return ColorGradient({RED, BLUE, WHITE, BLACK});
}

TEST(ColorGradientTest, DefaultRunsFromBlackToWhite) {
    const ColorGradient gradient;
    expectColor(BLACK, gradient.getColorAt(0));
    expectColor(WHITE, gradient.getColorAt(255));
    for (int i = 0; i < 256; ++i) {
        const float t = static_cast<float>(i) / 255.0F;
        EXPECT_FLOAT_EQ(t, gradient.getColorAt(static_cast<unsigned char>(i)).r);
        EXPECT_FLOAT_EQ(t, gradient.getColorAt(static_cast<unsigned char>(i)).b);
        EXPECT_FLOAT_EQ(1.0F, gradient.getColorAt(static_cast<unsigned char>(i)).a);
    }
}

TEST(ColorGradientTest, EmptyListGivesBlackToWhite) {
    const ColorGradient gradient{std::vector<Color>()};
    EXPECT_EQ(0, gradient.compare(ColorGradient()));
    expectSameTable(ColorGradient(), gradient);
}

TEST(ColorGradientTest, SingleStopRunsToWhite) {
    const ColorGradient gradient{std::vector<Color>{RED}};
    expectColor(RED, gradient.getColorAt(0));
    expectColor(WHITE, gradient.getColorAt(255));
    EXPECT_EQ(0, gradient.compare(ColorGradient(RED, WHITE)));
}

TEST(ColorGradientTest, TwoStopsAreTheEnds) {
    const ColorGradient gradient(RED, BLUE);
    expectColor(RED, gradient.getColorAt(0));
    expectColor(BLUE, gradient.getColorAt(255));
    EXPECT_FLOAT_EQ(102.0F / 255.0F, gradient.getColorAt(102).b);
}

TEST(ColorGradientTest, AlphaIsInterpolatedLikeColour) {
    EXPECT_FLOAT_EQ(1.0F - 0.5F * 51.0F / 255.0F, ColorGradient(RED, BLUE).getColorAt(51).a);
}

TEST(ColorGradientTest, MiddleOfThreeStopsLiesAt127) {
    const ColorGradient gradient({RED, BLUE, WHITE});
    expectColor(BLUE, gradient.getColorAt(127));
    expectColor(WHITE, gradient.getColorAt(255));
}

TEST(ColorGradientTest, FourStopsMeetAt85And170) {
    const ColorGradient gradient = colourful();
    expectColor(BLUE, gradient.getColorAt(85));
    expectColor(WHITE, gradient.getColorAt(170));
}

TEST(ColorGradientTest, FiveStopsMeetAt63And127And191) {
    const ColorGradient gradient({RED, BLUE, WHITE, BLUE, BLACK});
    expectColor(BLUE, gradient.getColorAt(63));
    expectColor(WHITE, gradient.getColorAt(127));
    expectColor(BLUE, gradient.getColorAt(191));
}

TEST(ColorGradientTest, AnyNumberOfStopsUpTo256GivesTheTable) {
    Random random(20);
    for (std::size_t count = 0; count <= 256; ++count) {
        std::vector<oracle::Values> stops;
        for (std::size_t i = 0; i < count; ++i) {
            stops.push_back({random.between(-1, 2), random.unit(), random.unit(), random.unit()});
        }
        const ColorGradient gradient = getGradient(stops);
        const std::vector<oracle::Values> table = oracle::gradientTable(stops);
        for (int i = 0; i < 256; ++i) {
            SCOPED_TRACE(std::to_string(count) + " stops, entry " + std::to_string(i));
            expectColor(getColor(table[i]), gradient.getColorAt(static_cast<unsigned char>(i)));
        }
    }
}

TEST(ColorGradientTest, LastEntryIsTheLastStopWhereRoundingEndsTheLastSegmentEarly) {
    for (const std::size_t count : {42U, 48U, 56U, 62U, 83U, 84U}) {
        std::vector<Color> stops(count, BLACK);
        stops.back() = BLUE;
        const ColorGradient gradient(stops);
        expectColor(BLUE, gradient.getColorAt(254));
        expectColor(BLUE, gradient.getColorAt(255));
    }
}

TEST(ColorGradientTest, MoreStopsThanEntriesAreKeptAsStops) {
    // Their table is not meaningful, but every stop still counts.
    for (const std::size_t count : {257U, 300U, 511U, 10000U}) {
        std::vector<Color> stops(count, RED);
        const ColorGradient gradient(stops);
        EXPECT_EQ(0, gradient.compare(ColorGradient(stops)));
        stops.back() = WHITE;
        EXPECT_EQ(-1, gradient.compare(ColorGradient(stops)));
    }
}

TEST(ColorGradientTest, TableIsConsecutive) {
    const ColorGradient gradient = colourful();
    for (int i = 0; i < 256; ++i) {
        EXPECT_EQ(gradient.getLUTPtr() + i, &gradient.getColorAt(static_cast<unsigned char>(i)));
    }
}

TEST(ColorGradientTest, FewerStopsCompareFirst) {
    EXPECT_EQ(-1, ColorGradient(WHITE, WHITE).compare(ColorGradient({BLACK, BLACK, BLACK})));
    EXPECT_EQ(1, ColorGradient({BLACK, BLACK, BLACK}).compare(ColorGradient(WHITE, WHITE)));
}

TEST(ColorGradientTest, EqualNumbersCompareStopByStop) {
    EXPECT_EQ(-1, ColorGradient(BLACK, WHITE).compare(ColorGradient(RED, BLACK)));
    EXPECT_EQ(1, ColorGradient(BLACK, WHITE).compare(ColorGradient(BLACK, RED)));
    EXPECT_EQ(-1, ColorGradient(BLACK, {0, 0, 1, 0.25F}).compare(ColorGradient(BLACK, BLUE)));
    EXPECT_EQ(0, colourful().compare(colourful()));
}

TEST(ColorGradientTest, CopiesAreEqual) {
    const ColorGradient original = colourful();
    const ColorGradient copy(original);
    ColorGradient assigned;
    assigned = original;
    EXPECT_EQ(0, copy.compare(original));
    EXPECT_EQ(0, assigned.compare(original));
    expectSameTable(original, copy);
    expectSameTable(original, assigned);
}

TEST(ColorGradientTest, MovingKeepsBothTables) {
    ColorGradient source = colourful();
    const ColorGradient moved(std::move(source));
    EXPECT_EQ(0, moved.compare(colourful()));
    expectSameTable(colourful(), moved);
    expectSameTable(colourful(), source); // NOLINT: what a moved-from gradient keeps is the point

    ColorGradient other = colourful();
    ColorGradient assigned;
    assigned = std::move(other);
    EXPECT_EQ(0, assigned.compare(colourful()));
    expectSameTable(colourful(), assigned);
    expectSameTable(colourful(), other); // NOLINT
}

} // namespace
