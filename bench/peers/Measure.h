// Times both sides of a work by turns, and a plain copy of the same bytes with them.
#pragma once

#include <string>
#include <vector>

#include "peers/Work.h"

namespace bench {

/// The best of all repetitions, in seconds per call.
struct Timing {
    double elapsed = 0.0;
    /// What all threads together spent. On a busy machine the elapsed time also says how long threads had to wait for a
    /// core; this does not. It tells how many threads a peer makes use of, too.
    double cpu = 0.0;
};

struct Measurement {
    Timing ours;
    Timing peer;
    Timing copy;
    /// Ours on each of the forced instruction sets, in the order they were given.
    std::vector<Timing> forced;
};

/// Everybody takes turns in every repetition, so that a machine that gets slower or is interrupted does so for all.
Measurement measure(const Work& work, int repetitions, const std::vector<std::string>& simdTargets);

} // namespace bench
