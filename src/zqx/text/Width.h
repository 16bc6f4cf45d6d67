// The display width of text in terminals, and padding, shortening and wrapping by that width.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zqx::text {

/// The number of terminal columns of a character: 2 for East Asian scripts and pictographs, 0 for combining marks and
/// joiners, 1 for all others (Unicode Standard Annex 11, simplified).
std::size_t getColumns(char32_t code);

/// The number of columns of a text in one line.
std::size_t displayWidth(std::string_view text);

enum class Align { LEFT, RIGHT };

/// The text padded to a number of columns; wider text is not changed.
std::string padded(std::string_view text, std::size_t columns, Align align = Align::LEFT, char filling = ' ');

/// The end of a text in at most a number of columns, after "..." if something is left out: the names of files in a
/// folder differ at the end. Empty if there is not enough room to be useful.
std::string getEnd(std::string_view text, std::size_t columns);

/// Wraps the words of a text into lines of at most a number of columns. Longer words are not broken.
/// @param indent of each line in columns, as spaces on all lines but the first, which the caller has begun
std::string wrapped(std::string_view text, std::size_t columns, std::size_t indent);

} // namespace zqx::text
