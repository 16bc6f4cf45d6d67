// The line at the foot of the terminal that shows how far a run of many pictures is.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace zqx::app {

struct ProgressState {
    std::size_t done = 0;
    std::size_t total = 0;
    double seconds = 0.0; ///< since work began
    std::string current;  ///< the file that was begun last
};

/// "[####----] 57/200  16.1 pictures/s  0:09 left  file.jpg" in exactly as many columns as given, or fewer.
/// @param unicode draws with block characters, and shows names as they are instead of with question marks
std::string progressLine(const ProgressState& state, std::size_t columns, bool unicode);

/// Draws the line on standard error, where somebody sees it.
class Progress {
public:
    /// @param wanted still does not show it on a pipe, on a terminal that cannot go back, or in the background
    explicit Progress(bool wanted);

    bool isShown() const { return mShown; }

    /// Draws, unless it did so just now.
    void update(const ProgressState& state);

    /// Takes the line away, for something else to be printed or for good.
    void clear();

private:
    bool mShown;
    bool mUnicode;
    bool mDrawn = false;
    std::chrono::steady_clock::time_point mLast;
};

} // namespace zqx::app
