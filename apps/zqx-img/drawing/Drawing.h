// Drawing and showing pictures, by a module that is loaded when it is first needed.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <zqx/img/Image.h>

#include "drawing/Canvas.h"
#include "terminal/TerminalPicture.h"

namespace zqx::app {

/// Pixels with a canvas over them.
class Drawing {
public:
    /// @throws Error when the module cannot be had
    Drawing(unsigned width, unsigned height, const Ink& background);

    Canvas& canvas() { return *mCanvas; }

    /// Copies what was drawn into an image in SBGR8. @param x, y where its upper left corner goes
    void copyTo(img::Image& image, unsigned x, unsigned y) const;

private:
    unsigned mWidth;
    unsigned mHeight;
    std::vector<std::uint32_t> mPixels; // 0xRRGGBB
    std::unique_ptr<Canvas> mCanvas;
};

/// What to write to a terminal to have it show the picture. @throws Error when the module cannot be had
std::string encodeForTerminal(const TerminalPicture& picture);

} // namespace zqx::app
