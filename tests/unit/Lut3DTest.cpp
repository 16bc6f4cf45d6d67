// Gradings baked into three-dimensional lookup tables.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <zqx/img/ColorGrading.h>

#include "oracle/Grade.h"
#include "unit/support/Compare.h"
#include "unit/support/GradeRange.h"
#include "unit/support/Gradings.h"

namespace {

using namespace test;
using zqx::img::ColorGrading;

constexpr float FLOAT_GUARD = -12345.0F;
constexpr unsigned char BYTE_GUARD = 0xA5;
constexpr std::size_t SIZES[] = {0, 1, 2, 3, 8, 17};

/// The table, after a check that nothing behind its last entry was written.
std::vector<float> floatTable(const ColorGrading& grading, std::size_t size) {
    const std::size_t count = 3 * size * size * size;
    std::vector<float> table(count + 16, FLOAT_GUARD);
    grading.generate3DLUT_RGB32F(size, table.data());
    EXPECT_EQ(16, std::count(table.begin() + static_cast<std::ptrdiff_t>(count), table.end(), FLOAT_GUARD));
    table.resize(count);
    return table;
}

std::vector<unsigned char> byteTable(const ColorGrading& grading, std::size_t size) {
    const std::size_t count = 3 * size * size * size;
    std::vector<unsigned char> table(count + 16, BYTE_GUARD);
    grading.generate3DLUT_SRGB8(size, table.data());
    EXPECT_EQ(16, std::count(table.begin() + static_cast<std::ptrdiff_t>(count), table.end(), BYTE_GUARD));
    table.resize(count);
    return table;
}

void expectExactTables(const NamedSettings& set, std::size_t size) {
    SCOPED_TRACE(set.name + ", size " + std::to_string(size));
    const ColorGrading grading = makeGrading(set.settings);
    const oracle::Prepared prepared = oracle::prepare(set.settings);
    const std::vector<float> floats = floatTable(grading, size);
    const std::vector<float> expected = oracle::floatTable(prepared, size);
    ASSERT_EQ(expected.size(), floats.size());
    for (std::size_t i = 0; i < floats.size(); ++i) {
        ASSERT_TRUE(sameFloat(expected[i], floats[i])) << "element " << i << ": " << expected[i] << ", " << floats[i];
    }
    EXPECT_EQ(oracle::byteTable(prepared, size), byteTable(grading, size));
}

TEST(Lut3DTest, RedVariesFastestThenGreenThenBlue) {
    const std::vector<float> table = floatTable(ColorGrading(), 2);
    const std::vector<float> expected = {0, 0, 0, 1, 0, 0, 0, 1, 0, 1, 1, 0, 0, 0, 1, 1, 0, 1, 0, 1, 1, 1, 1, 1};
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_NEAR(expected[i], table[i], 1e-6) << i;
    }
}

TEST(Lut3DTest, FloatEntriesAreNotLimited) {
    ColorGrading grading;
    grading.setExposure(2.0F);
    grading.setSaturation(2.0F);
    const std::vector<float> table = floatTable(grading, 2);
    EXPECT_NEAR(4.0F * (2.0F - 0.2126F), table[3], 1e-5);
    EXPECT_NEAR(4.0F * -0.2126F, table[4], 1e-5);
}

TEST(Lut3DTest, ByteEntriesAreLimitedAndEncoded) {
    ColorGrading brighter;
    brighter.setExposure(1.0F);
    const std::vector<unsigned char> table = byteTable(brighter, 3);
    // The middle of the encoded scale: 255 * (2 * 0.5^2.2)^(1/2.2) = 174.7
    EXPECT_EQ(174, table[3]);
    EXPECT_EQ(255, table[6]);
    EXPECT_EQ(0, table[7]);
}

TEST(Lut3DTest, SizeZeroWritesNothing) {
    EXPECT_TRUE(floatTable(ColorGrading(), 0).empty());
    EXPECT_TRUE(byteTable(ColorGrading(), 0).empty());
}

TEST(Lut3DTest, SizeOneHoldsOneEntryThatIsNotANumber) {
    for (const float value : floatTable(ColorGrading(), 1)) {
        EXPECT_TRUE(std::isnan(value));
    }
    EXPECT_EQ((std::vector<unsigned char>{0, 0, 0}), byteTable(ColorGrading(), 1));
}

TEST(Lut3DTest, BlackHasNoHue) {
    ColorGrading grading;
    grading.setHue(20.0F);
    EXPECT_TRUE(std::isnan(floatTable(grading, 2)[0]));
    EXPECT_EQ(0, byteTable(grading, 2)[0]);
}

TEST(Lut3DTest, TablesAreExactWithoutContrastAndHue) {
    for (const NamedSettings& set : exactSettings()) {
        for (const std::size_t size : SIZES) {
            expectExactTables(set, size);
        }
    }
}

TEST(Lut3DTest, TablesOfNotANumberSettingsMatch) {
    for (const NamedSettings& set : nanSettings()) {
        expectExactTables(set, 5);
    }
}

TEST(Lut3DTest, UsualSizeIsExact) {
    expectExactTables(exactSettings().back(), 33);
}

TEST(Lut3DTest, FloatTablesWithContrastOrHueStayInRange) {
    for (const NamedSettings& set : curvedSettings()) {
        SCOPED_TRACE(set.name);
        const oracle::Prepared prepared = oracle::prepare(set.settings);
        const std::vector<float> table = floatTable(makeGrading(set.settings), 9);
        oracle::forLattice(9, [&](std::size_t entry, float r, float g, float b) {
            const std::array<ChannelRange, 3> ranges = gradeRanges(prepared, {r, g, b, 1.0F});
            for (std::size_t i = 0; i < 3; ++i) {
                EXPECT_TRUE(ranges[i].accepts(table[3 * entry + i]))
                    << "entry " << r << ", " << g << ", " << b << " holds " << table[3 * entry + i] << ", expected "
                    << ranges[i].low << " to " << ranges[i].high;
            }
        });
    }
}

TEST(Lut3DTest, ByteTablesWithContrastOrHueStayInRange) {
    for (const NamedSettings& set : curvedSettings()) {
        SCOPED_TRACE(set.name);
        const oracle::Prepared prepared = oracle::prepare(set.settings);
        const std::vector<unsigned char> table = byteTable(makeGrading(set.settings), 17);
        const std::vector<unsigned char> expected = oracle::byteTable(prepared, 17);
        ByteTally tally;
        oracle::forLattice(17, [&](std::size_t entry, float r, float g, float b) {
            const oracle::Values decoded = {powf(r, 2.2F), powf(g, 2.2F), powf(b, 2.2F), 1.0F};
            const std::array<ChannelRange, 3> ranges = gradeRanges(prepared, decoded);
            for (std::size_t i = 0; i < 3; ++i) {
                EXPECT_TRUE(ranges[i].acceptsByte(table[3 * entry + i], true)) << r << ", " << g << ", " << b;
                tally.offByOne += table[3 * entry + i] == expected[3 * entry + i] ? 0 : 1;
                ++tally.compared;
            }
        });
        EXPECT_TRUE(tally.withinBound());
    }
}

} // namespace
