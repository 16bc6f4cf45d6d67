// Light text on the background of the sheet.
#include "drawing/SheetLabels.h"

#include "drawing/Drawing.h"

namespace zqx::app {

namespace {

constexpr double GROUND = tools::ContactSheet::GROUND / 255.0;
constexpr Ink GROUND_INK{GROUND, GROUND, GROUND};
constexpr Ink LABEL_INK{0.93, 0.93, 0.93};

} // namespace

bool SheetLabels::drawLabel(img::Image& area, const std::string& text, unsigned letterHeight) {
    const auto width = static_cast<unsigned>(area.getWidth());
    Drawing drawing(width, static_cast<unsigned>(area.getHeight()), GROUND_INK);
    const double letters = letterHeight;
    const bool complete =
        drawing.canvas().drawText({width / 2.0, letters * 1.5}, text,
                                  {letters, LABEL_INK, Lettering::Align::MIDDLE, false, static_cast<double>(width)});
    drawing.copyTo(area, 0, 0);
    return complete;
}

} // namespace zqx::app
