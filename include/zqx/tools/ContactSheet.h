/// @file
/// Contact sheets: versions of one picture side by side.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <zqx/img/Image.h>
#include <zqx/pictures/PixelBuffer.h>
#include <zqx/tools/Export.h>

namespace zqx::tools {

/// Draws the labels of a contact sheet. The library itself has no fonts.
/// @ingroup tools
class LabelPainter {
public:
    LabelPainter() = default;
    LabelPainter(const LabelPainter&) = delete;
    LabelPainter& operator=(const LabelPainter&) = delete;
    virtual ~LabelPainter() = default;

    /// Draws a line of text centred in an area of the sheet; text that is too long ends in an ellipsis.
    /// @param area in SBGR8, filled with the background of the sheet
    /// @param text UTF-8
    /// @param letterHeight font size in pixels
    /// @return whether a font has all characters of the text
    virtual bool drawLabel(img::Image& area, const std::string& text, unsigned letterHeight) = 0;
};

/// Labelled pictures of equal size in rows and columns on dark grey, with an aspect ratio near 3:2.
/// @ingroup tools
class ZQX_TOOLS_EXPORT ContactSheet {
public:
    /// The background between the pictures, a gamma-encoded grey.
    static constexpr unsigned char GROUND = 48;

    /// Lays the sheet out and draws the labels.
    /// @param labels one for each picture, at least one
    /// @param pictureWidth of each picture in pixels
    /// @param pictureHeight of each picture in pixels
    /// @param painter used by this constructor only
    /// @throws pictures::UsageError if the sheet is too large for any file format; whatever the painter throws
    ContactSheet(const std::vector<std::string>& labels, unsigned pictureWidth, unsigned pictureHeight,
                 LabelPainter& painter);

    /// Puts a picture in its place. Where it is transparent, the background shows.
    /// @param number of the picture, row by row from the upper left, from 0
    /// @param picture of the size given to the constructor, in any format, with straight alpha
    void place(std::size_t number, const img::Image& picture);

    /// Hands over the sheet, in 8-bit colour. Nothing can be placed on it afterwards.
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
    unsigned mCellWidth; // of a picture with its label; a narrower picture is centred
    unsigned mLetters;   // font size, to which all margins are proportional
    std::size_t mColumns;
    std::size_t mRows;
    pictures::PixelBuffer mSheet;
};

} // namespace zqx::tools
