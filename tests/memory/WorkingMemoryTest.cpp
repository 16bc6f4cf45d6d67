// How much memory operations take beyond their source and output.
#include <cstddef>
#include <cstring>
#include <memory>
#include <ostream>
#include <string>

#include <gtest/gtest.h>
#include <omp.h>

#include <zqx/img/ColorGrading.h>
#include <zqx/img/GaussianBlur.h>
#include <zqx/img/ImageProcessingPipeline.h>
#include <zqx/img/Sharpen.h>

#include "CountedMemory.h"

namespace {

using test::CountedMemory;
using zqx::img::Image;

constexpr std::size_t MEBIBYTE = std::size_t{1} << 20U;

/// What filters may take on two threads, for any picture up to the greatest width.
constexpr std::size_t FILTER_BOUND = 64 * MEBIBYTE;
constexpr std::size_t GREATEST_WIDTH = 65500;
/// The standard deviation whose taps reach 12 pixels, the farthest of the pipeline's settings.
constexpr float SIGMA = 6.0F;

class WorkingMemoryTest : public testing::Test {
protected:
    void SetUp() override { omp_set_num_threads(2); }
    void TearDown() override { omp_set_num_threads(mThreads); }

private:
    int mThreads = omp_get_max_threads();
};

/// A picture of middle values.
std::shared_ptr<Image> getPicture(std::size_t width, std::size_t height, Image::Format format) {
    auto image = std::make_shared<Image>(width, height, format, 1);
    std::memset(image->getDataPtr(), 0x3E, height * image->getByteRowStride()); // floats of 0.18
    return image;
}

void blur(const Image& source, const Image& output) {
    zqx::img::GaussianBlur filter;
    filter.setSigma(SIGMA);
    filter.setSrcImage(source);
    filter.setOutput(output);
    filter.execute();
}

void sharpen(const Image& source, const Image& output) {
    zqx::img::Sharpen filter;
    filter.setRadius(SIGMA);
    filter.setStrength(1.0F);
    filter.setSrcImage(source);
    filter.setOutput(output);
    filter.execute();
}

struct FilterCase {
    const char* name;
    void (*filter)(const Image& source, const Image& output);
    std::size_t width;
    std::size_t height;
    Image::Format format;
    bool isInPlace;

    friend void PrintTo(const FilterCase& c, std::ostream* out) { *out << c.name; }
};

std::string nameOfCase(const testing::TestParamInfo<FilterCase>& info) {
    return info.param.name;
}

class FilterWorkingMemoryTest : public WorkingMemoryTest, public testing::WithParamInterface<FilterCase> {};

TEST_P(FilterWorkingMemoryTest, StaysBelowTheBound) {
    const FilterCase& c = GetParam();
    const std::shared_ptr<Image> source = getPicture(c.width, c.height, c.format);
    const std::shared_ptr<Image> output = c.isInPlace ? source : getPicture(c.width, c.height, c.format);
    const CountedMemory memory;
    c.filter(*source, *output);
    EXPECT_GT(memory.count(), 0U) << "the library's allocations are not seen";
    EXPECT_LT(memory.peak(), FILTER_BOUND);
    RecordProperty("peak", std::to_string(memory.peak()));
}

INSTANTIATE_TEST_SUITE_P(
    Wide, FilterWorkingMemoryTest,
    testing::Values(FilterCase{"BlurBytes", &blur, GREATEST_WIDTH, 130, Image::SRGB8, false},
                    FilterCase{"BlurBytesInPlace", &blur, GREATEST_WIDTH, 130, Image::SRGB8, true},
                    FilterCase{"BlurFloats", &blur, GREATEST_WIDTH, 130, Image::RGBA32F, false},
                    FilterCase{"BlurFloatsInPlace", &blur, GREATEST_WIDTH, 130, Image::RGBA32F, true},
                    FilterCase{"SharpenBytes", &sharpen, GREATEST_WIDTH, 130, Image::SRGB8, false},
                    FilterCase{"SharpenBytesInPlace", &sharpen, GREATEST_WIDTH, 130, Image::SRGB8, true},
                    FilterCase{"SharpenFloats", &sharpen, GREATEST_WIDTH, 130, Image::RGBA32F, false},
                    FilterCase{"SharpenFloatsInPlace", &sharpen, GREATEST_WIDTH, 130, Image::RGBA32F, true}),
    nameOfCase);

INSTANTIATE_TEST_SUITE_P(Tall, FilterWorkingMemoryTest,
                         testing::Values(FilterCase{"BlurBytes", &blur, 500, 50000, Image::SRGB8, false},
                                         FilterCase{"BlurBytesInPlace", &blur, 500, 50000, Image::SRGB8, true},
                                         FilterCase{"BlurFloats", &blur, 500, 20000, Image::RGBA32F, false},
                                         FilterCase{"BlurFloatsInPlace", &blur, 500, 20000, Image::RGBA32F, true},
                                         FilterCase{"SharpenBytes", &sharpen, 500, 50000, Image::SRGB8, false},
                                         FilterCase{"SharpenBytesInPlace", &sharpen, 500, 50000, Image::SRGB8, true},
                                         FilterCase{"SharpenFloats", &sharpen, 500, 20000, Image::RGBA32F, false},
                                         FilterCase{"SharpenFloatsInPlace", &sharpen, 500, 20000, Image::RGBA32F,
                                                    true}),
                         nameOfCase);

/// Pictures whose floats, even of one channel, would take far more than bands and runs do.
class ByteWorkingMemoryTest : public WorkingMemoryTest {
protected:
    static constexpr std::size_t WIDTH = 500;
    static constexpr std::size_t HEIGHT = 20000;
    static constexpr std::size_t ONE_FLOAT_PLANE = WIDTH * HEIGHT * sizeof(float);

    template <typename Work>
    static void expectNoFloatPicture(Work work) {
        for (const Image::Format format : {Image::SRGB8, Image::RGBA8, Image::SGRAY8}) {
            const std::shared_ptr<Image> source = getPicture(WIDTH, HEIGHT, format);
            const std::shared_ptr<Image> output = getPicture(WIDTH, HEIGHT, format);
            const CountedMemory memory;
            work(*source, *output);
            work(*source, *source);
            EXPECT_LT(memory.peak(), ONE_FLOAT_PLANE / 8) << "format " << format;
        }
    }
};

TEST_F(ByteWorkingMemoryTest, BlurTakesBands) {
    expectNoFloatPicture(&blur);
}

TEST_F(ByteWorkingMemoryTest, SharpeningTakesBands) {
    expectNoFloatPicture(&sharpen);
}

TEST_F(ByteWorkingMemoryTest, GradingTakesRuns) {
    expectNoFloatPicture([](const Image& source, const Image& output) {
        zqx::img::ColorGrading grading;
        grading.setContrast(0.6F);
        grading.setHue(20.0F);
        Image target = output; // a view
        grading.apply(source, target);
    });
}

TEST_F(ByteWorkingMemoryTest, ConversionTakesRuns) {
    const std::shared_ptr<Image> source = getPicture(WIDTH, HEIGHT, Image::SRGB8);
    for (const Image::Format to : {Image::GRAY8, Image::RGB8, Image::SBGRA8}) {
        const std::shared_ptr<Image> output = getPicture(WIDTH, HEIGHT, to);
        const CountedMemory memory;
        output->convertFrom(*source);
        EXPECT_LT(memory.peak(), ONE_FLOAT_PLANE / 8);
    }
}

TEST_F(ByteWorkingMemoryTest, PipelineTakesNoFloatPicture) {
    for (const float sharpness : {-1.0F, 0.0F, 1.0F}) {
        const std::shared_ptr<Image> source = getPicture(WIDTH, HEIGHT, Image::SRGB8);
        const std::shared_ptr<Image> output = getPicture(WIDTH, HEIGHT, Image::SRGB8);
        const CountedMemory memory;
        zqx::img::ImageProcessingPipeline pipeline(65535);
        pipeline.setInputImage(source);
        pipeline.setSharpness(sharpness);
        zqx::img::ColorGrading grading;
        grading.setExposure(0.5F);
        pipeline.setColorGrading(grading);
        pipeline.execute(*output);
        EXPECT_LT(memory.largest(), ONE_FLOAT_PLANE) << "sharpness " << sharpness;
    }
}

} // namespace
