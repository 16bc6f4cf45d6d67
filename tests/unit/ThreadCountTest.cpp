// One thread or several: the same pictures give the same bytes.
#include <cstring>
#include <memory>
#include <vector>

#include <gtest/gtest.h>
#include <omp.h>

#include <zqx/img/GaussianBlur.h>
#include <zqx/img/ImageProcessingPipeline.h>
#include <zqx/img/Sharpen.h>

#include "unit/support/Fill.h"
#include "unit/support/Gradings.h"
#include "unit/support/GuardedImage.h"

namespace {

using namespace test;
using Memory = std::vector<unsigned char>;

/// Sets the number of OpenMP threads and restores it.
class ThreadCountTest : public testing::Test {
protected:
    void TearDown() override { omp_set_num_threads(mThreads); }

    /// Runs the work with one and with three threads; it returns the bytes that it made.
    template <typename Work>
    static void expectSameBytes(Work work) {
        omp_set_num_threads(1);
        const Memory alone = work();
        omp_set_num_threads(3);
        const Memory together = work();
        EXPECT_FALSE(alone.empty());
        EXPECT_TRUE(alone == together);
    }

private:
    int mThreads = omp_get_max_threads();
};

constexpr std::size_t WIDTH = 61;
constexpr std::size_t HEIGHT = 47;

Memory getMemory(const Image& image) {
    const auto* bytes = static_cast<const unsigned char*>(image.getDataPtr());
    return Memory(bytes, bytes + image.getHeight() * image.getByteRowStride());
}

/// Calls work(source, target) on a photograph and returns the target's memory.
template <typename Work>
Memory targetAfter(Image::Format from, Image::Format to, Work work) {
    GuardedImage source(WIDTH, HEIGHT, from);
    fillPhoto(source.surface(), 70);
    GuardedImage target(WIDTH, HEIGHT, to);
    work(source.image(), target.image());
    return target.memory();
}

template <typename Change>
Memory imageAfter(Image::Format format, Change change) {
    GuardedImage image(WIDTH, HEIGHT, format);
    fillPhoto(image.surface(), 71);
    change(image.image());
    return image.memory();
}

oracle::Settings everything() {
    return curvedSettings().back().settings;
}

TEST_F(ThreadCountTest, Conversion) {
    forAllPairs([](Image::Format from, Image::Format to) {
        SCOPED_TRACE(getName(from, to));
        expectSameBytes(
            [=] { return targetAfter(from, to, [](Image& source, Image& target) { target.convertFrom(source); }); });
    });
}

TEST_F(ThreadCountTest, Grading) {
    const zqx::img::ColorGrading grading = makeGrading(everything());
    forAllPairs([&](Image::Format from, Image::Format to) {
        SCOPED_TRACE(getName(from, to));
        expectSameBytes([&] {
            return targetAfter(from, to, [&](Image& source, Image& target) { grading.apply(source, target); });
        });
    });
}

TEST_F(ThreadCountTest, FloatTable) {
    expectSameBytes([] {
        std::vector<float> table(3 * 9 * 9 * 9);
        makeGrading(everything()).generate3DLUT_RGB32F(9, table.data());
        Memory bytes(table.size() * sizeof(float));
        std::memcpy(bytes.data(), table.data(), bytes.size());
        return bytes;
    });
}

TEST_F(ThreadCountTest, ByteTable) {
    expectSameBytes([] {
        Memory table(3 * 9 * 9 * 9);
        makeGrading(everything()).generate3DLUT_SRGB8(9, table.data());
        return table;
    });
}

TEST_F(ThreadCountTest, InversionAndAlpha) {
    for (const Image::Format format : ALL_FORMATS) {
        expectSameBytes(
            [=] { return imageAfter(format, [](Image& image) { image.invert(static_cast<zqx::img::Channel>(15)); }); });
        expectSameBytes([=] { return imageAfter(format, zqx::img::premultiplied2StraightAlpha); });
        expectSameBytes([=] { return imageAfter(format, zqx::img::straight2PremultipliedAlpha); });
    }
}

TEST_F(ThreadCountTest, Turns) {
    for (const Image::Format format : ALL_FORMATS) {
        GuardedImage image(WIDTH, HEIGHT, format);
        fillRandom(image.surface(), 72);
        expectSameBytes([&] { return getMemory(*image.image().rotate90()); });
        expectSameBytes([&] { return getMemory(*image.image().rotate180()); });
        expectSameBytes([&] { return getMemory(*image.image().rotate270()); });
        expectSameBytes([=] { return imageAfter(format, [](Image& turned) { turned.flipHorizontal(); }); });
        expectSameBytes([=] { return imageAfter(format, [](Image& turned) { turned.flipVertical(); }); });
    }
}

TEST_F(ThreadCountTest, Blur) {
    forAllPairs([](Image::Format from, Image::Format to) {
        SCOPED_TRACE(getName(from, to));
        expectSameBytes([=] {
            return targetAfter(from, to, [](Image& source, Image& target) {
                zqx::img::GaussianBlur blur;
                blur.setSigma(3.0F);
                blur.setSrcImage(source);
                blur.setOutput(target);
                blur.execute();
            });
        });
    });
}

TEST_F(ThreadCountTest, Sharpening) {
    forAllPairs([](Image::Format from, Image::Format to) {
        SCOPED_TRACE(getName(from, to));
        expectSameBytes([=] {
            return targetAfter(from, to, [](Image& source, Image& target) {
                zqx::img::Sharpen sharpen;
                sharpen.setStrength(3.0F);
                sharpen.setSrcImage(source);
                sharpen.setOutput(target);
                sharpen.execute();
            });
        });
    });
}

TEST_F(ThreadCountTest, Pipeline) {
    for (const float sharpness : {-0.5F, 0.0F, 0.5F}) {
        forAllPairs([=](Image::Format from, Image::Format to) {
            SCOPED_TRACE(getName(from, to));
            expectSameBytes([=] {
                return targetAfter(from, to, [=](Image& source, Image& target) {
                    zqx::img::ImageProcessingPipeline pipeline(65535);
                    pipeline.setInputImage(std::make_shared<Image>(source));
                    pipeline.setInversionEnabled(1);
                    pipeline.setSharpness(sharpness);
                    pipeline.setFlipHorizontal(1);
                    pipeline.setFlipVertical(1);
                    pipeline.setColorGrading(makeGrading(everything()));
                    pipeline.execute(target);
                });
            });
        });
    }
}

} // namespace
