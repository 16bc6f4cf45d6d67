// The progress line at every width.
#include <gtest/gtest.h>

#include "terminal/Progress.h"

namespace zqx::app {

namespace {

const ProgressState HALF{100, 200, 10.0, "photos/lake.jpg"};

/// Places on the screen of a line whose characters all take one.
std::size_t getColumns(const std::string& line) {
    std::size_t count = 0;
    for (const char byte : line) {
        count += (static_cast<unsigned char>(byte) & 0xC0U) != 0x80;
    }
    return count;
}

} // namespace

TEST(ProgressTest, ShowsCountRateTimeLeftAndFile) {
    EXPECT_EQ(progressLine(HALF, 79, false), "[#######-------] 100/200  10.0 pictures/s  0:10 left  photos/lake.jpg");
}

TEST(ProgressTest, IsDrawnInBlocksWhereThatIsPossible) {
    EXPECT_EQ(progressLine(HALF, 60, true), "████░░░░ 100/200  10.0 pictures/s  0:10 left  ...os/lake.jpg");
}

TEST(ProgressTest, FitsEveryWidth) {
    for (const bool unicode : {false, true}) {
        for (std::size_t columns = 0; columns < 200; ++columns) {
            EXPECT_LE(getColumns(progressLine(HALF, columns, unicode)), columns) << columns;
        }
    }
}

TEST(ProgressTest, LongNamesKeepTheirEnd) {
    const ProgressState state{1, 2, 0.0, "a/very/long/name/of/a/folder/and/picture_0001.jpg"};
    const std::string line = progressLine(state, 40, false);
    EXPECT_TRUE(line.ends_with("...ure_0001.jpg") || line.ends_with("_0001.jpg")) << line;
    EXPECT_NE(line.find("  ..."), std::string::npos) << line;
}

TEST(ProgressTest, WideCharactersTakeTwoPlaces) {
    ProgressState state{0, 2, 0.0, "日本日本日本日本日本"}; // 20 places
    EXPECT_NE(progressLine(state, 38, true).find(state.current), std::string::npos);
    EXPECT_EQ(progressLine(state, 34, true).find(state.current), std::string::npos);
}

TEST(ProgressTest, NothingOfANameReachesTheTerminalAsACommand) {
    const ProgressState state{0, 2, 0.0, "a\x1b[2Jb\n\xC2\x9Bz\xFFq\x7F.png"};
    for (const bool unicode : {false, true}) {
        const std::string line = progressLine(state, 79, unicode);
        EXPECT_TRUE(line.ends_with(R"(  a\x1B[2Jb\n\x9Bz\xFFq\x7F.png)")) << line;
    }
}

TEST(ProgressTest, PlainTerminalsGetPlainNames) {
    const ProgressState state{0, 2, 0.0, "café.png"};
    EXPECT_TRUE(progressLine(state, 79, false).ends_with("  caf?.png"));
    EXPECT_TRUE(progressLine(state, 79, true).ends_with("  café.png"));
}

TEST(ProgressTest, SlowWorkIsToldByThePicture) {
    EXPECT_NE(progressLine({2, 6, 10.0, ""}, 79, false).find("2/6  5.0 s each  0:20 left"), std::string::npos);
}

TEST(ProgressTest, LongTimesAreToldInHours) {
    EXPECT_NE(progressLine({1, 101, 60.0, ""}, 79, false).find("1:40:00 left"), std::string::npos);
}

TEST(ProgressTest, FirstMomentTellsNoRate) {
    EXPECT_EQ(progressLine({1, 2, 0.5, ""}, 79, false).find("left"), std::string::npos);
    EXPECT_EQ(progressLine({0, 2, 5.0, ""}, 79, false).find("left"), std::string::npos);
}

} // namespace zqx::app
