// A piece of work that the library and a peer both do, and the lists of all that are measured.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace bench {

/// Both sides of one row. What they need is allocated, and its pages touched, before they are timed.
struct Work {
    std::function<void()> ours;
    std::function<void()> peer;
    /// Pixels of one call of each side. They differ where the cost per pixel is compared, not the time.
    std::size_t pixels = 0;
    std::size_t peerPixels = 0;
    /// Bytes that the library must read and write at least. A plain copy of as many is the limit of the machine.
    std::size_t bytes = 0;
    /// Calls in a row that are timed together, for work too short for the clock.
    int calls = 1;
    int peerCalls = 1;
};

/// One row of the table: made only when it is its turn, so that the pictures of one row are in memory at a time.
struct WorkEntry {
    std::string name;
    std::string peerName;
    /// How many times faster than the peer the library has to be; 0 where nothing is asked.
    double requiredRatio = 0.0;
    /// At most so many times as long as the copy; 0 where nothing is asked.
    double copyLimit = 0.0;
    std::function<Work()> make;
};

/// Size of the large pictures, and threads for everybody.
struct Conditions {
    std::size_t width = 6000;
    std::size_t height = 4000;
    int threads = 2;

    std::size_t pixels() const { return width * height; }
};

std::vector<WorkEntry> conversionWorks(const Conditions& conditions);
std::vector<WorkEntry> gradingWorks(const Conditions& conditions);
std::vector<WorkEntry> filterWorks(const Conditions& conditions);
std::vector<WorkEntry> turnWorks(const Conditions& conditions);
std::vector<WorkEntry> tableWorks(const Conditions& conditions);
std::vector<WorkEntry> pipelineWorks(const Conditions& conditions);

} // namespace bench
