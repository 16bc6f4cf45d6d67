// A histogram drawn with characters.
#pragma once

#include <string>

#include <zqx/tools/Histogram.h>

namespace zqx::app {

struct TextStyle {
    std::size_t columns = 80; ///< of the terminal
    bool unicode = false;     ///< block characters; plain ASCII otherwise
    bool color = false;       ///< with escape sequences for colours
};

/// Draws a histogram as text, from the title to the shares of clipped values. @param title usually the file name
std::string drawAsText(const tools::Histogram& histogram, const std::string& title, const TextStyle& style);

} // namespace zqx::app
