// The filter base: what it holds, what it owns, what its copies share. Freed too often or too seldom, pixels show up
// here under the address sanitizer; without it, the values in them are looked at.
#include <algorithm>
#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <zqx/img/Filter.h>

#include "unit/support/Formats.h"

namespace {

using test::Image;
using zqx::img::Filter;

/// A filter that shows what it holds, and fails while it has no source.
class ProbeFilter : public Filter {
public:
    bool execute() override {
        if (mSrcImage.getDataPtr() == nullptr) {
            mErrorMessage = "no source";
            return false;
        }
        return true;
    }

    const Image& source() const { return mSrcImage; }
    const Image& output() const { return mOutImage; }
    const std::map<int, Image>& inputs() const { return mInputs; }
};

constexpr std::size_t SIDE = 40;

/// A temporary that owns its pixels.
Image owned() {
    return Image(SIDE, SIDE, Image::GRAY8, 1);
}

void fill(const Image& image, unsigned char value) {
    std::fill_n(static_cast<unsigned char*>(image.getDataPtr()), SIDE * SIDE, value);
}

bool holds(const Image& image, unsigned char value) {
    const auto* bytes = static_cast<const unsigned char*>(image.getDataPtr());
    return std::count(bytes, bytes + SIDE * SIDE, value) == static_cast<std::ptrdiff_t>(SIDE * SIDE);
}

/// A filter that owns the pixels of its source, its output and input 3, filled with 1, 2 and 3.
void giveOwnedImages(ProbeFilter& filter) {
    filter.setSrcImage(owned());
    filter.setOutput(owned());
    filter.setInput(3, owned());
    fill(filter.source(), 1);
    fill(filter.output(), 2);
    fill(filter.inputs().at(3), 3);
}

/// Lets go of source and output without freeing them.
void dropImages(ProbeFilter& filter) {
    filter.setSrcImage(Image());
    filter.setOutput(Image());
}

void expectImage(const Image& expected, const Image& actual) {
    EXPECT_EQ(expected.getDataPtr(), actual.getDataPtr());
    EXPECT_EQ(expected.getFormat(), actual.getFormat());
    EXPECT_EQ(expected.getWidth(), actual.getWidth());
    EXPECT_EQ(expected.getHeight(), actual.getHeight());
    EXPECT_EQ(expected.getBytePixelStride(), actual.getBytePixelStride());
    EXPECT_EQ(expected.getByteRowStride(), actual.getByteRowStride());
}

TEST(FilterTest, IsAbstractWithoutVirtualDestructor) {
    static_assert(std::is_abstract_v<Filter>);
    static_assert(!std::has_virtual_destructor_v<Filter>);
}

TEST(FilterTest, StartsEmpty) {
    const ProbeFilter filter;
    EXPECT_EQ("", filter.getErrorMessage());
    EXPECT_TRUE(filter.inputs().empty());
    expectImage(Image(), filter.source());
    expectImage(Image(), filter.output());
}

TEST(FilterTest, HoldsWhatTheSettersGave) {
    unsigned char memory[300] = {};
    const Image source(memory, 5, 3, Image::SBGR8, 20);
    const Image output(memory + 100, 4, 2, Image::RGBA8, 0);
    const Image input(memory + 200, 3, 3, Image::GRAY8, 8);
    ProbeFilter filter;
    filter.setSrcImage(source);
    filter.setOutput(output);
    filter.setInput(-1, input);
    expectImage(source, filter.source());
    expectImage(output, filter.output());
    expectImage(input, filter.inputs().at(-1));
}

TEST(FilterTest, InputsAreOrderedByKey) {
    ProbeFilter filter;
    for (const int key : {2, -7, 0, 1}) {
        filter.setInput(key, Image());
    }
    std::vector<int> keys;
    for (const auto& [key, image] : filter.inputs()) {
        keys.push_back(key);
    }
    EXPECT_EQ((std::vector<int>{-7, 0, 1, 2}), keys);
}

TEST(FilterTest, SecondInputOfAKeyReplacesTheFirst) {
    unsigned char memory[2] = {};
    ProbeFilter filter;
    filter.setInput(4, Image(memory, 1, 1, Image::GRAY8, 0));
    filter.setInput(4, Image(memory + 1, 1, 1, Image::SGRAY8, 0));
    ASSERT_EQ(1U, filter.inputs().size());
    EXPECT_EQ(memory + 1, filter.inputs().at(4).getDataPtr());
    EXPECT_EQ(Image::SGRAY8, filter.inputs().at(4).getFormat());
}

TEST(FilterTest, ViewsTheImagesOfItsCaller) {
    const Image image(SIDE, SIDE, Image::GRAY8, 1);
    fill(image, 9);
    {
        ProbeFilter filter;
        filter.setSrcImage(image);
        filter.setOutput(image);
        filter.setInput(0, image);
        EXPECT_EQ(image.getDataPtr(), filter.source().getDataPtr());
    }
    EXPECT_TRUE(holds(image, 9)) << "the filter freed pixels it was only shown";
}

TEST(FilterTest, TakesOverThePixelsOfATemporary) {
    ProbeFilter filter;
    giveOwnedImages(filter);
    const Image other = Image(SIDE, SIDE, Image::GRAY8, 1); // would reuse pixels freed too early
    fill(other, 99);
    EXPECT_TRUE(holds(filter.source(), 1));
    EXPECT_TRUE(holds(filter.output(), 2));
    EXPECT_TRUE(holds(filter.inputs().at(3), 3));
}

TEST(FilterTest, ReplacedImagesAreNotFreed) {
    ProbeFilter filter;
    giveOwnedImages(filter);
    Image source;
    Image output;
    Image input;
    source = filter.source(); // assignment shares ownership: these free what the filter lets go of
    output = filter.output();
    input = filter.inputs().at(3);
    dropImages(filter);
    filter.setInput(3, Image());
    EXPECT_TRUE(holds(source, 1));
    EXPECT_TRUE(holds(output, 2));
    EXPECT_TRUE(holds(input, 3));
}

TEST(FilterTest, CopyViewsTheSamePixelsAndFreesNothing) {
    ProbeFilter original;
    giveOwnedImages(original);
    {
        const ProbeFilter copy(original);
        expectImage(original.source(), copy.source());
        expectImage(original.output(), copy.output());
        ASSERT_EQ(1U, copy.inputs().size());
        expectImage(original.inputs().at(3), copy.inputs().at(3));
    }
    EXPECT_TRUE(holds(original.source(), 1));
    EXPECT_TRUE(holds(original.output(), 2));
    EXPECT_TRUE(holds(original.inputs().at(3), 3));
}

TEST(FilterTest, CopyCarriesTheMessage) {
    ProbeFilter original;
    EXPECT_FALSE(original.execute());
    const ProbeFilter copy(original);
    EXPECT_EQ("no source", copy.getErrorMessage());
    EXPECT_EQ("no source", original.getErrorMessage());
}

TEST(FilterTest, MoveTakesMessageAndInputs) {
    ProbeFilter original;
    original.execute();
    original.setInput(3, owned());
    fill(original.inputs().at(3), 3);
    const ProbeFilter moved(std::move(original));
    EXPECT_EQ("no source", moved.getErrorMessage());
    EXPECT_TRUE(original.inputs().empty()); // NOLINT: the state left behind is the point
    ASSERT_EQ(1U, moved.inputs().size());
    EXPECT_TRUE(holds(moved.inputs().at(3), 3));
}

TEST(FilterTest, MovedToFilterViewsSourceAndOutput) {
    ProbeFilter original;
    giveOwnedImages(original);
    {
        const ProbeFilter moved(std::move(original));
        expectImage(original.source(), moved.source()); // NOLINT
        expectImage(original.output(), moved.output());
    }
    EXPECT_TRUE(holds(original.source(), 1)) << "ownership stays where it was";
    EXPECT_TRUE(holds(original.output(), 2));
}

TEST(FilterTest, CopyAssignmentCarriesOwnership) {
    ProbeFilter target;
    {
        ProbeFilter original;
        giveOwnedImages(original);
        target = original;
        expectImage(original.source(), target.source());
        expectImage(original.output(), target.output());
        dropImages(original); // one owner is left
    }
    EXPECT_TRUE(holds(target.source(), 1));
    EXPECT_TRUE(holds(target.output(), 2));
}

TEST(FilterTest, CopyAssignmentReplacesInputsByViews) {
    ProbeFilter original;
    original.execute();
    original.setInput(3, owned());
    fill(original.inputs().at(3), 3);
    {
        ProbeFilter target;
        target.setInput(1, owned());
        target = original;
        ASSERT_EQ(1U, target.inputs().size());
        expectImage(original.inputs().at(3), target.inputs().at(3));
        EXPECT_EQ("no source", target.getErrorMessage());
    }
    EXPECT_TRUE(holds(original.inputs().at(3), 3));
}

TEST(FilterTest, CopyAssignmentToItselfKeepsEverything) {
    ProbeFilter filter;
    filter.execute();
    giveOwnedImages(filter);
    const ProbeFilter& same = filter;
    filter = same;
    EXPECT_EQ("no source", filter.getErrorMessage());
    EXPECT_TRUE(holds(filter.source(), 1));
    EXPECT_TRUE(holds(filter.output(), 2));
    EXPECT_TRUE(holds(filter.inputs().at(3), 3));
}

TEST(FilterTest, MoveAssignmentTakesMessageAndInputsAndCarriesOwnership) {
    ProbeFilter target;
    target.setInput(1, owned());
    {
        ProbeFilter original;
        original.execute();
        giveOwnedImages(original);
        target = std::move(original);
        EXPECT_TRUE(original.inputs().empty()); // NOLINT
        expectImage(original.source(), target.source());
        expectImage(original.output(), target.output());
        dropImages(original);
    }
    EXPECT_EQ("no source", target.getErrorMessage());
    ASSERT_EQ(1U, target.inputs().size());
    EXPECT_TRUE(holds(target.inputs().at(3), 3));
    EXPECT_TRUE(holds(target.source(), 1));
    EXPECT_TRUE(holds(target.output(), 2));
}

TEST(FilterTest, MoveAssignmentToItselfKeepsImages) {
    ProbeFilter filter;
    giveOwnedImages(filter);
    ProbeFilter& same = filter;
    filter = std::move(same);
    EXPECT_TRUE(holds(filter.source(), 1));
    EXPECT_TRUE(holds(filter.output(), 2));
    ASSERT_EQ(1U, filter.inputs().size());
    EXPECT_TRUE(holds(filter.inputs().at(3), 3));
}

TEST(FilterTest, MessageOutlivesALaterSuccess) {
    ProbeFilter filter;
    EXPECT_FALSE(filter.execute());
    filter.setSrcImage(owned());
    EXPECT_TRUE(filter.execute());
    EXPECT_EQ("no source", filter.getErrorMessage());
}

} // namespace
