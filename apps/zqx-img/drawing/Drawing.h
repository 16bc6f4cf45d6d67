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
    /// @throws Error if the module cannot be loaded
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

/// The bytes that make a terminal show the picture. @throws Error if the module cannot be loaded
std::string encodeForTerminal(const TerminalPicture& picture);

} // namespace zqx::app
