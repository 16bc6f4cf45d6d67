// Properties of the terminal; environment variables take precedence over what the system says.
#include "terminal/Terminal.h"

#include <charconv>
#include <cstdlib>
#include <string_view>

namespace zqx::app {

namespace {

constexpr TerminalSize UNKNOWN_SIZE{80, 24, 10, 20};

/// The value of an environment variable; empty if it is not set.
std::string_view variable(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

void overrule(unsigned& count, const char* name) {
    constexpr unsigned MOST = 10000;
    const std::string_view text = variable(name);
    unsigned value = 0;
    const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (failure == std::errc() && end == text.data() + text.size() && value > 0 && value <= MOST) {
        count = value;
    }
}

} // namespace

TerminalSize terminalSize(StandardStream stream) {
    TerminalSize size = windowSize(stream).value_or(UNKNOWN_SIZE);
    if (size.cellWidth == 0) {
        size.cellWidth = UNKNOWN_SIZE.cellWidth;
        size.cellHeight = UNKNOWN_SIZE.cellHeight;
    }
    overrule(size.columns, "COLUMNS");
    overrule(size.rows, "LINES");
    return size;
}

bool wantsColor() {
    return isTerminal(StandardStream::OUTPUT) && variable("NO_COLOR").empty() && variable("TERM") != "dumb";
}

} // namespace zqx::app
