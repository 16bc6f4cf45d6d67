// Whatever is thrown while a picture is worked on, the run goes on and tells it.
#include <map>
#include <mutex>
#include <stdexcept>
#include <string>

#include <support/DirectoryTest.h>
#include <support/Process.h>

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
        if (input.ends_with("foreign.ppm")) {
            throw ForeignFailure{7};
        }
        if (input.ends_with("number.ppm")) {
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

class BatchRunTest : public img::test::DirectoryTest {
protected:
    void run(const std::vector<std::string>& inputs, Observer& observer) {
        std::vector<PlannedPicture> plan;
        for (const std::string& input : inputs) {
            plan.push_back({at(input), at("adjusted-" + input), PlannedPicture::Action::CREATE, ""});
        }
        const ApplySettings settings{img::ImageProcessingPipeline(0), {}, {}};
        MemoryGate gate(std::uint64_t{1} << 30);
        runBatch(plan, "", settings, {2, 1}, gate, observer);
    }
};

} // namespace

TEST_F(BatchRunTest, ExceptionsOfAnyTypeFailThePictureAlone) {
    Observer observer;
    const std::string pixel = "P6 1 1 255\nabc";
    img::test::writeFile(at("foreign.ppm"), pixel);
    img::test::writeFile(at("number.ppm"), pixel);
    img::test::writeFile(at("good.ppm"), pixel);
    run({"foreign.ppm", "number.ppm", "missing.ppm", "good.ppm"}, observer);
    const std::string unexpected = ": unexpected failure of unknown cause";
    EXPECT_EQ(observer.reasons[at("foreign.ppm")], at("foreign.ppm") + unexpected);
    EXPECT_EQ(observer.reasons[at("number.ppm")], at("number.ppm") + unexpected);
    EXPECT_TRUE(observer.reasons[at("missing.ppm")].starts_with(at("missing.ppm") + ": "));
    EXPECT_EQ(observer.reasons[at("good.ppm")], "");
    EXPECT_EQ(observer.reasons.size(), 4U);
    EXPECT_EQ(files(), (std::vector<std::string>{"adjusted-good.ppm", "foreign.ppm", "good.ppm", "number.ppm"}));
}

TEST_F(BatchRunTest, WhatTheObserverThrowsEndsTheRunAndReachesItsCaller) {
    Observer observer;
    observer.throwsAt = at("missing.ppm");
    EXPECT_THROW(run({"missing.ppm"}, observer), std::runtime_error);
}

} // namespace zqx::tools
