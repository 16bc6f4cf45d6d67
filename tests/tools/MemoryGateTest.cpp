// How many pictures are let in at once, and what each is taken to need.
#include <atomic>
#include <chrono>
#include <future>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <zqx/tools/MemoryGate.h>

#include "zqx/pictures/files/Error.h"
#include "zqx/tools/batch/OpenPicture.h"

#include <cli/Pictures.h>
#include <support/DirectoryTest.h>
#include <support/Process.h>

namespace zqx::tools {

using namespace pictures;

namespace {

constexpr std::chrono::seconds LONG(20);       // nothing takes that long unless it hangs
constexpr std::chrono::milliseconds SHORT(50); // for what must not happen

class MemoryNeedTest : public img::test::DirectoryTest {
protected:
    MemoryInput inputAt(const std::string& name) const { return memoryInput(PictureFile(at(name), {})); }
};

} // namespace

TEST(MemoryGateTest, PicturesWithinTheLimitGoInTogether) {
    MemoryGate gate(100);
    const MemoryGate::Share first = gate.admit("a", 60);
    const MemoryGate::Share second = gate.admit("b", 40);
    SUCCEED(); // the second would have waited for ever
}

TEST(MemoryGateTest, PictureWaitsForRoom) {
    MemoryGate gate(100);
    std::future<void> waiting;
    {
        const MemoryGate::Share first = gate.admit("a", 60);
        waiting = std::async(std::launch::async, [&] { const MemoryGate::Share second = gate.admit("b", 41); });
        EXPECT_EQ(waiting.wait_for(SHORT), std::future_status::timeout);
    }
    EXPECT_EQ(waiting.wait_for(LONG), std::future_status::ready);
}

TEST(MemoryGateTest, SmallPicturesDoNotPassALargeOneThatWaits) {
    MemoryGate gate(100);
    std::vector<std::future<void>> waiting;
    std::atomic<bool> largeIsIn = false;
    {
        const MemoryGate::Share first = gate.admit("first", 10);
        waiting.push_back(std::async(std::launch::async, [&] {
            const MemoryGate::Share large = gate.admit("large", 100);
            largeIsIn = true;
        }));
        std::this_thread::sleep_for(SHORT);
        waiting.push_back(std::async(std::launch::async, [&] {
            const MemoryGate::Share small = gate.admit("small", 1);
            EXPECT_TRUE(largeIsIn);
        }));
        EXPECT_EQ(waiting.back().wait_for(SHORT), std::future_status::timeout);
    }
    for (std::future<void>& future : waiting) {
        EXPECT_EQ(future.wait_for(LONG), std::future_status::ready);
    }
}

TEST(MemoryGateTest, LimitHoldsWhateverTheThreadsDo) {
    MemoryGate gate(100);
    std::atomic<int> used = 0;
    std::atomic<int> most = 0;
    std::vector<std::jthread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([&, i] {
            for (int round = 0; round < 200; ++round) {
                const int need = (i * 37 + round * 11) % 100 + 1;
                const MemoryGate::Share share = gate.admit("a", static_cast<std::uint64_t>(need));
                const int now = used += need;
                for (int before = most; before < now && !most.compare_exchange_weak(before, now);) {
                }
                used -= need;
            }
        });
    }
    threads.clear();
    EXPECT_LE(most, 100);
    EXPECT_EQ(used, 0);
}

TEST(MemoryGateTest, PictureThatIsTooLargeAloneIsRefusedWithTheWayOut) {
    MemoryGate gate(std::uint64_t{512} << 20);
    try {
        gate.admit("big.png", std::uint64_t{1} << 30);
        FAIL() << "was let in";
    } catch (const Error& error) {
        EXPECT_STREQ(error.what(), "big.png: needs about 1.0 GiB of memory, more than the 512 MiB allowed; "
                                   "--max-memory raises this limit");
    }
    const MemoryGate::Share next = gate.admit("small.png", 1); // nobody stands in the way
}

TEST_F(MemoryNeedTest, GrowsWithPixelsDepthAndOutputs) {
    img::test::writePicture(at("tiny.png"), img::test::paint(1, 1, 24, img::test::motley));
    img::test::writePicture(at("bytes.png"), img::test::paint(1000, 1000, 24, img::test::motley));
    img::test::writePicture(at("floats.exr"), img::test::fillSamples(FIT_RGBF, 96, 1000, 1000), EXR_FLOAT);
    const std::uint64_t base = memoryNeed(inputAt("tiny.png"), {"out.png"});
    const auto bytesPerPixel = [&](const char* input, const std::vector<std::string>& outputs) {
        return static_cast<double>(memoryNeed(inputAt(input), outputs) - base) / 1e6;
    };
    constexpr double TINY = 0.001;
    EXPECT_NEAR(bytesPerPixel("bytes.png", {"out.png"}), 3 * 3, TINY);   // three copies of three bytes
    EXPECT_NEAR(bytesPerPixel("bytes.png", {"out.exr"}), 3 * 12, TINY);  // of three floats
    EXPECT_NEAR(bytesPerPixel("floats.exr", {"out.exr"}), 3 * 12, TINY); // as well
    EXPECT_NEAR(bytesPerPixel("bytes.png", {"out.png", "both.png"}), 5 * 3, TINY);
}

TEST_F(MemoryNeedTest, GifsGoByTheFrameThatIsDecodedAndNotByTheirScreen) {
    const auto gif = [](const std::string& screen, const std::string& frame) {
        return "GIF89a" + screen + std::string("\x80\0\0\1\2\3\4\5\6,\0\0\0\0", 14) + frame + std::string("\0", 1);
    };
    const std::string small("\1\0\1\0", 4);
    const std::string large("\x88\x13\x88\x13", 4); // 5000 x 5000
    img::test::writeFile(at("large.gif"), gif(small, large));
    img::test::writeFile(at("small.gif"), gif(large, small));
    EXPECT_GT(memoryNeed(inputAt("large.gif"), {"out.png"}), 5000U * 5000U * 4U);
    EXPECT_LT(memoryNeed(inputAt("small.gif"), {"out.png"}), 5000U * 5000U);
}

TEST_F(MemoryNeedTest, UnknownFormatsGoByTheSizeOfTheFile) {
    img::test::writeFile(at("picture.sgi"), std::string(100000, 'x'));
    img::test::writeFile(at("camera.nef"), std::string(100000, 'x'));
    const std::uint64_t base = memoryNeed({}, {"out.png"});
    EXPECT_GT(memoryNeed(inputAt("picture.sgi"), {"out.png"}) - base, 4000000U); // may be packed tightly
    EXPECT_GT(memoryNeed(inputAt("camera.nef"), {"out.png"}) - base, 1200000U);
}

TEST_F(MemoryNeedTest, WorkBeyondTheLimitIsRefusedBeforeItBegins) {
    img::test::writePicture(at("a.png"), img::test::paint(1000, 1000, 24, img::test::motley));
    img::test::writePicture(at("b.png"), img::test::paint(1000, 1000, 24, img::test::motley));
    const std::uint64_t one = memoryNeed(inputAt("a.png"), {});
    requireMemory({{inputAt("a.png")}, {}}, one);
    requireMemory({{inputAt("a.png"), inputAt("b.png")}, {}}, 2 * one);
    EXPECT_THROW(requireMemory({{inputAt("a.png")}, {}}, one - 1), Error);
    EXPECT_THROW(requireMemory({{inputAt("a.png"), inputAt("b.png")}, {}}, 2 * one - 1), Error);
    EXPECT_THROW(requireMemory({{inputAt("a.png")}, {}, 16}, one + 16 * 1000 * 1000 - 1), Error);
    requireMemory({{inputAt("a.png")}, {}, 16}, one + 16 * 1000 * 1000);
    requireMemory({{inputAt("a.png")}, {}}, 0); // the default is enough for a small picture
}

TEST(MemoryLimitTest, DefaultIsAtMostHalfOfTheMemory) {
    EXPECT_GT(defaultMemoryLimit(), std::uint64_t{1} << 20);
    EXPECT_LT(defaultMemoryLimit(), std::uint64_t{1} << 50);
}

} // namespace zqx::tools
