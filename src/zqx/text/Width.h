// Text in columns: how wide terminals draw it, and filling, shortening and wrapping by that.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zqx::text {

/// Columns of a terminal that a character takes: 2 for East Asian scripts and pictograms, 0 for marks over others and
/// for joiners, 1 for all else (Unicode Standard Annex 11, in rough ranges).
std::size_t columnsOf(char32_t code);

/// Columns that a text takes which is shown in one line.
std::size_t displayWidth(std::string_view text);

enum class Align { LEFT, RIGHT };

/// The text filled up to so many columns; a wider one stays as it is.
std::string padded(std::string_view text, std::size_t columns, Align align = Align::LEFT, char filling = ' ');

/// The end of a text in at most so many columns, behind "..." where something is left out: files of one folder differ
/// at the end. Empty when there is no room for something worth reading.
std::string endOf(std::string_view text, std::size_t columns);

/// The words of a text in lines that end before a column, where words are not longer than that.
/// @param indent columns before each line: spaces on all but the first, which somebody else has begun
std::string wrapped(std::string_view text, std::size_t columns, std::size_t indent);

} // namespace zqx::text
