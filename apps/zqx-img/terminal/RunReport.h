// Reports the progress and the results of a run, to people on standard error and to programs on standard output.
#pragma once

#include <chrono>
#include <mutex>
#include <string>

#include <zqx/tools/BatchObserver.h>

#include "terminal/Progress.h"

namespace zqx::app {

struct ReportOptions {
    bool quiet = false;
    bool verbose = false;
    bool json = false;
    bool dryRun = false;
};

/// Counts and reports results. Thread-safe.
class RunReport : public tools::BatchObserver {
public:
    /// @param pictures number of pictures in the run; a single one gets no summary
    /// @param unreadable files left out of the run
    RunReport(const ReportOptions& options, std::size_t pictures, const tools::ExtensionCounts& unreadable);

    /// Prints a line if --verbose is given.
    void note(const std::string& line);
    void begin(const std::string& input) override;
    void warning(const std::string& line) override;
    void finish(const tools::PictureRecord& record) override;

    /// Updates the progress line.
    void tick() override;

    /// Prints the summary of a finished run.
    void conclude();
    /// Prints the summary of an interrupted run. May be called while other threads are still working.
    void concludeInterrupted();

    tools::RunTotals totals() const;

    /// False after a failure to write to standard output.
    bool isHeard() const override;

private:
    double seconds() const;
    void print(const std::string& line);
    void printRecord(const std::string& line);
    void printForPeople(const tools::PictureRecord& record);
    ProgressState state() const;

    mutable std::mutex mMutex;
    const ReportOptions mOptions;
    const std::size_t mPictures;
    const std::chrono::steady_clock::time_point mStart = std::chrono::steady_clock::now();
    Progress mProgress;
    tools::RunTotals mTotals;
    std::string mCurrent;
    bool mHeard = true;
};

} // namespace zqx::app
