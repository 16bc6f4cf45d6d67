// The tiled filter: what its operation is called with, and what becomes of the results. Whole outputs are compared bit
// for bit with a run pixel by pixel; the rules are written out once each on a row of a few pixels.
#include <algorithm>
#include <cstddef>
#include <functional>
#include <limits>
#include <map>
#include <numeric>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <omp.h>

#include <zqx/img/TiledFilter.h>

#include "oracle/Tiled.h"
#include "unit/support/Compare.h"
#include "unit/support/Fill.h"
#include "unit/support/GuardedImage.h"
#include "unit/support/Literal.h"

namespace {

using namespace test;
using oracle::Rectangle;
using oracle::Surface;
using oracle::Tiling;
using zqx::img::Filter;
using zqx::img::TiledFilter;

using Inputs = std::map<int, Image>;
using Memory = std::vector<unsigned char>;

/// What an image looked like when the operation got it; images do not outlive the call.
struct Seen {
    const void* data;
    std::size_t width;
    std::size_t height;
    Image::Format format;
    std::size_t pixelStride;
    std::size_t rowStride;
};

Seen look(const Image& image) {
    return {image.getDataPtr(), image.getWidth(),           image.getHeight(),
            image.getFormat(),  image.getBytePixelStride(), image.getByteRowStride()};
}

bool operator==(const Seen& a, const Seen& b) {
    return a.data == b.data && a.width == b.width && a.height == b.height && a.format == b.format &&
           a.pixelStride == b.pixelStride && a.rowStride == b.rowStride;
}

void PrintTo(const Seen& seen, std::ostream* stream) {
    *stream << seen.width << " x " << seen.height << " at " << seen.data << ", format " << seen.format << ", strides "
            << seen.pixelStride << " and " << seen.rowStride;
}

struct Call {
    std::map<int, Seen> inputs;
    Seen output;
    std::thread::id thread;
};

/// Runs an operation given as a function, and writes down what it is called with.
class ProbeFilter : public TiledFilter {
public:
    using Operation = std::function<bool(std::size_t number, const Inputs& inputs, Image& output)>;

    explicit ProbeFilter(Operation operation) : mOperation(std::move(operation)) {}
    ProbeFilter(const Tiling& tiling, Operation operation)
        : TiledFilter(tiling.size, tiling.overlap, tiling.margin), mOperation(std::move(operation)) {}

    std::vector<Call> calls;

    void setMessage(const std::string& message) { mErrorMessage = message; }
    const Inputs& inputs() const { return mInputs; }
    const Image& output() const { return mOutImage; }

protected:
    bool filterRegion(const Inputs& inputs, Image& output) override {
        Call call{{}, look(output), std::this_thread::get_id()};
        for (const auto& [key, image] : inputs) {
            call.inputs.emplace(key, look(image));
        }
        calls.push_back(call);
        return mOperation(calls.size() - 1, inputs, output);
    }

private:
    Operation mOperation;
};

bool succeed(std::size_t, const Inputs&, Image&) {
    return true;
}

constexpr int KEY = 4;

/// A surface with the pixel format of the whole picture, which the view of a region does not tell.
Surface getRegion(const Image& view, Image::Format format) {
    Surface surface = getSurface(view);
    surface.format = format;
    return surface;
}

/// An operation whose result tells tiles and positions apart: the source moved by a step for each tile. Bytes stay
/// between 32 and 63, so that four of them make a finite float wherever they are taken for one.
void shift(const Surface& source, const Surface& target, std::size_t number) {
    for (std::size_t y = 0; y < target.height; ++y) {
        for (std::size_t x = 0; x < target.width; ++x) {
            for (int e = 0; e < oracle::facts(target.format).channels; ++e) {
                if (oracle::facts(target.format).isFloat) {
                    const float value = oracle::loadFloat(source.at(x, y) + 4 * e);
                    oracle::storeFloat(target.at(x, y) + 4 * e, value + 0.37F * static_cast<float>(number));
                } else {
                    const std::size_t value = source.at(x, y)[e] + 11 * number;
                    target.at(x, y)[e] = static_cast<unsigned char>(32 + value % 32);
                }
            }
        }
    }
}

ProbeFilter::Operation shifting(Image::Format format) {
    return [format](std::size_t number, const Inputs& inputs, Image& output) {
        shift(getRegion(inputs.at(KEY), format), getRegion(output, format), number);
        return true;
    };
}

/// Like shifting, up to a tile that fails after it has written its result.
ProbeFilter::Operation failingAt(std::size_t last, Image::Format format) {
    return [=](std::size_t number, const Inputs& inputs, Image& output) {
        shifting(format)(number, inputs, output);
        return number != last;
    };
}

/// What the output holds before a run: floats that no tile writes, bytes that make a finite float.
void prefill(const Surface& output) {
    fillElements(
        output, [](std::size_t x, std::size_t y, int e) { return static_cast<unsigned char>(32 + (x + y + e) % 32); },
        [](std::size_t x, std::size_t y, int e) {
            return -1000.0F - static_cast<float>(x) - 100.0F * static_cast<float>(y) - 0.25F * static_cast<float>(e);
        });
}

/// Source, output and the output as it should become: with strides of their own.
struct Scene {
    Scene(std::size_t width, std::size_t height, Image::Format format, Gaps outputGaps = {}, Gaps sourceGaps = {4, 8})
        : source(width, height, format, sourceGaps), output(width, height, format, outputGaps),
          expected(width, height, format) {
        fillPhoto(source.surface(), 5);
        prefill(output.surface());
        prefill(expected.surface);
    }

    void give(Filter& filter) {
        filter.setInput(KEY, source.image());
        filter.setOutput(output.image());
    }
    /// The first so many tiles of the literal run.
    void expect(const Tiling& tiling, std::size_t count = SIZE_MAX) {
        oracle::runTiled(
            expected.surface, tiling,
            [this](std::size_t number, const Rectangle& tile, const Surface& target) {
                shift(oracle::cut(source.surface(), tile), target, number);
            },
            count);
    }
    bool run(const Tiling& tiling) {
        ProbeFilter filter(tiling, shifting(output.image().getFormat()));
        give(filter);
        return filter.execute();
    }
    void verify() const {
        EXPECT_TRUE(samePixels(output.surface(), expected.surface));
        EXPECT_TRUE(output.guardsIntact());
        EXPECT_TRUE(source.guardsIntact());
    }

    GuardedImage source;
    GuardedImage output;
    oracle::Picture expected;
};

std::string describe(std::size_t width, std::size_t height, const Tiling& tiling) {
    return std::to_string(width) + " x " + std::to_string(height) + ", tile " + std::to_string(tiling.size) +
           ", overlap " + std::to_string(tiling.overlap) + ", margin " + std::to_string(tiling.margin);
}

void expectLiteralRun(std::size_t width, std::size_t height, const Tiling& tiling, Image::Format format, Gaps gaps) {
    SCOPED_TRACE(getName(format) + " " + describe(width, height, tiling));
    Scene scene(width, height, format, gaps);
    scene.expect(tiling);
    EXPECT_TRUE(scene.run(tiling));
    scene.verify();
}

template <typename Visit>
void forAllTilings(Visit visit) {
    for (const std::size_t size : {1U, 2U, 5U, 8U, 16U}) {
        for (const std::size_t overlap : {0U, 1U, 2U, 3U, 4U, 7U, 8U, 20U}) {
            for (const std::size_t margin : {0U, 1U, 2U, 3U, 6U, 40U}) {
                visit(Tiling{size, overlap, margin});
            }
        }
    }
}

/// The first channel of an output of one row or one column, where every tile is filled with a value of its own.
std::vector<float> mergedRow(std::size_t width, std::size_t height, const Tiling& tiling, std::vector<float> values,
                             float before = -1.0F) {
    FloatPicture picture(Image::RGB32F, height, std::vector<float>(3 * width * height, before));
    ProbeFilter filter(tiling, [&](std::size_t number, const Inputs&, Image& output) {
        fillElements(
            getSurface(output), [](auto, auto, auto) { return static_cast<unsigned char>(0); },
            [&](auto, auto, auto) { return values.at(number); });
        return true;
    });
    filter.setInput(KEY, picture.image());
    filter.setOutput(picture.image());
    EXPECT_TRUE(filter.execute());
    EXPECT_EQ(values.size(), filter.calls.size());
    std::vector<float> row;
    for (std::size_t i = 0; i < width * height; ++i) {
        row.push_back(picture[3 * i]);
        EXPECT_TRUE(sameFloat(picture[3 * i], picture[3 * i + 1]) && sameFloat(picture[3 * i], picture[3 * i + 2]));
    }
    return row;
}

std::vector<float> repeated(std::initializer_list<std::pair<std::size_t, float>> runs) {
    std::vector<float> values;
    for (const auto& [count, value] : runs) {
        values.insert(values.end(), count, value);
    }
    return values;
}

TEST(TiledFilterTest, IsAnAbstractFilter) {
    static_assert(std::is_base_of_v<Filter, TiledFilter>);
    static_assert(std::is_abstract_v<TiledFilter>);
    static_assert(!std::has_virtual_destructor_v<TiledFilter>);
}

TEST(TiledFilterTest, FailsWithoutInputs) {
    GuardedImage image(8, 8, Image::RGB32F);
    ProbeFilter filter({4, 2, 0}, succeed);
    filter.setMessage("earlier");
    filter.setSrcImage(image.image());
    filter.setOutput(image.image());
    EXPECT_FALSE(filter.execute());
    EXPECT_TRUE(filter.calls.empty());
    EXPECT_EQ("earlier", filter.getErrorMessage());
    EXPECT_EQ(GuardedImage(8, 8, Image::RGB32F).memory(), image.memory());
}

TEST(TiledFilterTest, FailsWithoutOutputPixels) {
    GuardedImage image(8, 8, Image::RGB32F);
    ProbeFilter filter({4, 2, 0}, succeed);
    filter.setMessage("earlier");
    filter.setInput(KEY, image.image());
    EXPECT_FALSE(filter.execute());
    filter.setOutput(Image(nullptr, 8, 8, Image::RGB32F, 0));
    EXPECT_FALSE(filter.execute());
    EXPECT_TRUE(filter.calls.empty());
    EXPECT_EQ("earlier", filter.getErrorMessage());
}

TEST(TiledFilterTest, MessageIsTheOperationsToSet) {
    Scene scene(8, 8, Image::RGB32F);
    for (const bool result : {true, false}) {
        for (const std::size_t size : {8U, 4U}) {
            ProbeFilter* self = nullptr;
            ProbeFilter filter({size, 2, 0}, [&](std::size_t number, const Inputs&, Image&) {
                if (number == 0) {
                    EXPECT_EQ("earlier", self->getErrorMessage());
                    self->setMessage("from the operation");
                }
                return result;
            });
            self = &filter;
            filter.setMessage("earlier");
            scene.give(filter);
            EXPECT_EQ(result, filter.execute());
            EXPECT_EQ("from the operation", filter.getErrorMessage());
        }
    }
}

TEST(TiledFilterTest, OutputOfOneTileIsFilteredByOneCall) {
    GuardedImage source(8, 8, Image::SBGR8, {1, 5});
    GuardedImage other(3, 2, Image::GRAY32F, {0, 4});
    for (const Image::Format format : ALL_FORMATS) {
        GuardedImage output(8, 8, format, {4, 12});
        ProbeFilter filter({8, 2, 1}, [&](std::size_t, const Inputs& inputs, Image& target) {
            EXPECT_EQ(&filter.inputs(), &inputs);
            EXPECT_EQ(&filter.output(), &target);
            return true;
        });
        filter.setInput(-2, source.image());
        filter.setInput(7, other.image());
        filter.setOutput(output.image());
        EXPECT_TRUE(filter.execute());
        ASSERT_EQ(1U, filter.calls.size());
        ASSERT_EQ(2U, filter.calls[0].inputs.size());
        EXPECT_EQ(look(source.image()), filter.calls[0].inputs.at(-2));
        EXPECT_EQ(look(other.image()), filter.calls[0].inputs.at(7));
        EXPECT_EQ(look(output.image()), filter.calls[0].output);
    }
}

TEST(TiledFilterTest, FailureOfTheOneCallIsTheResult) {
    Scene scene(8, 8, Image::RGB32F);
    ProbeFilter filter({8, 2, 1}, failingAt(0, Image::RGB32F));
    scene.give(filter);
    EXPECT_FALSE(filter.execute());
    EXPECT_EQ(1U, filter.calls.size());
}

TEST(TiledFilterTest, OnePixelMoreThanATileMakesTiles) {
    const auto callsFor = [](std::size_t width, std::size_t height) {
        Scene scene(width, height, Image::RGB32F);
        ProbeFilter filter({8, 2, 0}, succeed);
        scene.give(filter);
        EXPECT_TRUE(filter.execute());
        return filter.calls.size();
    };
    EXPECT_EQ(1U, callsFor(8, 8));
    EXPECT_EQ(2U, callsFor(9, 8));
    EXPECT_EQ(2U, callsFor(8, 9));
    EXPECT_EQ(4U, callsFor(9, 9));
    EXPECT_EQ(2U, callsFor(9, 1));
    EXPECT_EQ(2U, callsFor(1, 9));
}

TEST(TiledFilterTest, DefaultTilesOfALargeOutput) {
    GuardedImage image(2000, 1500, Image::GRAY8);
    ProbeFilter filter(succeed);
    filter.setInput(KEY, image.image());
    filter.setOutput(image.image());
    EXPECT_TRUE(filter.execute());
    const Rectangle tiles[] = {{0, 0, 1024, 1024}, {992, 0, 1008, 1024}, {0, 992, 1024, 508}, {992, 992, 1008, 508}};
    ASSERT_EQ(4U, filter.calls.size());
    for (std::size_t i = 0; i < 4; ++i) {
        const Seen& input = filter.calls[i].inputs.at(KEY);
        EXPECT_EQ(image.image().getPixelPtr(tiles[i].x, tiles[i].y), input.data);
        EXPECT_EQ(tiles[i].width, input.width);
        EXPECT_EQ(tiles[i].height, input.height);
    }
}

TEST(TiledFilterTest, InputsAreViewsOfTheTileUnderTheirKeys) {
    GuardedImage photo(13, 11, Image::RGB32F, {4, 8});
    GuardedImage albedo(13, 11, Image::SBGRA8, {0, 7});
    GuardedImage depth(13, 11, Image::GRAY32F);
    GuardedImage output(13, 11, Image::RGB32F, {0, 4});
    for (const std::size_t overlap : {0U, 2U}) {
        const Tiling tiling{5, overlap, 1};
        ProbeFilter filter(tiling, succeed);
        filter.setInput(7, depth.image());
        filter.setInput(-3, photo.image());
        filter.setInput(0, albedo.image());
        filter.setOutput(output.image());
        EXPECT_TRUE(filter.execute());
        const std::vector<Rectangle> tiles = oracle::getTiles(13, 11, tiling);
        ASSERT_EQ(tiles.size(), filter.calls.size());
        for (std::size_t i = 0; i < tiles.size(); ++i) {
            const auto getView = [&](const Image& image) {
                return Seen{image.getPixelPtr(tiles[i].x, tiles[i].y),
                            tiles[i].width,
                            tiles[i].height,
                            Image::GRAY8,
                            image.getBytePixelStride(),
                            image.getByteRowStride()};
            };
            ASSERT_EQ(3U, filter.calls[i].inputs.size());
            EXPECT_EQ(getView(photo.image()), filter.calls[i].inputs.at(-3));
            EXPECT_EQ(getView(albedo.image()), filter.calls[i].inputs.at(0));
            EXPECT_EQ(getView(depth.image()), filter.calls[i].inputs.at(7));
        }
    }
}

TEST(TiledFilterTest, WithoutOverlapTheOutputIsAViewOfTheTile) {
    for (const Image::Format format : ALL_FORMATS) {
        Scene scene(13, 11, format, {4, 12});
        const Image& whole = scene.output.image();
        const Tiling tiling{5, 0, 2};
        ProbeFilter filter(tiling, succeed);
        scene.give(filter);
        EXPECT_TRUE(filter.execute());
        const std::vector<Rectangle> tiles = oracle::getTiles(13, 11, tiling);
        ASSERT_EQ(9U, tiles.size());
        ASSERT_EQ(9U, filter.calls.size());
        for (std::size_t i = 0; i < tiles.size(); ++i) {
            const Seen view = {whole.getPixelPtr(tiles[i].x, tiles[i].y),
                               tiles[i].width,
                               tiles[i].height,
                               Image::GRAY8,
                               whole.getBytePixelStride(),
                               whole.getByteRowStride()};
            EXPECT_EQ(view, filter.calls[i].output);
        }
    }
}

TEST(TiledFilterTest, WithOverlapTheOutputIsOneBufferForAllTiles) {
    const std::pair<std::size_t, std::size_t> sizes[] = {{13, 11}, {13, 3}, {3, 11}};
    for (const auto& [width, height] : sizes) {
        for (const Image::Format format : ALL_FORMATS) {
            SCOPED_TRACE(getName(format));
            Scene scene(width, height, format, {0, 12});
            const Tiling tiling{5, 2, 1};
            ProbeFilter filter(tiling, succeed);
            scene.give(filter);
            EXPECT_TRUE(filter.execute());
            const std::vector<Rectangle> tiles = oracle::getTiles(width, height, tiling);
            ASSERT_EQ(tiles.size(), filter.calls.size());
            const void* const buffer = filter.calls[0].output.data;
            ASSERT_NE(nullptr, buffer);
            for (std::size_t i = 0; i < tiles.size(); ++i) {
                const std::size_t pixel = oracle::pixelSize(format);
                const Seen result = {buffer, tiles[i].width, tiles[i].height,
                                     format, pixel,          pixel * std::min<std::size_t>(width, 5)};
                EXPECT_EQ(result, filter.calls[i].output);
            }
        }
    }
}

TEST(TiledFilterTest, BufferStartsZeroedAndKeepsWhatItHeld) {
    const auto getSum = [](const Image& image) {
        const auto* bytes = static_cast<const unsigned char*>(image.getDataPtr());
        return std::accumulate(bytes, bytes + image.getByteRowStride() * image.getHeight(), std::size_t{0});
    };
    std::vector<std::size_t> sums;
    ProbeFilter filter({4, 1, 0}, [&](std::size_t number, const Inputs&, Image& output) {
        if (number == 0) {
            sums.push_back(getSum(output));
        }
        fillElements(
            getSurface(output), [](auto, auto, auto) { return static_cast<unsigned char>(1); },
            [](auto, auto, auto) { return 0.0F; });
        return true;
    });
    for (const std::size_t height : {2U, 4U, 3U, 4U}) { // buffers of 8, 16, 12 and 16 bytes
        GuardedImage image(7, height, Image::GRAY8);
        filter.calls.clear();
        filter.setInput(KEY, image.image());
        filter.setOutput(image.image());
        EXPECT_TRUE(filter.execute());
    }
    EXPECT_EQ((std::vector<std::size_t>{0, 8, 12, 12}), sums);
}

TEST(TiledFilterTest, SmallerRunReusesTheMemoryOfALargerOne) {
    Scene large(20, 20, Image::RGB32F);
    Scene small(20, 3, Image::RGB32F);
    ProbeFilter filter({8, 2, 0}, succeed);
    large.give(filter);
    EXPECT_TRUE(filter.execute());
    small.give(filter);
    EXPECT_TRUE(filter.execute());
    large.give(filter);
    EXPECT_TRUE(filter.execute());
    for (const Call& call : filter.calls) {
        EXPECT_EQ(filter.calls.front().output.data, call.output.data);
    }
}

TEST(TiledFilterTest, RunsOfAnySizeFollowEachOther) {
    const Tiling tiling{8, 5, 1};
    ProbeFilter filter(tiling, shifting(Image::RGB32F));
    const std::pair<std::size_t, std::size_t> sizes[] = {{9, 2}, {30, 30}, {2, 9}, {8, 8}, {30, 9}, {9, 30}};
    for (const auto& [width, height] : sizes) {
        SCOPED_TRACE(describe(width, height, tiling));
        Scene scene(width, height, Image::RGB32F, {0, 12});
        scene.expect(tiling);
        scene.give(filter);
        filter.calls.clear();
        EXPECT_TRUE(filter.execute());
        scene.verify();
    }
}

TEST(TiledFilterTest, RunsOnTheCallingThreadInOrder) {
    Scene scene(20, 20, Image::RGB32F);
    ProbeFilter filter({8, 2, 0}, succeed);
    scene.give(filter);
    EXPECT_TRUE(filter.execute());
    ASSERT_EQ(9U, filter.calls.size());
    const std::size_t starts[] = {0, 6, 12};
    for (std::size_t i = 0; i < 9; ++i) {
        EXPECT_EQ(std::this_thread::get_id(), filter.calls[i].thread);
        EXPECT_EQ(scene.source.image().getPixelPtr(starts[i % 3], starts[i / 3]), filter.calls[i].inputs.at(KEY).data);
    }
}

TEST(TiledFilterTest, NeighboursAreCrossFadedBetweenTheMargins) {
    const std::vector<float> expected = {0, 0, 0, 10, 20, 30, 30, 30};
    EXPECT_EQ(expected, mergedRow(8, 1, {6, 4, 1}, {0, 30}));
    EXPECT_EQ(expected, mergedRow(1, 8, {6, 4, 1}, {0, 30}));
}

TEST(TiledFilterTest, WithoutMarginTheWholeOverlapIsFaded) {
    EXPECT_EQ((std::vector<float>{0, 0, 10, 20, 30, 40, 50, 50}), mergedRow(8, 1, {6, 4, 0}, {0, 50}));
}

TEST(TiledFilterTest, MarginOfHalfTheOverlapGivesASharpSeam) {
    EXPECT_EQ((std::vector<float>{0, 0, 0, 0, 30, 30, 30, 30}), mergedRow(8, 1, {6, 4, 2}, {0, 30}));
}

TEST(TiledFilterTest, LargerMarginLeavesTheSeamUnwritten) {
    EXPECT_EQ((std::vector<float>{0, 0, 0, -1, -1, 30, 30, 30}), mergedRow(8, 1, {6, 4, 3}, {0, 30}));
    EXPECT_EQ((std::vector<float>{0, 0, 0, -1, 30, 30, 30}), mergedRow(7, 1, {5, 3, 2}, {0, 30}));
}

TEST(TiledFilterTest, MarginBeyondTheTileLeavesEverythingUnwritten) {
    EXPECT_EQ(std::vector<float>(8, -1.0F), mergedRow(8, 1, {6, 4, 6}, {0, 30}));
    EXPECT_EQ(std::vector<float>(8, -1.0F), mergedRow(8, 1, {6, 4, 1000}, {0, 30}));
    EXPECT_EQ(std::vector<float>(8, -1.0F), mergedRow(8, 1, {6, 4, std::numeric_limits<std::size_t>::max()}, {0, 30}));
}

TEST(TiledFilterTest, DefaultsFadeOverSixteenPixels) {
    std::vector<float> expected(1000, 0.0F);
    for (int i = 1; i <= 16; ++i) {
        expected.push_back(static_cast<float>(i));
    }
    expected.resize(1500, 17.0F);
    FloatPicture picture(Image::RGB32F, 1, std::vector<float>(3 * 1500, -1.0F));
    ProbeFilter filter([](std::size_t number, const Inputs&, Image& output) {
        fillElements(
            getSurface(output), [](auto, auto, auto) { return static_cast<unsigned char>(0); },
            [&](auto, auto, auto) { return 17.0F * static_cast<float>(number); });
        return true;
    });
    filter.setInput(KEY, picture.image());
    filter.setOutput(picture.image());
    EXPECT_TRUE(filter.execute());
    for (std::size_t x = 0; x < expected.size(); ++x) {
        EXPECT_EQ(expected[x], picture[3 * x]) << "column " << x;
    }
}

TEST(TiledFilterTest, MarginTwentyOfOverlapThirtyTwoLeavesSeamsOfEightPixels) {
    const std::vector<float> expected = repeated({{44, 1}, {8, -1}, {24, 2}, {8, -1}, {44, 3}});
    EXPECT_EQ(expected, mergedRow(128, 1, {64, 32, 20}, {1, 2, 3}));
    EXPECT_EQ(expected, mergedRow(1, 128, {64, 32, 20}, {1, 2, 3}));
}

TEST(TiledFilterTest, CornerIsFadedByTheNearerEdge) {
    const std::vector<float> expected = {
        0, 0, 0, 0,  0,  0,  0,  0,  //
        0, 0, 0, 0,  0,  0,  0,  0,  //
        0, 0, 0, 0,  0,  0,  0,  0,  //
        0, 0, 0, 10, 10, 10, 10, 10, //
        0, 0, 0, 10, 20, 20, 20, 20, //
        0, 0, 0, 10, 20, 30, 30, 30, //
        0, 0, 0, 10, 20, 30, 30, 30, //
        0, 0, 0, 10, 20, 30, 30, 30, //
    };
    EXPECT_EQ(expected, mergedRow(8, 8, {6, 4, 1}, {0, 0, 0, 30}));
}

TEST(TiledFilterTest, TileAtTheBorderKeepsItsEdge) {
    const std::vector<float> row = mergedRow(8, 8, {6, 4, 2}, {1, 2, 3, 4});
    std::vector<float> expected;
    for (int y = 0; y < 8; ++y) {
        const std::vector<float> line = repeated({{4, y < 4 ? 1.0F : 3.0F}, {4, y < 4 ? 2.0F : 4.0F}});
        expected.insert(expected.end(), line.begin(), line.end());
    }
    EXPECT_EQ(expected, row);
}

TEST(TiledFilterTest, OverlapOfTheTileSizeOrMoreFiltersTheFirstTileAlone) {
    EXPECT_EQ(repeated({{5, 7}, {3, -1}}), mergedRow(8, 1, {6, 6, 1}, {7}));
    EXPECT_EQ(repeated({{6, 7}, {2, -1}}), mergedRow(8, 1, {6, 9, 0}, {7}));
}

TEST(TiledFilterTest, AnAbsurdOverlapStaysWithinTheOutput) {
    constexpr std::size_t SIZE = 30;
    std::vector<float> source(SIZE * SIZE * 3, 0.5F);
    GuardedImage target(SIZE, SIZE, Image::RGB32F);
    // The step from tile to tile wraps around to 11 pixels, while the tiles are told to share nearly all there are.
    ProbeFilter filter({10, std::numeric_limits<std::size_t>::max(), 8}, shifting(Image::RGB32F));
    filter.setInput(KEY, Image(source.data(), SIZE, SIZE, Image::RGB32F, 0));
    filter.setOutput(target.image());
    EXPECT_TRUE(filter.execute());
    EXPECT_EQ(9, filter.calls.size());
    EXPECT_TRUE(target.guardsIntact());
}

TEST(TiledFilterTest, GapsBetweenThePixelsOfTheOutputAreKept) {
    constexpr std::size_t SIZE = 20;
    std::vector<float> source(SIZE * SIZE * 3, 0.5F);
    GuardedImage target(SIZE, SIZE, Image::RGB32F, {4, 0});
    const auto fillHalf = [](std::size_t, const Inputs&, Image& output) {
        for (std::size_t y = 0; y < output.getHeight(); ++y) {
            std::fill_n(static_cast<float*>(output.getRowPtr(y)), output.getWidth() * 3, 0.5F);
        }
        return true;
    };
    ProbeFilter filter({12, 4, 2}, fillHalf); // no fade: all pixels are copied
    filter.setInput(KEY, Image(source.data(), SIZE, SIZE, Image::RGB32F, 0));
    filter.setOutput(target.image());
    ASSERT_TRUE(filter.execute());
    EXPECT_TRUE(target.guardsIntact());
    for (std::size_t y = 0; y < SIZE; ++y) {
        for (std::size_t x = 0; x < SIZE; ++x) {
            for (std::size_t channel = 0; channel < 3; ++channel) {
                ASSERT_EQ(0.5F, oracle::loadFloat(target.surface().at(x, y) + 4 * channel)) << x << ", " << y;
            }
        }
    }
}

TEST(TiledFilterTest, TileSizeZeroFiltersOneEmptyRegion) {
    Scene scene(8, 8, Image::RGB32F);
    for (const std::size_t overlap : {0U, 4U}) {
        ProbeFilter filter({0, overlap, 1}, succeed);
        scene.give(filter);
        EXPECT_TRUE(filter.execute());
        ASSERT_EQ(1U, filter.calls.size());
        EXPECT_EQ(0U, filter.calls[0].output.width);
        EXPECT_EQ(0U, filter.calls[0].output.height);
        scene.verify();
    }
}

TEST(TiledFilterTest, NotANumberSpreadsOverTheFadeAndNoFurther) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const std::vector<float> fresh = mergedRow(8, 1, {6, 4, 1}, {0, nan});
    const std::vector<float> before = mergedRow(8, 1, {6, 4, 1}, {nan, 30});
    for (std::size_t x = 0; x < 8; ++x) {
        EXPECT_EQ(x >= 3, std::isnan(fresh[x])) << x;
        EXPECT_EQ(x < 5, std::isnan(before[x])) << x;
    }
}

TEST(TiledFilterTest, InfinityFadesToInfinity) {
    const float inf = std::numeric_limits<float>::infinity();
    EXPECT_EQ((std::vector<float>{0, 0, 0, inf, inf, inf, inf, inf}), mergedRow(8, 1, {6, 4, 1}, {0, inf}));
    EXPECT_EQ((std::vector<float>{inf, inf, inf, inf, inf, 30, 30, 30}), mergedRow(8, 1, {6, 4, 1}, {inf, 30}));
    const std::vector<float> opposite = mergedRow(8, 1, {6, 4, 1}, {-inf, inf});
    EXPECT_TRUE(std::isnan(opposite[3]) && std::isnan(opposite[4]));
    EXPECT_EQ(-inf, opposite[2]);
    EXPECT_EQ(inf, opposite[5]);
}

TEST(TiledFilterTest, FadeIsComputedInDoublePrecision) {
    const float largest = std::numeric_limits<float>::max();
    EXPECT_EQ(std::vector<float>(8, largest), mergedRow(8, 1, {6, 4, 1}, {largest, largest}));
    // Single precision would give 9.000001 and 17.000002.
    EXPECT_EQ((std::vector<float>{1, 1, 1, 9, 17, 25, 25, 25}), mergedRow(8, 1, {6, 4, 1}, {1, 25}));
}

TEST(TiledFilterTest, EveryTilingIsTheLiteralRun) {
    const std::pair<std::size_t, std::size_t> sizes[] = {{1, 1}, {17, 1}, {1, 9}, {7, 5}, {19, 23}};
    for (const auto& [width, height] : sizes) {
        forAllTilings([&, w = width, h = height](const Tiling& tiling) {
            expectLiteralRun(w, h, tiling, Image::RGB32F, {});
            expectLiteralRun(w, h, tiling, Image::RGB32F, {0, 20});
        });
    }
}

TEST(TiledFilterTest, EveryFormatIsWrittenInPlaceWithoutOverlap) {
    for (const Image::Format format : ALL_FORMATS) {
        for (const std::size_t size : {1U, 4U, 7U, 30U}) {
            expectLiteralRun(13, 11, {size, 0, 3}, format, {});
            expectLiteralRun(13, 11, {size, 0, 3}, format, {4, 12});
        }
    }
}

TEST(TiledFilterTest, FadeOfFourFloatsLeavesTheFourth) {
    forAllTilings([](const Tiling& tiling) { expectLiteralRun(19, 11, tiling, Image::RGBA32F, {0, 16}); });
    FloatPicture picture(Image::RGBA32F, 1, std::vector<float>(4 * 8, -1.0F));
    ProbeFilter filter({6, 4, 1}, [](std::size_t number, const Inputs&, Image& output) {
        fillElements(
            getSurface(output), [](auto, auto, auto) { return static_cast<unsigned char>(0); },
            [&](auto, auto, int e) { return (e == 3 ? 7.0F : 30.0F) * static_cast<float>(number); });
        return true;
    });
    filter.setInput(KEY, picture.image());
    filter.setOutput(picture.image());
    EXPECT_TRUE(filter.execute());
    std::vector<float> colour;
    std::vector<float> alpha;
    for (std::size_t x = 0; x < 8; ++x) {
        colour.push_back(picture[4 * x + 2]);
        alpha.push_back(picture[4 * x + 3]);
    }
    EXPECT_EQ((std::vector<float>{0, 0, 0, 10, 20, 30, 30, 30}), colour);
    EXPECT_EQ((std::vector<float>{0, 0, 0, 0, 0, 7, 7, 7}), alpha);
}

TEST(TiledFilterTest, NarrowPixelsAreFadedWithinTheRow) {
    forAllTilings([](const Tiling& tiling) {
        expectLiteralRun(19, 11, tiling, Image::GRAY32F, {0, 8});
        expectLiteralRun(19, 11, tiling, Image::RGBA8, {0, 8});
    });
}

TEST(TiledFilterTest, NoFormatIsWrittenOutsideItsRows) {
    for (const Image::Format format : ALL_FORMATS) {
        forAllTilings([=](const Tiling& tiling) {
            SCOPED_TRACE(getName(format) + " " + describe(11, 7, tiling));
            for (const Gaps gaps : {Gaps{}, Gaps{0, 5}}) {
                Scene scene(11, 7, format, gaps);
                EXPECT_TRUE(scene.run(tiling));
                EXPECT_TRUE(scene.output.guardsIntact());
            }
        });
    }
}

TEST(TiledFilterTest, OutputMayBeAViewOfAnImage) {
    GuardedImage frame(17, 12, Image::RGB32F, {0, 4});
    prefill(frame.surface());
    GuardedImage before(17, 12, Image::RGB32F, {0, 4});
    before.setMemory(frame.memory());
    const Rectangle inside = {3, 2, 11, 8};
    ProbeFilter filter({5, 2, 0}, succeed);
    filter.setInput(KEY, frame.image());
    filter.setOutput(frame.image().getSubImage(inside.x, inside.y, inside.width, inside.height));
    EXPECT_TRUE(filter.execute());
    for (std::size_t y = 0; y < 12; ++y) {
        for (std::size_t x = 0; x < 17; ++x) {
            if (x < 3 || x >= 14 || y < 2 || y >= 10) {
                EXPECT_EQ(0, std::memcmp(before.surface().at(x, y), frame.surface().at(x, y), 12)) << x << ", " << y;
            }
        }
    }
    EXPECT_TRUE(frame.guardsIntact());
}

TEST(TiledFilterTest, UnknownFormatRunsAndWritesNothing) {
    unsigned char memory[64] = {};
    for (const Image::Format format : UNKNOWN_FORMATS) {
        ProbeFilter filter({4, 2, 0}, succeed);
        filter.setInput(KEY, Image(memory, 7, 7, Image::GRAY8, 0));
        filter.setOutput(Image(memory, 7, 7, format, 0));
        EXPECT_TRUE(filter.execute());
        EXPECT_EQ(9U, filter.calls.size());
        EXPECT_EQ(0, std::accumulate(std::begin(memory), std::end(memory), 0));
    }
}

TEST(TiledFilterTest, FailureEndsTheRunAndKeepsEarlierTiles) {
    const Tiling tiling{8, 4, 1};
    const std::size_t count = oracle::getTiles(19, 15, tiling).size();
    ASSERT_EQ(12U, count);
    for (std::size_t last = 0; last < count; ++last) {
        SCOPED_TRACE("failure of tile " + std::to_string(last));
        Scene scene(19, 15, Image::RGB32F, {0, 8});
        scene.expect(tiling, last);
        ProbeFilter filter(tiling, failingAt(last, Image::RGB32F));
        scene.give(filter);
        EXPECT_FALSE(filter.execute());
        EXPECT_EQ(last + 1, filter.calls.size());
        EXPECT_EQ("", filter.getErrorMessage());
        scene.verify();
    }
}

TEST(TiledFilterTest, FailureWithoutOverlapEndsTheRunToo) {
    const Tiling tiling{8, 0, 1};
    for (std::size_t last = 0; last < 6; ++last) {
        SCOPED_TRACE("failure of tile " + std::to_string(last));
        Scene scene(19, 15, Image::SRGB8);
        scene.expect(tiling, last + 1); // the failing operation writes in place
        ProbeFilter filter(tiling, failingAt(last, Image::SRGB8));
        scene.give(filter);
        EXPECT_FALSE(filter.execute());
        EXPECT_EQ(last + 1, filter.calls.size());
        scene.verify();
    }
}

TEST(TiledFilterTest, RunsAgainAfterAFailure) {
    const Tiling tiling{8, 4, 1};
    Scene scene(19, 15, Image::RGB32F);
    scene.expect(tiling);
    bool fails = true;
    ProbeFilter filter(tiling, [&](std::size_t number, const Inputs& inputs, Image& output) {
        return shifting(Image::RGB32F)(number, inputs, output) && !fails;
    });
    scene.give(filter);
    EXPECT_FALSE(filter.execute());
    fails = false;
    filter.calls.clear();
    EXPECT_TRUE(filter.execute());
    scene.verify();
}

/// Filters that run over the same image and fill their buffer with twos.
class TiledFilterCopyTest : public testing::Test {
protected:
    static constexpr Tiling TILING = {6, 4, 1};

    TiledFilterCopyTest() { mImage.setMemory(Memory(mImage.memory().size(), 0)); }

    static bool fillWithTwos(std::size_t, const Inputs&, Image& output) {
        std::fill_n(static_cast<unsigned char*>(output.getDataPtr()), output.getHeight() * output.getByteRowStride(),
                    static_cast<unsigned char>(2));
        return true;
    }

    /// Runs over the image and returns where the buffer is and what its first byte was before.
    std::pair<const void*, int> run(ProbeFilter& filter) {
        filter.setInput(KEY, mImage.image());
        filter.setOutput(mImage.image());
        filter.calls.clear();
        mFirstByte = -1;
        EXPECT_TRUE(filter.execute());
        EXPECT_EQ(9U, filter.calls.size()); // three by three: the sizes came along
        return {filter.calls.at(0).output.data, mFirstByte};
    }

    /// Takes down the first byte of the buffer at the first tile, then fills it.
    ProbeFilter::Operation peeking() {
        return [this](std::size_t number, const Inputs& inputs, Image& output) {
            if (number == 0) {
                mFirstByte = *static_cast<const unsigned char*>(output.getDataPtr());
            }
            return fillWithTwos(number, inputs, output);
        };
    }

    GuardedImage mImage{10, 10, Image::RGB32F};
    int mFirstByte = -1;
};

TEST_F(TiledFilterCopyTest, CopyHasABufferOfItsOwnWithTheSameBytes) {
    ProbeFilter source(TILING, peeking());
    const auto [buffer, fresh] = run(source);
    EXPECT_EQ(0, fresh);
    ProbeFilter copy(source);
    const auto [copied, held] = run(copy);
    EXPECT_NE(buffer, copied);
    EXPECT_EQ(2, held);
    EXPECT_EQ(buffer, run(source).first);
}

TEST_F(TiledFilterCopyTest, CopyAssignmentReplacesSizesAndBuffer) {
    ProbeFilter source(TILING, peeking());
    const void* const buffer = run(source).first;
    ProbeFilter target(Tiling{3, 0, 0}, succeed);
    target = source;
    const auto [copied, held] = run(target);
    EXPECT_NE(buffer, copied);
    EXPECT_EQ(2, held);
    EXPECT_EQ(buffer, run(source).first);
}

TEST_F(TiledFilterCopyTest, MoveTakesTheBufferAndLeavesAnEmptyOne) {
    ProbeFilter source(TILING, peeking());
    const void* const buffer = run(source).first;
    ProbeFilter moved(std::move(source));
    EXPECT_TRUE(source.inputs().empty()); // NOLINT: the state left behind is the point
    EXPECT_FALSE(source.execute());
    const auto [taken, held] = run(moved);
    EXPECT_EQ(buffer, taken);
    EXPECT_EQ(2, held);
    ProbeFilter left(TILING, peeking());
    static_cast<TiledFilter&>(left) = source;
    const auto [grown, zero] = run(left);
    EXPECT_NE(buffer, grown);
    EXPECT_EQ(0, zero);
}

TEST_F(TiledFilterCopyTest, MoveAssignmentTakesSizesAndBuffer) {
    ProbeFilter source(TILING, peeking());
    const void* const buffer = run(source).first;
    ProbeFilter target(Tiling{3, 0, 0}, succeed);
    target = std::move(source);
    EXPECT_TRUE(source.inputs().empty()); // NOLINT: the state left behind is the point
    const auto [taken, held] = run(target);
    EXPECT_EQ(buffer, taken);
    EXPECT_EQ(2, held);
    ProbeFilter left(TILING, peeking());
    static_cast<TiledFilter&>(left) = source;
    EXPECT_EQ(0, run(left).second);
}

TEST_F(TiledFilterCopyTest, CopyViewsTheSameImages) {
    ProbeFilter original(TILING, succeed);
    run(original);
    const ProbeFilter copy(original);
    EXPECT_EQ(look(original.output()), look(copy.output()));
    ASSERT_EQ(1U, copy.inputs().size());
    EXPECT_EQ(look(original.inputs().at(KEY)), look(copy.inputs().at(KEY)));
}

/// Sets the number of OpenMP threads and restores it.
class TiledFilterThreadTest : public testing::Test {
protected:
    void TearDown() override { omp_set_num_threads(mThreads); }

private:
    int mThreads = omp_get_max_threads();
};

TEST_F(TiledFilterThreadTest, EveryFormatHasTheSameBytesOnEveryThreadCount) {
    for (const Image::Format format : ALL_FORMATS) {
        for (const Tiling& tiling : {Tiling{16, 9, 0}, Tiling{16, 9, 2}, Tiling{16, 0, 0}}) {
            SCOPED_TRACE(getName(format) + " " + describe(37, 29, tiling));
            const auto bytesWith = [&](int threads) {
                omp_set_num_threads(threads);
                Scene scene(37, 29, format, {0, 4});
                EXPECT_TRUE(scene.run(tiling));
                return scene.output.memory();
            };
            const Memory alone = bytesWith(1);
            for (const int threads : {2, 3, 7}) {
                EXPECT_TRUE(alone == bytesWith(threads)) << threads << " threads";
            }
        }
    }
}

TEST(TiledFilterTest, SpecialFloatsAreFadedAsTheLiteralRunDoes) {
    for (const Tiling& tiling : {Tiling{9, 6, 0}, Tiling{9, 6, 1}, Tiling{9, 8, 3}}) {
        Scene scene(31, 23, Image::RGB32F);
        fillRandom(scene.source.surface(), 9);
        fillSweep(scene.output.surface());
        fillSweep(scene.expected.surface);
        scene.expect(tiling);
        EXPECT_TRUE(scene.run(tiling));
        scene.verify();
    }
}

} // namespace
