/// @file
/// Versions of one picture on a sheet.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <zqx/img/Image.h>
#include <zqx/pictures/PixelBuffer.h>
#include <zqx/tools/Export.h>

namespace zqx::tools {

/// Draws the labels of a contact sheet, by whatever draws letters where the program runs.
/// @ingroup tools
class LabelPainter {
public:
    LabelPainter() = default;
    LabelPainter(const LabelPainter&) = delete;
    LabelPainter& operator=(const LabelPainter&) = delete;
    virtual ~LabelPainter() = default;

    /// Draws a line of text into the middle of an area of the sheet; longer text ends in an ellipsis.
    /// @param area in SBGR8, filled with the grey of the sheet
    /// @param text UTF-8
    /// @param letterHeight of the text's line in pixels
    /// @return false when no installed font has all the letters
    virtual bool drawLabel(img::Image& area, const std::string& text, unsigned letterHeight) = 0;
};

/// Labelled pictures of one size in rows and columns on dark grey, the whole near to the shape 3:2.
/// @ingroup tools
class ZQX_TOOLS_EXPORT ContactSheet {
public:
    /// The grey between the pictures, as stored.
    static constexpr unsigned char GROUND = 48;

    /// Lays the sheet out and draws the labels.
    /// @param labels one for each picture, at least one
    /// @param pictureWidth in pixels, of each
    /// @param pictureHeight in pixels, of each
    /// @param painter only used here
    /// @throws pictures::UsageError for more than a file of any format could hold; what the painter throws
    ContactSheet(const std::vector<std::string>& labels, unsigned pictureWidth, unsigned pictureHeight,
                 LabelPainter& painter);

    /// Puts a picture in its place. Transparent ones show the grey of the sheet.
    /// @param number of the picture, by rows from the upper left, from 0
    /// @param picture of the size that the sheet was made for, in any format, with straight alpha
    void place(std::size_t number, const img::Image& picture);

    /// The sheet, 8-bit colour. There is none any more afterwards.
    pictures::PixelBuffer take();

private:
    struct Corner {
        unsigned x;
        unsigned y;
    };
    Corner cellCorner(std::size_t number) const;
    void drawLabel(std::size_t number, const std::string& text, LabelPainter& painter);
    img::Image areaAt(Corner corner, unsigned width, unsigned height);

    unsigned mPictureWidth;
    unsigned mPictureHeight;
    unsigned mCellWidth; // of the picture and its label; a narrow picture stands in the middle
    unsigned mLetters;   // their height, which all spaces follow
    std::size_t mColumns;
    std::size_t mRows;
    pictures::PixelBuffer mSheet;
};

} // namespace zqx::tools
