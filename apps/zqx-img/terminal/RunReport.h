// Reports the progress and the result of a run: to people on standard error, to programs on standard output.
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
    /// @param pictures in the run; a single one gets no summary
    /// @param unreadable files that are no part of it
    RunReport(const ReportOptions& options, std::size_t pictures, const tools::ExtensionCounts& unreadable);

    /// A line that only --verbose prints.
    void note(const std::string& line);
    void begin(const std::string& input) override;
    void warning(const std::string& line) override;
    void finish(const tools::PictureRecord& record) override;

    /// Brings the progress line up to date.
    void tick() override;

    /// Prints the summary of a finished run.
    void conclude();
    /// Prints the summary of an interrupted run. Called while other threads still work.
    void concludeInterrupted();

    tools::RunTotals totals() const;

    /// False once standard output could not be written.
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
