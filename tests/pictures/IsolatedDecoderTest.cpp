// Decoding in other processes as threads of one program do it.
#include <atomic>
#include <thread>

#include <support/DirectoryTest.h>
#include <support/Process.h>

#include <cli/Pictures.h>

#include "zqx/pictures/Reader.h"
#include "zqx/pictures/files/Error.h"

namespace zqx::pictures {

namespace {

using IsolatedDecoderTest = img::test::DirectoryTest;

ReadOptions isolated() {
    ReadOptions options;
    options.isolate = true;
    return options;
}

int openDescriptors() {
    int count = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        ++count;
    }
    return count;
}

} // namespace

TEST_F(IsolatedDecoderTest, ThreadsDecodeAtOnce) {
    constexpr int THREADS = 4;
    constexpr int PICTURES = 5;
    for (int i = 0; i < THREADS; ++i) {
        const auto color = [i](unsigned x, unsigned y) { return img::test::motley(x + static_cast<unsigned>(i), y); };
        img::test::writePicture(at(std::to_string(i) + ".png"), img::test::paint(31, 17, 24, color));
    }
    std::atomic<int> right = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < THREADS; ++i) {
        threads.emplace_back([&, i] {
            for (int n = 0; n < PICTURES; ++n) {
                const Picture picture = readPicture(at(std::to_string(i) + ".png"), isolated());
                const auto* row = static_cast<const unsigned char*>(picture.image().getRowPtr(16));
                right += row[2] == img::test::motley(static_cast<unsigned>(i), 16).r ? 1 : 0;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(right, THREADS * PICTURES);
}

TEST_F(IsolatedDecoderTest, WarningsComeToTheThreadThatAsked) {
    img::test::writePicture(at("a.tif"), img::test::fillSamples(FIT_UINT32, 32, 4, 4));
    std::vector<std::string> warnings;
    const WarningListener listener([&](const std::string& line) { warnings.push_back(line); });
    const Picture there = readPicture(at("a.tif"), isolated());
    const std::vector<std::string> fromThere = std::exchange(warnings, {});
    const Picture here = readPicture(at("a.tif"));
    ASSERT_EQ(fromThere.size(), 1U);
    EXPECT_EQ(fromThere, warnings);
}

#if defined(__linux__)
TEST_F(IsolatedDecoderTest, NoDescriptorIsLeftOpen) {
    img::test::writePicture(at("a.png"), img::test::paint(3, 3, 24, img::test::motley));
    readPicture(at("a.png"), isolated());
    const int before = openDescriptors();
    for (int i = 0; i < 3; ++i) {
        readPicture(at("a.png"), isolated());
        EXPECT_THROW(readPicture(at("none.png"), isolated()), Error);
    }
    EXPECT_EQ(openDescriptors(), before);
}
#endif

TEST_F(IsolatedDecoderTest, PixelsMayBeWrittenTo) {
    img::test::writePicture(at("a.png"), img::test::paint(31, 17, 24, img::test::motley));
    Picture picture = readPicture(at("a.png"), isolated());
    picture.image().flipVertical();
    EXPECT_EQ(static_cast<const unsigned char*>(picture.image().getRowPtr(16))[2], img::test::motley(0, 0).r);
}

} // namespace zqx::pictures
