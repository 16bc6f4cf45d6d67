// Versions of one picture on a sheet.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "zqx/pictures/PixelBuffer.h"

namespace zqx::app {

/// Labelled pictures of one size in rows and columns on dark grey, the whole near to the shape 3:2.
class ContactSheet {
public:
    /// @param labels one for each picture. @throws Error when labels cannot be drawn
    ContactSheet(std::vector<std::string> labels, unsigned pictureWidth, unsigned pictureHeight);

    /// Puts a picture in its place. Transparent ones show the grey of the sheet.
    void place(std::size_t number, const img::Image& picture);

    /// The sheet, colour of 8 bits.
    pictures::PixelBuffer take() { return std::move(mSheet); }

private:
    struct Corner {
        unsigned x;
        unsigned y; // from the top
    };
    Corner cornerOf(std::size_t number) const;
    void drawLabel(std::size_t number);

    std::vector<std::string> mLabels;
    unsigned mPictureWidth;
    unsigned mPictureHeight;
    unsigned mCellWidth; // of the picture and its label; a narrow picture stands in the middle
    unsigned mLetters;   // their height, which all spaces follow
    std::size_t mColumns;
    std::size_t mRows;
    pictures::PixelBuffer mSheet;
};

} // namespace zqx::app
