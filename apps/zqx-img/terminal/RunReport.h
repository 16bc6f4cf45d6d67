// What a run tells while it goes on and at its end: to people on standard error, to programs on standard output.
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

/// Collects what becomes of the pictures. All methods may be called by several threads.
class RunReport : public tools::BatchObserver {
public:
    /// @param pictures in the run; one alone is done without a word
    /// @param unreadable files that are no part of it
    RunReport(const ReportOptions& options, std::size_t pictures, const tools::ExtensionCounts& unreadable);

    /// Something for those who want to know everything.
    void note(const std::string& line);
    void begin(const std::string& input) override;
    void warning(const std::string& line) override;
    void finish(const tools::PictureRecord& record) override;

    /// Brings the progress line up to date.
    void tick() override;

    /// The last line of a run that came to its end.
    void conclude();
    /// The last line of one that did not. Called while others go on.
    void concludeInterrupted();

    tools::RunTotals totals() const;

    /// False once standard output takes no more: nobody is left to work for.
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
