// Pictures for terminals, encoded by Chafa, which knows the protocols and the terminals that support them.
#include "drawing/module/ChafaPicture.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include <chafa.h>

namespace zqx::app::drawing {

namespace {

struct Release {
    void operator()(ChafaTermInfo* info) const { chafa_term_info_unref(info); }
    void operator()(ChafaSymbolMap* map) const { chafa_symbol_map_unref(map); }
    void operator()(ChafaCanvasConfig* config) const { chafa_canvas_config_unref(config); }
    void operator()(ChafaCanvas* canvas) const { chafa_canvas_unref(canvas); }
    void operator()(GString* text) const { g_string_free(text, TRUE); }
    void operator()(gchar** strings) const { g_strfreev(strings); }
};
template <typename T>
using Owned = std::unique_ptr<T, Release>;

/// Detects the terminal from the environment.
Owned<ChafaTermInfo> detectTerminal() {
    const Owned<gchar*> environment(g_get_environ());
    return Owned<ChafaTermInfo>(chafa_term_db_detect(chafa_term_db_get_default(), environment.get()));
}

bool knows(const Owned<ChafaTermInfo>& terminal, ChafaTermSeq sequence) {
    return chafa_term_info_have_seq(terminal.get(), sequence) != 0;
}

ChafaPixelMode bestMode(const Owned<ChafaTermInfo>& terminal) {
    if (knows(terminal, CHAFA_TERM_SEQ_BEGIN_KITTY_IMMEDIATE_IMAGE_V1)) {
        return CHAFA_PIXEL_MODE_KITTY;
    }
    if (knows(terminal, CHAFA_TERM_SEQ_BEGIN_ITERM2_IMAGE)) {
        return CHAFA_PIXEL_MODE_ITERM2;
    }
    return knows(terminal, CHAFA_TERM_SEQ_BEGIN_SIXELS) ? CHAFA_PIXEL_MODE_SIXELS : CHAFA_PIXEL_MODE_SYMBOLS;
}

ChafaPixelMode pixelMode(TerminalProtocol protocol, const Owned<ChafaTermInfo>& terminal) {
    switch (protocol) {
    case TerminalProtocol::KITTY: return CHAFA_PIXEL_MODE_KITTY;
    case TerminalProtocol::ITERM: return CHAFA_PIXEL_MODE_ITERM2;
    case TerminalProtocol::SIXEL: return CHAFA_PIXEL_MODE_SIXELS;
    case TerminalProtocol::SYMBOLS: return CHAFA_PIXEL_MODE_SYMBOLS;
    case TerminalProtocol::BEST: break;
    }
    return bestMode(terminal);
}

ChafaCanvasMode canvasMode(const Owned<ChafaTermInfo>& terminal) {
    if (knows(terminal, CHAFA_TERM_SEQ_SET_COLOR_FGBG_DIRECT)) {
        return CHAFA_CANVAS_MODE_TRUECOLOR;
    }
    if (knows(terminal, CHAFA_TERM_SEQ_SET_COLOR_FGBG_256)) {
        return CHAFA_CANVAS_MODE_INDEXED_240; // users may redefine the first 16 colours
    }
    return knows(terminal, CHAFA_TERM_SEQ_SET_COLOR_FGBG_16) ? CHAFA_CANVAS_MODE_INDEXED_16 : CHAFA_CANVAS_MODE_FGBG;
}

/// A picture padded with transparent pixels to whole cells, so that its aspect ratio is kept.
struct Padded {
    int columns;
    int rows;
    unsigned width;
    unsigned height;
    std::vector<unsigned char> rgba;
};

/// Pads a picture to the number of cells that its pixels cover, but no more than the terminal has.
Padded padded(const TerminalPicture& picture) {
    const TerminalSize& terminal = picture.terminal;
    const double columns = static_cast<double>(picture.width) / terminal.cellWidth;
    const double rows = static_cast<double>(picture.height) / terminal.cellHeight;
    const double mostRows = std::max(terminal.rows, 2U) - 1.0; // one row is left for the prompt
    const double scale = std::min({1.0, terminal.columns / columns, mostRows / rows});
    constexpr double SLACK = 1e-6; // tolerance for rounding errors
    Padded result{};
    result.columns = std::max(1, static_cast<int>(std::ceil(columns * scale - SLACK)));
    result.rows = std::max(1, static_cast<int>(std::ceil(rows * scale - SLACK)));
    const auto pixels = [scale](int cells, unsigned cell, unsigned least) {
        return std::max(least, static_cast<unsigned>(std::lround(cells * static_cast<double>(cell) / scale)));
    };
    result.width = pixels(result.columns, terminal.cellWidth, picture.width);
    result.height = pixels(result.rows, terminal.cellHeight, picture.height);
    result.rgba.resize(std::size_t{4} * result.width * result.height);
    for (unsigned y = 0; y < picture.height; ++y) {
        std::copy_n(picture.rgba + std::size_t{4} * picture.width * y, std::size_t{4} * picture.width,
                    result.rgba.begin() + static_cast<std::ptrdiff_t>(std::size_t{4} * result.width * y));
    }
    return result;
}

Owned<ChafaCanvas> makeCanvas(const TerminalPicture& picture, const Padded& pixels, ChafaPixelMode mode,
                              ChafaCanvasMode colors) {
    const Owned<ChafaSymbolMap> symbols(chafa_symbol_map_new());
    chafa_symbol_map_add_by_tags(
        symbols.get(), picture.unicode ? static_cast<ChafaSymbolTags>(CHAFA_SYMBOL_TAG_SPACE | CHAFA_SYMBOL_TAG_BLOCK)
                                       : CHAFA_SYMBOL_TAG_ASCII);
    const Owned<ChafaCanvasConfig> config(chafa_canvas_config_new());
    chafa_canvas_config_set_geometry(config.get(), pixels.columns, pixels.rows);
    chafa_canvas_config_set_cell_geometry(config.get(), static_cast<gint>(picture.terminal.cellWidth),
                                          static_cast<gint>(picture.terminal.cellHeight));
    chafa_canvas_config_set_pixel_mode(config.get(), mode);
    chafa_canvas_config_set_canvas_mode(config.get(), colors);
    chafa_canvas_config_set_symbol_map(config.get(), symbols.get());
    return Owned<ChafaCanvas>(chafa_canvas_new(config.get()));
}

} // namespace

std::string encodeForTerminal(const TerminalPicture& picture) {
    const Owned<ChafaTermInfo> terminal = detectTerminal();
    const ChafaPixelMode mode = pixelMode(picture.protocol, terminal);
    const ChafaCanvasMode colors =
        mode == CHAFA_PIXEL_MODE_SYMBOLS ? canvasMode(terminal) : CHAFA_CANVAS_MODE_TRUECOLOR;
    // Adds the escape sequences of a protocol that the user chose although the terminal is not known to support it.
    const Owned<ChafaTermInfo> all(chafa_term_db_get_fallback_info(chafa_term_db_get_default()));
    chafa_term_info_supplement(terminal.get(), all.get());
    const Padded pixels = padded(picture);
    const Owned<ChafaCanvas> canvas = makeCanvas(picture, pixels, mode, colors);
    chafa_canvas_draw_all_pixels(canvas.get(), CHAFA_PIXEL_RGBA8_UNASSOCIATED, pixels.rgba.data(),
                                 static_cast<gint>(pixels.width), static_cast<gint>(pixels.height),
                                 static_cast<gint>(4 * pixels.width));
    const Owned<GString> text(chafa_canvas_print(canvas.get(), terminal.get()));
    return std::string(text->str, text->len) + "\n";
}

} // namespace zqx::app::drawing
