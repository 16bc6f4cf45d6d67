// The progress line, and what has to be known of a terminal to draw it.
#include "terminal/Progress.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <vector>

#if defined(_WIN32)
#define NOMINMAX
#include <io.h>
#include <windows.h>
#else
#include <sys/ioctl.h>
#include <unistd.h>
#endif

namespace zqx::app {

namespace {

#if defined(_WIN32)

bool isTerminal() {
    return _isatty(_fileno(stderr)) != 0;
}
bool isInForeground() {
    return true;
}
std::size_t terminalColumns() {
    CONSOLE_SCREEN_BUFFER_INFO info;
    const bool known = GetConsoleScreenBufferInfo(GetStdHandle(STD_ERROR_HANDLE), &info) != 0;
    return known ? static_cast<std::size_t>(info.srWindow.Right - info.srWindow.Left + 1) : 80;
}
bool understandsEscapes() {
    DWORD mode = 0;
    const HANDLE console = GetStdHandle(STD_ERROR_HANDLE);
    return GetConsoleMode(console, &mode) && SetConsoleMode(console, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}
bool takesUnicode() {
    return GetConsoleOutputCP() == CP_UTF8;
}

#else

bool isTerminal() {
    return isatty(STDERR_FILENO) != 0;
}

/// A job in the background would write over what its user does meanwhile.
bool isInForeground() {
    return tcgetpgrp(STDERR_FILENO) == getpgrp();
}

std::size_t terminalColumns() {
    winsize size{};
    return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

bool understandsEscapes() {
    const char* const kind = std::getenv("TERM");
    return kind != nullptr && *kind != '\0' && std::string_view(kind) != "dumb";
}

bool takesUnicode() {
    for (const char* const variable : {"LC_ALL", "LC_CTYPE", "LANG"}) { // the first that is set decides
        const char* const value = std::getenv(variable);
        if (value != nullptr && *value != '\0') {
            const std::string_view locale(value);
            return locale.find("UTF-8") != std::string_view::npos || locale.find("utf8") != std::string_view::npos;
        }
    }
    return false;
}

#endif

struct Character {
    std::string_view bytes; // empty where they are no UTF-8
    std::size_t columns;
};

/// How wide terminals draw a character: East Asian scripts and pictograms take two places, accents none (Unicode
/// Standard Annex 11, in rough ranges).
std::size_t columnsOf(std::uint32_t code) {
    struct Range {
        std::uint32_t first;
        std::uint32_t last;
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

/// Takes the first character off a text.
Character takeCharacter(std::string_view& text) {
    const auto first = static_cast<unsigned char>(text.front());
    const std::size_t length = first < 0x80 ? 1 : first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    std::uint32_t code = length == 1 ? first : first & (0xFFU >> (length + 1));
    bool valid =
        first >= ' ' && first != 0x7F && (first < 0x80 || (first >= 0xC2 && first < 0xF5)) && length <= text.size();
    for (std::size_t i = 1; i < length && valid; ++i) {
        const auto next = static_cast<unsigned char>(text[i]);
        valid = (next & 0xC0U) == 0x80;
        code = code << 6 | (next & 0x3FU);
    }
    valid = valid && (code < 0x80 || code >= 0xA0); // the controls above ASCII
    const Character character =
        valid ? Character{text.substr(0, length), columnsOf(code)} : Character{std::string_view(), 1};
    text.remove_prefix(valid ? length : 1);
    return character;
}

/// The end of a name, where files of one folder differ, in so many columns.
std::string endOf(std::string_view name, std::size_t columns, bool unicode) {
    std::vector<Character> characters;
    std::size_t width = 0;
    while (!name.empty()) {
        Character character = takeCharacter(name);
        if (character.bytes.empty() || (!unicode && character.bytes.size() > 1)) {
            character = {"?", 1};
        }
        characters.push_back(character);
        width += character.columns;
    }
    auto first = characters.begin();
    if (width > columns) {
        if (columns < 8) {
            return {};
        }
        for (; width + 3 > columns; ++first) {
            width -= first->columns;
        }
    }
    std::string result = first == characters.begin() ? "" : "...";
    for (; first != characters.end(); ++first) {
        result += first->bytes;
    }
    return result;
}

std::string formatTime(double seconds) {
    const auto whole = static_cast<unsigned long long>(std::ceil(std::min(seconds, 1e9)));
    char text[48];
    if (whole >= 3600) {
        std::snprintf(text, sizeof text, "%llu:%02llu:%02llu", whole / 3600, whole / 60 % 60, whole % 60);
    } else {
        std::snprintf(text, sizeof text, "%llu:%02llu", whole / 60, whole % 60);
    }
    return text;
}

std::string formatRate(double perSecond) {
    char text[48];
    // Slow work is better told by the time that one picture takes.
    const bool slow = perSecond < 1.0;
    std::snprintf(text, sizeof text, slow ? "%.1f s each" : "%.1f pictures/s", slow ? 1.0 / perSecond : perSecond);
    return text;
}

std::string bar(std::size_t done, std::size_t total, std::size_t width, bool unicode) {
    const std::size_t filled = total == 0 ? 0 : done * width / total;
    std::string result = unicode ? "" : "[";
    for (std::size_t i = 0; i < width; ++i) {
        result += i < filled ? (unicode ? "█" : "#") : (unicode ? "░" : "-");
    }
    return unicode ? result : result + "]";
}

} // namespace

std::string progressLine(const ProgressState& state, std::size_t columns, bool unicode) {
    std::string figures = std::to_string(state.done) + "/" + std::to_string(state.total);
    constexpr double SHORTEST_EXPERIENCE = 1.0; // before, the figures only flicker
    if (state.done > 0 && state.seconds >= SHORTEST_EXPERIENCE) {
        const double rate = static_cast<double>(state.done) / state.seconds;
        figures += "  " + formatRate(rate) + "  " +
                   formatTime(static_cast<double>(state.total - std::min(state.done, state.total)) / rate) + " left";
    }
    if (figures.size() > columns) {
        return figures.substr(0, columns);
    }
    std::size_t room = columns - figures.size();
    constexpr std::size_t WIDEST_BAR = 24;
    constexpr std::size_t NARROWEST_BAR = 6;
    const std::size_t frame = unicode ? 1 : 3; // the space behind it, and the brackets
    std::string line;
    if (room >= NARROWEST_BAR + frame) {
        const std::size_t width = std::clamp(room / 3, NARROWEST_BAR, WIDEST_BAR);
        line = bar(state.done, state.total, width, unicode) + " ";
        room -= width + frame;
    }
    line += figures;
    const std::string name = room > 2 ? endOf(state.current, room - 2, unicode) : "";
    return name.empty() ? line : line + "  " + name;
}

Progress::Progress(bool wanted)
    : mShown(wanted && isTerminal() && understandsEscapes()), mUnicode(mShown && takesUnicode()) {
}

void Progress::update(const ProgressState& state) {
    constexpr std::chrono::milliseconds SHORTEST_PAUSE(100);
    const auto now = std::chrono::steady_clock::now();
    if (!mShown || (mDrawn && now - mLast < SHORTEST_PAUSE) || !isInForeground()) {
        return;
    }
    // One write for the whole line: nobody sees a half. The last column stays free, where some terminals break lines.
    std::string text("\r");
    text += progressLine(state, terminalColumns() - 1, mUnicode) + "\x1b[K";
    std::fwrite(text.data(), 1, text.size(), stderr);
    std::fflush(stderr);
    mDrawn = true;
    mLast = now;
}

void Progress::clear() {
    if (mDrawn) {
        std::fputs("\r\x1b[K", stderr);
        std::fflush(stderr);
        mDrawn = false;
    }
}

} // namespace zqx::app
