// One lock protects all output, so that lines of several threads do not mix with each other or with the progress line.
#include "terminal/RunReport.h"

#include "terminal/Output.h"
#include "terminal/System.h"
#include "zqx/pictures/files/LockWithin.h"
#include "zqx/text/Cleaning.h"

namespace zqx::app {

using namespace pictures;
using namespace tools;

namespace {

using Status = PictureRecord::Status;

/// On a terminal, JSON records and the progress line would overwrite each other.
bool wantsProgress(const ReportOptions& options, std::size_t pictures) {
    return pictures > 1 && !options.quiet && !options.dryRun && !(options.json && isTerminal(StandardStream::OUTPUT));
}

} // namespace

RunReport::RunReport(const ReportOptions& options, std::size_t pictures, const ExtensionCounts& unreadable)
    : mOptions(options), mPictures(pictures), mProgress(wantsProgress(options, pictures)) {
    mTotals.unreadable = unreadable;
}

void RunReport::note(const std::string& line) {
    const std::lock_guard lock(mMutex);
    if (mOptions.verbose) {
        print(line);
    }
}

void RunReport::begin(const std::string& input) {
    const std::lock_guard lock(mMutex);
    mCurrent = input;
}

void RunReport::warning(const std::string& line) {
    const std::lock_guard lock(mMutex);
    if (!mOptions.quiet && !mOptions.json) {
        print("zqx-img: warning: " + line);
    }
}

void RunReport::finish(const PictureRecord& record) {
    const std::lock_guard lock(mMutex);
    mTotals.count(record.status);
    if (record.status == Status::FAILED) {
        print("zqx-img: " + record.reason);
    }
    if (mOptions.json) {
        printRecord(toJson(record));
    } else {
        printForPeople(record);
    }
    if (mOptions.verbose && record.status == Status::WRITTEN) {
        print(record.input + " -> " + record.output + ": " + describe(record.result));
    }
    mProgress.update(state());
}

void RunReport::printForPeople(const PictureRecord& record) {
    const bool skipped = record.status == Status::SKIPPED;
    if (mOptions.dryRun && record.status != Status::FAILED) {
        const std::string remark = skipped ? "skipped: " + record.reason : record.reason;
        printRecord(
            text::printable(record.input + " -> " + record.output + (remark.empty() ? "" : " (" + remark + ")")));
    } else if (skipped && (mOptions.verbose || (mPictures == 1 && !mOptions.quiet))) {
        print(record.input + " -> " + record.output + ": skipped: " + record.reason);
    }
}

void RunReport::tick() {
    const std::lock_guard lock(mMutex);
    mProgress.update(state());
}

void RunReport::conclude() {
    const std::lock_guard lock(mMutex);
    mProgress.clear();
    if (!mTotals.unreadable.empty() && !mOptions.quiet && !mOptions.json) {
        print(describeUnreadable(mTotals.unreadable));
    }
    if (mOptions.json) {
        printRecord(toJson(mTotals, seconds(), false));
    } else if (mPictures > 1 && !mOptions.quiet && !mOptions.dryRun) {
        print(describe(mTotals, seconds()));
    }
}

void RunReport::concludeInterrupted() {
    constexpr std::chrono::milliseconds PATIENCE(500); // another thread may be blocked by a full pipe
    const std::unique_lock lock = lockWithin(mMutex, PATIENCE);
    if (!lock) {
        return;
    }
    mProgress.clear();
    if (mOptions.json) {
        printRecord(toJson(mTotals, seconds(), true));
    }
    if (mPictures > 1 && !mOptions.quiet && !mOptions.dryRun) {
        print("interrupted, " + std::to_string(mTotals.all()) + " of " + std::to_string(mPictures) +
              " pictures done; --update continues from here");
    }
}

RunTotals RunReport::totals() const {
    const std::lock_guard lock(mMutex);
    return mTotals;
}

bool RunReport::isHeard() const {
    const std::lock_guard lock(mMutex);
    return mHeard;
}

double RunReport::seconds() const {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - mStart).count();
}

void RunReport::print(const std::string& line) {
    mProgress.clear();
    writeErrorLine(line);
}

/// Writes a line to standard output, unbuffered: what is left in a buffer would be lost at an interruption.
void RunReport::printRecord(const std::string& line) {
    if (isTerminal(StandardStream::OUTPUT)) {
        mProgress.clear();
    }
    mHeard = mHeard && writeOutput(line + "\n");
}

ProgressState RunReport::state() const {
    // Skipped pictures take no time, and would distort the estimate of the time left.
    return {mTotals.written + mTotals.failed, mPictures - mTotals.skipped, seconds(), mCurrent};
}

} // namespace zqx::app
