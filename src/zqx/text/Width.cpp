// Columns are counted per character, which is good enough for names and labels.
#include "zqx/text/Width.h"

#include <algorithm>
#include <sstream>

#include "zqx/text/Utf8.h"

namespace zqx::text {

std::size_t getColumns(char32_t code) {
    struct Range {
        char32_t first;
        char32_t last;
    };
    static constexpr Range WIDE[] = {{0x1100, 0x115F}, {0x2E80, 0xA4CF},   {0xAC00, 0xD7A3},
                                     {0xF900, 0xFAFF}, {0xFE30, 0xFE6F},   {0xFF00, 0xFF60},
                                     {0xFFE0, 0xFFE6}, {0x1F300, 0x1FAFF}, {0x20000, 0x3FFFD}};
    static constexpr Range NONE[] = {{0x300, 0x36F}, {0x200B, 0x200F}, {0xFE00, 0xFE0F}};
    const auto holds = [code](const Range& range) { return code >= range.first && code <= range.last; };
    if (std::ranges::any_of(NONE, holds)) {
        return 0;
    }
    return std::ranges::any_of(WIDE, holds) ? 2 : 1;
}

std::size_t displayWidth(std::string_view text) {
    std::size_t width = 0;
    while (!text.empty()) {
        width += getColumns(takeCharacter(text).code);
    }
    return width;
}

std::string padded(std::string_view text, std::size_t columns, Align align, char filling) {
    std::string result(text);
    const std::size_t width = displayWidth(text);
    result.insert(align == Align::LEFT ? result.size() : 0, width < columns ? columns - width : 0, filling);
    return result;
}

std::string getEnd(std::string_view text, std::size_t columns) {
    constexpr std::string_view ELLIPSIS = "...";
    constexpr std::size_t LEAST = 8;
    std::size_t width = displayWidth(text);
    if (width <= columns) {
        return std::string(text);
    }
    if (columns < LEAST) {
        return {};
    }
    while (width + ELLIPSIS.size() > columns) {
        width -= getColumns(takeCharacter(text).code);
    }
    while (!text.empty()) { // a combining mark would be drawn over the dots
        std::string_view rest = text;
        if (getColumns(takeCharacter(rest).code) > 0) {
            break;
        }
        text = rest;
    }
    return std::string(ELLIPSIS).append(text);
}

std::string wrapped(std::string_view text, std::size_t columns, std::size_t indent) {
    std::string result;
    std::size_t column = indent;
    std::istringstream words{std::string(text)};
    for (std::string word; words >> word;) {
        const std::size_t width = displayWidth(word);
        if (column > indent && column + 1 + width > columns) {
            result.append(1, '\n').append(indent, ' ');
            column = indent;
        } else if (column > indent) {
            result += ' ';
            ++column;
        }
        result += word;
        column += width;
    }
    return result;
}

} // namespace zqx::text
