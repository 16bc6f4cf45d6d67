// Drawing with Cairo. Its "toy" text interface is sufficient for labels, provided that they are valid UTF-8: it draws
// nothing at all otherwise.
#include "drawing/module/CairoCanvas.h"

#include <new>
#include <string>

#include <cairo.h>

#include "zqx/text/Cleaning.h"
#include "zqx/text/Utf8.h"

namespace zqx::app::drawing {

namespace {

struct Release {
    void operator()(cairo_t* context) const { cairo_destroy(context); }
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};

class CairoCanvas : public Canvas {
public:
    CairoCanvas(std::uint32_t* pixels, int width, int height)
        : mSurface(cairo_image_surface_create_for_data(reinterpret_cast<unsigned char*>(pixels), CAIRO_FORMAT_RGB24,
                                                       width, height, width * static_cast<int>(sizeof *pixels))),
          mContext(cairo_create(mSurface.get())) {
        if (cairo_status(mContext.get()) != CAIRO_STATUS_SUCCESS) {
            throw std::bad_alloc();
        }
        cairo_set_line_join(mContext.get(), CAIRO_LINE_JOIN_ROUND);
    }
    ~CairoCanvas() override { cairo_surface_flush(mSurface.get()); }

    void fillRectangle(Point corner, double width, double height, const Ink& ink) override {
        use(ink);
        cairo_rectangle(mContext.get(), corner.x, corner.y, width, height);
        cairo_fill(mContext.get());
    }

    void fillLight(std::span<const Point> outline, const Ink& ink) override {
        use(ink);
        trace(outline);
        cairo_set_operator(mContext.get(), CAIRO_OPERATOR_SCREEN);
        cairo_fill(mContext.get());
        cairo_set_operator(mContext.get(), CAIRO_OPERATOR_OVER);
    }

    void drawLine(std::span<const Point> places, double width, const Ink& ink) override {
        use(ink);
        trace(places);
        cairo_set_line_width(mContext.get(), width);
        cairo_stroke(mContext.get());
    }

    bool drawText(Point place, std::string_view label, const Lettering& lettering) override {
        use(lettering.ink);
        cairo_select_font_face(mContext.get(), "sans-serif", CAIRO_FONT_SLANT_NORMAL,
                               lettering.bold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
        cairo_set_font_size(mContext.get(), lettering.size);
        const std::string whole = text::printable(label);
        const std::string line = shortened(whole, lettering.longest);
        const double length = textWidth(line);
        switch (lettering.align) {
        case Lettering::Align::LEFT: break;
        case Lettering::Align::MIDDLE: place.x -= length / 2; break;
        case Lettering::Align::RIGHT: place.x -= length; break;
        }
        cairo_move_to(mContext.get(), place.x, place.y);
        cairo_show_text(mContext.get(), line.c_str());
        return hasLettersFor(whole);
    }

private:
    void use(const Ink& ink) { cairo_set_source_rgba(mContext.get(), ink.r, ink.g, ink.b, ink.opacity); }

    void trace(std::span<const Point> places) {
        cairo_new_path(mContext.get());
        for (const Point& place : places) {
            cairo_line_to(mContext.get(), place.x, place.y);
        }
    }

    double textWidth(const std::string& line) {
        cairo_text_extents_t extents{};
        cairo_text_extents(mContext.get(), line.c_str(), &extents);
        return extents.x_advance;
    }

    std::string shortened(std::string line, double longest) {
        if (textWidth(line) <= longest) {
            return line;
        }
        constexpr const char* ELLIPSIS = "\xE2\x80\xA6";
        while (!line.empty() && textWidth(line + ELLIPSIS) > longest) {
            line.resize(text::prefix(line, line.size() - 1).size());
        }
        return line + ELLIPSIS;
    }

    /// Glyph 0 of a font represents missing characters.
    bool hasLettersFor(const std::string& line) {
        cairo_glyph_t* glyphs = nullptr;
        int count = 0;
        if (cairo_scaled_font_text_to_glyphs(cairo_get_scaled_font(mContext.get()), 0.0, 0.0, line.c_str(), -1, &glyphs,
                                             &count, nullptr, nullptr, nullptr) != CAIRO_STATUS_SUCCESS) {
            return false;
        }
        bool all = line.empty() || count > 0;
        for (int i = 0; i < count; ++i) {
            all = all && glyphs[i].index != 0;
        }
        cairo_glyph_free(glyphs);
        return all;
    }

    std::unique_ptr<cairo_surface_t, Release> mSurface;
    std::unique_ptr<cairo_t, Release> mContext;
};

} // namespace

std::unique_ptr<Canvas> makeCanvas(std::uint32_t* pixels, int width, int height) {
    return std::make_unique<CairoCanvas>(pixels, width, height);
}

} // namespace zqx::app::drawing
