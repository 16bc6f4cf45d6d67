// Whatever is thrown while a picture is worked on, the run goes on and tells it.
#include <map>
#include <mutex>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include <zqx/tools/Batch.h>

namespace zqx::tools {

namespace {

/// What some libraries throw: nothing that the standard library knows.
struct ForeignFailure {
    int number;
};

class Observer : public BatchObserver {
public:
    void begin(const std::string& input) override {
        if (input == "foreign.png") {
            throw ForeignFailure{7};
        }
        if (input == "number.png") {
            throw 7;
        }
    }
    void warning(const std::string& /*line*/) override {}
    void finish(const PictureRecord& record) override {
        const std::lock_guard lock(mMutex);
        if (record.input == throwsAt) {
            throw std::runtime_error("nobody listens");
        }
        reasons[record.input] = record.reason;
    }
    void tick() override {}
    bool isHeard() const override { return true; }

    std::map<std::string, std::string> reasons;
    std::string throwsAt;

private:
    std::mutex mMutex;
};

std::vector<PlannedPicture> planOf(const std::vector<std::string>& inputs) {
    std::vector<PlannedPicture> plan;
    for (const std::string& input : inputs) {
        plan.push_back({input, "adjusted-" + input, PlannedPicture::Action::CREATE, ""});
    }
    return plan;
}

void run(const std::vector<std::string>& inputs, Observer& observer) {
    ApplySettings settings{img::ImageProcessingPipeline(0), {}, {}};
    MemoryGate gate(std::uint64_t{1} << 30);
    runBatch(planOf(inputs), "", settings, {2, 1}, gate, observer);
}

} // namespace

TEST(BatchRunTest, ExceptionsOfAnyTypeFailThePictureAlone) {
    Observer observer;
    run({"foreign.png", "number.png", "missing.png"}, observer);
    EXPECT_EQ(observer.reasons["foreign.png"], "foreign.png: unexpected failure, for a reason that was not given");
    EXPECT_EQ(observer.reasons["number.png"], "number.png: unexpected failure, for a reason that was not given");
    EXPECT_EQ(observer.reasons["missing.png"].rfind("missing.png: ", 0), 0U) << observer.reasons["missing.png"];
    EXPECT_EQ(observer.reasons.size(), 3U);
}

TEST(BatchRunTest, WhatTheObserverThrowsEndsTheRunAndReachesItsCaller) {
    Observer observer;
    observer.throwsAt = "missing.png";
    EXPECT_THROW(run({"missing.png"}, observer), std::runtime_error);
}

} // namespace zqx::tools
