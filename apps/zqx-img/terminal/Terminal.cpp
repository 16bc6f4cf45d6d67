// What the system and the environment tell of the terminal.
#include "terminal/Terminal.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#if defined(_WIN32)
#include <io.h>
#include <windows.h>
#else
#include <sys/ioctl.h>
#include <unistd.h>
#endif

#include "zqx/pictures/files/Error.h"

namespace zqx::app {

using namespace pictures;

namespace {

constexpr TerminalSize UNKNOWN_SIZE{80, 24, 10, 20};

/// The value of a variable, empty where there is none.
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

#if defined(_WIN32)

TerminalSize askTerminal() {
    TerminalSize size = UNKNOWN_SIZE;
    CONSOLE_SCREEN_BUFFER_INFO info{};
    if (GetConsoleScreenBufferInfo(GetStdHandle(STD_OUTPUT_HANDLE), &info) != 0) {
        size.columns = static_cast<unsigned>(info.srWindow.Right - info.srWindow.Left + 1);
        size.rows = static_cast<unsigned>(info.srWindow.Bottom - info.srWindow.Top + 1);
    }
    return size;
}

#else

TerminalSize askTerminal() {
    TerminalSize size = UNKNOWN_SIZE;
    winsize window{};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &window) != 0 || window.ws_col == 0 || window.ws_row == 0) {
        return size;
    }
    size.columns = window.ws_col;
    size.rows = window.ws_row;
    if (window.ws_xpixel >= window.ws_col && window.ws_ypixel >= window.ws_row) {
        size.cellWidth = static_cast<unsigned>(window.ws_xpixel / window.ws_col);
        size.cellHeight = static_cast<unsigned>(window.ws_ypixel / window.ws_row);
    }
    return size;
}

#endif

} // namespace

bool isTerminal() {
#if defined(_WIN32)
    return _isatty(_fileno(stdout)) != 0;
#else
    return isatty(STDOUT_FILENO) != 0;
#endif
}

TerminalSize terminalSize() {
    TerminalSize size = askTerminal();
    overrule(size.columns, "COLUMNS");
    overrule(size.rows, "LINES");
    return size;
}

bool showsUnicode() {
#if defined(_WIN32)
    return GetConsoleOutputCP() == CP_UTF8;
#else
    // The first of these that says something decides, as for the C library.
    for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        if (std::string locale(variable(name)); !locale.empty()) {
            std::ranges::transform(locale, locale.begin(), [](unsigned char c) {
                return static_cast<char>(c >= 'A' && c <= 'Z' ? c + 32 : c);
            });
            return locale.find("utf-8") != std::string::npos || locale.find("utf8") != std::string::npos;
        }
    }
    return false;
#endif
}

bool wantsColor() {
    return isTerminal() && variable("NO_COLOR").empty() && variable("TERM") != "dumb";
}

std::string harmless(std::string text) {
    std::erase_if(text, [](unsigned char c) { return c < ' ' || c == 0x7F; });
    return text;
}

void print(const std::string& text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0) {
        throw Error("standard output", "could not be written");
    }
}

} // namespace zqx::app
