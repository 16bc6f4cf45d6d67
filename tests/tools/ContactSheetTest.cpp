// Where pictures and labels come to lie on a sheet.
#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <zqx/tools/ContactSheet.h>

#include "zqx/pictures/files/Error.h"

namespace zqx::tools {

using namespace pictures;

namespace {

/// Fills the places of labels with a value each, and remembers them.
class Painter : public LabelPainter {
public:
    bool drawLabel(img::Image& area, const std::string& text, unsigned letterHeight) override {
        texts.push_back(text);
        heights.push_back(letterHeight);
        for (std::size_t y = 0; y < area.getHeight(); ++y) {
            std::fill_n(static_cast<unsigned char*>(area.getRowPtr(y)), 3 * area.getWidth(), LABEL);
        }
        return text != "odd";
    }

    static constexpr unsigned char LABEL = 200;
    std::vector<std::string> texts;
    std::vector<unsigned> heights;
};

constexpr unsigned SIDE = 200;
constexpr unsigned char WHITE = 255;

PixelBuffer white() {
    PixelBuffer picture(SIDE, SIDE, SampleLayout::GRAY8);
    for (unsigned y = 0; y < SIDE; ++y) {
        std::fill_n(static_cast<unsigned char*>(picture.image().getRowPtr(y)), SIDE, WHITE);
    }
    return picture;
}

unsigned char valueAt(const PixelBuffer& sheet, unsigned x, unsigned y) {
    return *static_cast<const unsigned char*>(sheet.image().getPixelPtr(x, y));
}

/// How many pixels of the sheet have a value.
std::size_t count(const PixelBuffer& sheet, unsigned char value) {
    std::size_t found = 0;
    for (unsigned y = 0; y < sheet.height(); ++y) {
        for (unsigned x = 0; x < sheet.width(); ++x) {
            found += valueAt(sheet, x, y) == value ? 1 : 0;
        }
    }
    return found;
}

} // namespace

TEST(ContactSheetTest, EachPictureHasALabelBelowIt) {
    Painter painter;
    ContactSheet sheet({"a", "b"}, SIDE, SIDE, painter);
    EXPECT_EQ(painter.texts, (std::vector<std::string>{"a", "b"}));
    const unsigned letters = painter.heights.front();
    sheet.place(0, white().image());
    const PixelBuffer pixels = sheet.take();
    EXPECT_EQ(count(pixels, WHITE), std::size_t{SIDE} * SIDE);
    EXPECT_EQ(count(pixels, Painter::LABEL), std::size_t{2} * SIDE * 2 * letters);
    const unsigned gap = letters * 3 / 2;
    EXPECT_EQ(valueAt(pixels, gap - 1, gap), ContactSheet::GROUND);
    EXPECT_EQ(valueAt(pixels, gap, gap), WHITE);
    EXPECT_EQ(valueAt(pixels, gap, gap + SIDE), Painter::LABEL);
}

TEST(ContactSheetTest, PicturesStandByRows) {
    Painter painter;
    ContactSheet sheet({"a", "b", "c", "d"}, SIDE, SIDE, painter); // three columns are nearest to the shape
    sheet.place(1, white().image());
    sheet.place(3, white().image());
    const PixelBuffer pixels = sheet.take();
    const unsigned letters = painter.heights.front();
    const unsigned gap = letters * 3 / 2;
    const unsigned secondRow = 2 * gap + SIDE + 2 * letters;
    EXPECT_EQ(valueAt(pixels, gap, gap), ContactSheet::GROUND);
    EXPECT_EQ(valueAt(pixels, 2 * gap + SIDE, gap), WHITE);
    EXPECT_EQ(valueAt(pixels, gap, secondRow), WHITE);
    EXPECT_EQ(valueAt(pixels, 2 * gap + SIDE, secondRow), ContactSheet::GROUND);
}

TEST(ContactSheetTest, TransparentPicturesShowTheSheet) {
    Painter painter;
    ContactSheet sheet({"a"}, SIDE, SIDE, painter);
    sheet.place(0, PixelBuffer(SIDE, SIDE, SampleLayout::RGBA8).image());
    EXPECT_EQ(count(sheet.take(), 0), 0U);
}

TEST(ContactSheetTest, LabelsThatNoFontHasAreWarnedOf) {
    Painter painter;
    std::vector<std::string> warnings;
    const WarningListener listener([&](const std::string& line) { warnings.push_back(line); });
    const ContactSheet sheet({"a", "odd"}, SIDE, SIDE, painter);
    EXPECT_EQ(warnings, std::vector<std::string>{"odd: no installed font has all characters of this label"});
}

TEST(ContactSheetTest, SheetsLargerThanAnyFileAreRefused) {
    Painter painter;
    EXPECT_THROW(ContactSheet({"a"}, 1000000000, 1, painter), UsageError);
}

} // namespace zqx::tools
