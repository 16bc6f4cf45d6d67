// The interface for drawing shapes and text. A module that is loaded when it is first needed implements it, see
// Drawing.h.
#pragma once

#include <span>
#include <string_view>

namespace zqx::app {

/// In pixels from the upper left corner; the centre of the first pixel is at (0.5, 0.5).
struct Point {
    double x = 0.0;
    double y = 0.0;
};

/// A colour in gamma-encoded values from 0 to 1.
struct Ink {
    double r = 0.0;
    double g = 0.0;
    double b = 0.0;
    double opacity = 1.0;
};

struct Lettering {
    enum class Align { LEFT, MIDDLE, RIGHT };

    double size;               ///< font size in pixels
    Ink ink;                   //
    Align align = Align::LEFT; ///< which part of the text is at the given position
    bool bold = false;         //
    double longest = 1e6;      ///< in pixels; longer text ends in an ellipsis
};

/// A picture to draw on.
class Canvas {
public:
    Canvas() = default;
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;
    virtual ~Canvas() = default;

    virtual void fillRectangle(Point corner, double width, double height, const Ink& ink) = 0;

    /// Fills a shape with the screen operator: overlapping shapes get lighter.
    virtual void fillLight(std::span<const Point> outline, const Ink& ink) = 0;

    virtual void drawLine(std::span<const Point> places, double width, const Ink& ink) = 0;

    /// @param place on the base line of the text
    /// @param text UTF-8; invalid and unprintable parts are replaced
    /// @return false if no installed font has all characters
    virtual bool drawText(Point place, std::string_view text, const Lettering& lettering) = 0;
};

} // namespace zqx::app
