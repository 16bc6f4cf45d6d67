// See Measure.h.
#include "peers/Measure.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <ctime>
#include <limits>
#include <thread>

#include <omp.h>

#include "common/SimdTarget.h"

namespace bench {

namespace {

using Clock = std::chrono::steady_clock;

/// Threads of the one before may still spin and wait for more work; they must not take the cores from the next.
void letThreadsSleep() {
    std::this_thread::sleep_for(std::chrono::milliseconds(25));
}

double cpuSeconds() {
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

Timing timePerCall(const std::function<void()>& work, int calls) {
    letThreadsSleep();
    const double cpuStart = cpuSeconds();
    const Clock::time_point start = Clock::now();
    for (int call = 0; call < calls; ++call) {
        work();
    }
    const std::chrono::duration<double> elapsed = Clock::now() - start;
    return {elapsed.count() / calls, (cpuSeconds() - cpuStart) / calls};
}

/// Reads half of the bytes and writes the other half, each thread its own stretch.
class ParallelCopy {
public:
    explicit ParallelCopy(std::size_t bytesMoved) : mSource(bytesMoved / 2, 'a'), mTarget(bytesMoved / 2, 'b') {}

    void run() {
        const auto pieces = static_cast<std::int64_t>(omp_get_max_threads());
        const std::size_t size = mSource.size();
#pragma omp parallel for schedule(static)
        for (std::int64_t piece = 0; piece < pieces; ++piece) {
            const auto i = static_cast<std::size_t>(piece);
            const auto n = static_cast<std::size_t>(pieces);
            const std::size_t first = i * size / n;
            std::memcpy(mTarget.data() + first, mSource.data() + first, (i + 1) * size / n - first);
        }
    }

private:
    std::vector<char> mSource;
    std::vector<char> mTarget;
};

void keepBest(Timing& best, const Timing& timing) {
    best.elapsed = std::min(best.elapsed, timing.elapsed);
    best.cpu = std::min(best.cpu, timing.cpu);
}

} // namespace

Measurement measure(const Work& work, int repetitions, const std::vector<std::string>& simdTargets) {
    constexpr double INFINITE = std::numeric_limits<double>::infinity();
    constexpr Timing NEVER{INFINITE, INFINITE};
    ParallelCopy copy(work.bytes);
    Measurement best{NEVER, NEVER, NEVER, std::vector<Timing>(simdTargets.size(), NEVER)};
    work.ours(); // the first call fetches pages and starts threads
    work.peer();
    copy.run();
    for (int repetition = 0; repetition < repetitions; ++repetition) {
        keepBest(best.ours, timePerCall(work.ours, work.calls));
        keepBest(best.peer, timePerCall(work.peer, work.peerCalls));
        keepBest(best.copy, timePerCall([&] { copy.run(); }, work.calls));
        for (std::size_t i = 0; i < simdTargets.size(); ++i) {
            forceSimdTarget(simdTargets[i]);
            keepBest(best.forced[i], timePerCall(work.ours, work.calls));
        }
        forceSimdTarget("");
    }
    return best;
}

} // namespace bench
