// Worker threads take pictures from the plan in order; the calling thread meanwhile calls the observer's tick().
#include <zqx/tools/Batch.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <memory>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

#include <zqx/img/Runtime.h>

#include "zqx/pictures/codecs/PictureFile.h"
#include "zqx/pictures/files/Error.h"
#include "zqx/pictures/files/FileNames.h"
#include "zqx/pictures/files/InputFile.h"
#include "zqx/pictures/files/OutputFile.h"
#include "zqx/tools/batch/Failure.h"
#include "zqx/tools/batch/OpenPicture.h"

namespace zqx::tools {

using namespace pictures;

namespace {

using Action = PlannedPicture::Action;
using Status = PictureRecord::Status;

class Batch {
public:
    Batch(const std::vector<PlannedPicture>& plan, const std::string& comparison, const ApplySettings& settings,
          unsigned threads, MemoryGate& gate, BatchObserver& observer)
        : mPlan(plan), mComparison(comparison), mSettings(settings), mThreads(threads), mGate(gate),
          mObserver(observer) {}

    void run(unsigned jobs) {
        {
            std::vector<std::jthread> workers;
            const Stop stop(*this); // destroyed before the workers are joined, however this block is left
            startAll(workers, jobs);
            waitForWorkers();
        }
        if (mFailure) {
            std::rethrow_exception(mFailure);
        }
    }

private:
    /// Lets workers finish the current picture, but begin no other.
    class Stop {
    public:
        explicit Stop(Batch& batch) : mBatch(batch) {}
        Stop(const Stop&) = delete;
        Stop& operator=(const Stop&) = delete;
        ~Stop() {
            const std::lock_guard lock(mBatch.mMutex);
            mBatch.mNext = mBatch.mPlan.size();
        }

    private:
        Batch& mBatch;
    };

    void startAll(std::vector<std::jthread>& workers, unsigned jobs) {
        for (unsigned i = 0; i < jobs; ++i) {
            try {
                start(workers);
            } catch (const std::system_error&) { // the system cannot create more threads
                if (workers.empty()) {
                    throw;
                }
                break;
            }
        }
    }

    void start(std::vector<std::jthread>& workers) {
        {
            const std::lock_guard lock(mMutex);
            ++mWorking;
        }
        try {
            workers.emplace_back([this] { work(); });
        } catch (...) {
            stopWorking();
            throw;
        }
    }

    void waitForWorkers() {
        constexpr std::chrono::milliseconds TICK(100);
        std::unique_lock lock(mMutex);
        while (!mChange.wait_for(lock, TICK, [this] { return mWorking == 0; })) {
            mObserver.tick();
        }
    }

    void stopWorking() {
        const std::lock_guard lock(mMutex);
        --mWorking;
        mChange.notify_all();
    }

    const PlannedPicture* next() {
        const std::lock_guard lock(mMutex);
        while (mNext < mPlan.size() && mPlan[mNext].action == Action::SKIP) {
            ++mNext;
        }
        return mNext < mPlan.size() ? &mPlan[mNext++] : nullptr;
    }

    /// No exception may leave a thread, which would end the process. Failures of pictures are caught for each picture;
    /// any other exception comes from the observer and ends the run.
    void work() noexcept {
        try {
            img::setThreadCount(mThreads);
            for (const PlannedPicture* picture = next(); picture != nullptr && mObserver.isHeard(); picture = next()) {
                mObserver.finish(process(*picture));
            }
        } catch (...) {
            keepFailure(std::current_exception());
        }
        stopWorking();
    }

    void keepFailure(std::exception_ptr failure) {
        const std::lock_guard lock(mMutex);
        mNext = mPlan.size();
        if (!mFailure) {
            mFailure = std::move(failure);
        }
    }

    PictureRecord process(const PlannedPicture& picture) {
        PictureRecord record{picture.input, picture.output, Status::FAILED};
        const WarningListener listener([&](const std::string& line) {
            record.warnings.push_back(line);
            mObserver.warning(line);
        });
        try {
            std::unique_ptr<MemoryGate::Share> share; // until the picture is written
            const auto admit = [&](const PictureFile& file) {
                const std::uint64_t need = memoryNeed(memoryInput(file), outputs(picture));
                share.reset(new MemoryGate::Share(mGate.admit(picture.input, need))); // which cannot be moved
                mObserver.begin(picture.input);
            };
            record.result = applyToPicture({picture.input, picture.output, mComparison}, mSettings, admit);
            record.status = Status::WRITTEN;
        } catch (const FileExists&) { // it did not exist yet when the run was planned
            record.status = Status::SKIPPED;
            record.reason = "exists";
        } catch (...) {
            record.reason = describeFailure(picture.input);
        }
        return record;
    }

    std::vector<std::string> outputs(const PlannedPicture& picture) const {
        std::vector<std::string> names{picture.output};
        if (!mComparison.empty()) {
            names.push_back(mComparison);
        }
        return names;
    }

    const std::vector<PlannedPicture>& mPlan;
    const std::string& mComparison;
    const ApplySettings& mSettings;
    const unsigned mThreads;
    MemoryGate& mGate;
    BatchObserver& mObserver;
    std::mutex mMutex;
    std::condition_variable mChange;
    std::size_t mNext = 0;
    unsigned mWorking = 0;
    std::exception_ptr mFailure; // the first exception that was not the failure of a picture
};

void reportSkipped(const std::vector<PlannedPicture>& plan, BatchObserver& observer) {
    for (const PlannedPicture& picture : plan) {
        if (picture.action == Action::SKIP) {
            observer.finish({picture.input, picture.output, Status::SKIPPED, picture.reason});
        }
    }
}

PictureRecord rehearse(const PlannedPicture& picture, bool makesFolders) {
    PictureRecord record{picture.input, picture.output, Status::PLANNED};
    if (picture.action == Action::SKIP) {
        record.status = Status::SKIPPED;
        record.reason = picture.reason;
        return record;
    }
    try {
        const InputFile readable = openPicture(picture.input);
        std::error_code failure;
        if (!makesFolders || std::filesystem::exists(toPath(picture.output).parent_path(), failure)) {
            OutputFile::check(picture.output);
        }
        record.reason = picture.action == Action::REPLACE ? "would replace" : "";
    } catch (...) {
        record.status = Status::FAILED;
        record.reason = describeFailure(picture.input);
    }
    return record;
}

} // namespace

void runBatch(const std::vector<PlannedPicture>& plan, const std::string& comparison, const ApplySettings& settings,
              const WorkSplit& split, MemoryGate& gate, BatchObserver& observer) {
    reportSkipped(plan, observer);
    Batch(plan, comparison, settings, split.threads, gate, observer).run(split.jobs);
}

void rehearseBatch(const std::vector<PlannedPicture>& plan, bool makesFolders, BatchObserver& observer) {
    for (const PlannedPicture& picture : plan) {
        observer.finish(rehearse(picture, makesFolders));
    }
}

} // namespace zqx::tools
