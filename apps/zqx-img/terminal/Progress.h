// The progress line of a run, at the bottom of the terminal.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace zqx::app {

struct ProgressState {
    std::size_t done = 0;
    std::size_t total = 0;
    double seconds = 0.0; ///< since work began
    std::string current;  ///< the file that was started last
};

/// "[####----] 57/200  16.1 pictures/s  0:09 left  file.jpg" in at most the given number of columns.
/// @param unicode whether to draw with block characters, and to show names as they are instead of with question marks
std::string progressLine(const ProgressState& state, std::size_t columns, bool unicode);

/// Draws the line on standard error if that is a terminal.
class Progress {
public:
    /// @param wanted false to suppress the line; it is never shown in pipes, on dumb terminals or in the background
    explicit Progress(bool wanted);

    bool isShown() const { return mShown; }

    /// Draws the line, unless it was drawn just before.
    void update(const ProgressState& state);

    /// Removes the line, so that something else can be printed.
    void clear();

private:
    bool mShown;
    bool mUnicode;
    bool mDrawn = false;
    std::chrono::steady_clock::time_point mLast;
};

} // namespace zqx::app
