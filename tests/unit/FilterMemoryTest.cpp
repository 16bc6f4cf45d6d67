// Blur and sharpening where the output lies on the source: in place, and in layouts that overlap in part. The work is
// split into bands of rows by the number of threads, so heights around those splits count.
#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <omp.h>

#include <zqx/img/GaussianBlur.h>
#include <zqx/img/Sharpen.h>

#include "unit/support/Compare.h"
#include "unit/support/Fill.h"
#include "unit/support/GuardedImage.h"

namespace {

using namespace test;

class FilterMemoryTest : public testing::Test {
protected:
    void TearDown() override { omp_set_num_threads(mThreads); }

private:
    int mThreads = omp_get_max_threads();
};

template <typename Filter>
void run(Filter filter, const Image& source, const Image& output) {
    filter.setSrcImage(source);
    filter.setOutput(output);
    filter.execute();
}

void blur(std::size_t radius, const Image& source, const Image& output) {
    zqx::img::GaussianBlur filter;
    filter.setSigma(static_cast<float>(zqx::img::GaussianBlur::radius2sigma(radius)));
    run(filter, source, output);
}

void sharpen(std::size_t radius, const Image& source, const Image& output) {
    zqx::img::Sharpen filter;
    filter.setRadius(static_cast<float>(zqx::img::GaussianBlur::radius2sigma(radius)));
    filter.setStrength(3.0F);
    filter.setThreshold(0.01F);
    run(filter, source, output);
}

using FilterFunction = void (*)(std::size_t radius, const Image& source, const Image& output);
constexpr FilterFunction FILTERS[] = {&blur, &sharpen};

constexpr int MOST_THREADS = 5;

/// The smallest heights, and those around the ones from which on another band pays.
std::vector<std::size_t> telltaleHeights(std::size_t radius) {
    std::vector<std::size_t> heights = {1, 2, radius, radius + 1, 2 * radius + 1, 4 * radius};
    for (std::size_t bands = 1; bands <= MOST_THREADS; ++bands) {
        const std::size_t height = bands * (4 * radius + 8);
        heights.insert(heights.end(), {height - 1, height, height + 1});
    }
    return heights;
}

/// The source must be as it was left by fillPhoto with this seed.
constexpr std::uint64_t SEED = 90;

void expectSameInPlace(FilterFunction filter, std::size_t radius, Image::Format format, std::size_t width,
                       std::size_t height) {
    SCOPED_TRACE(getName(format) + ", radius " + std::to_string(radius) + ", height " + std::to_string(height));
    GuardedImage source(width, height, format);
    fillPhoto(source.surface(), SEED);
    omp_set_num_threads(1);
    GuardedImage expected(width, height, format);
    filter(radius, source.image(), expected.image());
    for (const int threads : {1, 2, 3, MOST_THREADS}) {
        omp_set_num_threads(threads);
        GuardedImage apart(width, height, format);
        filter(radius, source.image(), apart.image());
        ASSERT_TRUE(samePixels(apart.surface(), expected.surface())) << "apart, threads " << threads;
        GuardedImage image(width, height, format);
        image.setMemory(source.memory());
        filter(radius, image.image(), image.image());
        ASSERT_TRUE(samePixels(image.surface(), expected.surface())) << "in place, threads " << threads;
        ASSERT_TRUE(image.guardsIntact());
    }
}

TEST_F(FilterMemoryTest, VeryWidePicturesInStripsComeOutAsInPlaceInOne) {
    for (const FilterFunction filter : FILTERS) {
        for (const Image::Format format :
             {Image::SRGB8, Image::RGB32F, Image::SRGBA8, Image::RGBA32F, Image::GRAY32F, Image::GRAY8}) {
            for (const std::size_t radius : {1, 12}) {
                expectSameInPlace(filter, radius, format, 12007, 5);
            }
        }
    }
}

TEST_F(FilterMemoryTest, InPlaceAllFormatsComeOutAsApartForAnyThreadCount) {
    for (const FilterFunction filter : FILTERS) {
        for (const Image::Format format : ALL_FORMATS) {
            for (const std::size_t height : telltaleHeights(2)) {
                expectSameInPlace(filter, 2, format, 5, height);
            }
        }
    }
}

TEST_F(FilterMemoryTest, InPlaceAllRadiiComeOutAsApartForAnyThreadCount) {
    for (const FilterFunction filter : FILTERS) {
        for (std::size_t radius = 1; radius <= 12; ++radius) {
            for (const Image::Format format : {Image::SRGB8, Image::GRAY32F}) {
                for (const std::size_t height : telltaleHeights(radius)) {
                    expectSameInPlace(filter, radius, format, 3, height);
                }
            }
        }
    }
}

TEST_F(FilterMemoryTest, InPlacePicturesWiderThanARunComeOutAsApart) {
    for (const FilterFunction filter : FILTERS) {
        for (const Image::Format format : ALL_FORMATS) {
            expectSameInPlace(filter, 3, format, 1031, 47);
        }
    }
}

/// A source and an output over one piece of memory.
struct Overlap {
    const char* name;
    Image::Format source;
    std::size_t sourceOffset;
    std::size_t sourceStride;
    Image::Format output;
    std::size_t outputOffset;
    std::size_t outputStride;
};

constexpr std::size_t WIDTH = 19;
constexpr std::size_t HEIGHT = 67;

/// Filters from and to the same memory, and compares with a source that lies elsewhere.
void expectLikeACopy(FilterFunction filter, const Overlap& overlap, int threads) {
    SCOPED_TRACE(std::string(overlap.name) + ", threads " + std::to_string(threads));
    omp_set_num_threads(threads);
    std::vector<unsigned char> memory(2 * 16 * WIDTH * HEIGHT);
    const auto getView = [](std::vector<unsigned char>& bytes, Image::Format format, std::size_t offset,
                            std::size_t stride) { return Image(bytes.data() + offset, WIDTH, HEIGHT, format, stride); };
    const Image source = getView(memory, overlap.source, overlap.sourceOffset, overlap.sourceStride);
    fillPhoto(getSurface(source), SEED);
    std::vector<unsigned char> copy = memory;
    std::vector<unsigned char> expected = memory;
    filter(3, getView(copy, overlap.source, overlap.sourceOffset, overlap.sourceStride),
           getView(expected, overlap.output, overlap.outputOffset, overlap.outputStride));

    filter(3, source, getView(memory, overlap.output, overlap.outputOffset, overlap.outputStride));

    EXPECT_TRUE(memory != copy) << "nothing was done";
    EXPECT_TRUE(memory == expected);
}

TEST_F(FilterMemoryTest, OverlappingLayoutsComeOutAsFromACopy) {
    const Overlap overlaps[] = {
        {"four bytes to three", Image::SRGBA8, 0, 4 * WIDTH, Image::SRGB8, 0, 3 * WIDTH},
        {"three bytes to four", Image::SRGB8, 0, 3 * WIDTH, Image::SRGBA8, 0, 4 * WIDTH},
        {"three bytes to one", Image::SRGB8, 0, 3 * WIDTH, Image::GRAY8, 0, WIDTH},
        {"one byte to three", Image::SGRAY8, 0, WIDTH, Image::RGB8, 0, 3 * WIDTH},
        {"three bytes to one, as wide rows", Image::RGB8, 0, 3 * WIDTH, Image::SGRAY8, 0, 3 * WIDTH},
        {"the same layout, other colours", Image::SRGBA8, 0, 4 * WIDTH, Image::SBGRA8, 0, 4 * WIDTH},
        {"the same layout, other encoding", Image::SRGB8, 0, 3 * WIDTH, Image::RGB8, 0, 3 * WIDTH},
        {"one row down", Image::SRGB8, 0, 3 * WIDTH, Image::SRGB8, 3 * WIDTH, 3 * WIDTH},
        {"some rows up", Image::SRGB8, 15 * WIDTH, 3 * WIDTH, Image::SRGB8, 0, 3 * WIDTH},
        {"one pixel on", Image::SRGB8, 0, 3 * WIDTH, Image::SRGB8, 3, 3 * WIDTH},
        {"floats to bytes", Image::RGB32F, 0, 12 * WIDTH, Image::SRGB8, 0, 3 * WIDTH},
        {"floats one row down", Image::RGBA32F, 0, 16 * WIDTH, Image::RGBA32F, 16 * WIDTH, 16 * WIDTH},
        {"floats some rows up", Image::GRAY32F, 20 * WIDTH, 4 * WIDTH, Image::GRAY32F, 0, 4 * WIDTH},
        {"bytes to floats further down", Image::SRGB8, 12 * WIDTH, 3 * WIDTH, Image::RGB32F, 0, 12 * WIDTH},
        {"the last row of one is the first of the other", Image::RGB8, 0, 3 * WIDTH, Image::RGB8,
         3 * WIDTH * (HEIGHT - 1), 3 * WIDTH},
        {"halves of the same rows", Image::SRGB8, 0, 6 * WIDTH, Image::SRGB8, 3 * WIDTH, 6 * WIDTH},
    };
    for (const FilterFunction filter : FILTERS) {
        for (const Overlap& overlap : overlaps) {
            for (const int threads : {1, 2, 3}) {
                expectLikeACopy(filter, overlap, threads);
            }
        }
    }
}

} // namespace
