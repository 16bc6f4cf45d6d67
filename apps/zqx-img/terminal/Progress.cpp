// The progress line.
#include "terminal/Progress.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "terminal/Terminal.h"
#include "zqx/text/Cleaning.h"
#include "zqx/text/Numbers.h"
#include "zqx/text/Width.h"

namespace zqx::app {

namespace {

std::string twoDigits(unsigned long long number) {
    return text::padded(std::to_string(number), 2, text::Align::RIGHT, '0');
}

/// "1:02:03", or "2:03" below an hour.
std::string formatTime(double seconds) {
    const auto whole = static_cast<unsigned long long>(std::ceil(std::min(seconds, 1e9)));
    const unsigned long long minutes = whole / 60;
    return (minutes >= 60 ? std::to_string(minutes / 60) + ":" + twoDigits(minutes % 60) : std::to_string(minutes)) +
           ":" + twoDigits(whole % 60);
}

/// Below one picture per second, the time for each picture is more informative.
std::string formatRate(double perSecond) {
    return perSecond < 1.0 ? text::fixed(1.0 / perSecond, 1) + " s each" : text::fixed(perSecond, 1) + " pictures/s";
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
    constexpr double SHORTEST_EXPERIENCE = 1.0; // in seconds; earlier estimates fluctuate too much
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
    const std::size_t frame = unicode ? 1 : 3; // a space after the bar, and the brackets
    std::string line;
    if (room >= NARROWEST_BAR + frame) {
        const std::size_t width = std::clamp(room / 3, NARROWEST_BAR, WIDEST_BAR);
        line = bar(state.done, state.total, width, unicode) + " ";
        room -= width + frame;
    }
    line += figures;
    const text::Charset charset = unicode ? text::Charset::UNICODE : text::Charset::ASCII;
    const std::string name = room > 2 ? text::getEnd(text::printable(state.current, charset), room - 2) : "";
    return name.empty() ? line : line + "  " + name;
}

Progress::Progress(bool wanted)
    : mShown(wanted && isTerminal(StandardStream::ERRORS) && obeysEscapes(StandardStream::ERRORS)),
      mUnicode(mShown && showsUnicode()) {
}

void Progress::update(const ProgressState& state) {
    constexpr std::chrono::milliseconds SHORTEST_PAUSE(100);
    const auto now = std::chrono::steady_clock::now();
    if (!mShown || (mDrawn && now - mLast < SHORTEST_PAUSE) || !isInForeground()) {
        return;
    }
    // The line is written at once, so that it never appears in parts. The last column, at which some terminals wrap,
    // stays free.
    std::string text("\r");
    text += progressLine(state, terminalSize(StandardStream::ERRORS).columns - 1, mUnicode) + "\x1b[K";
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
