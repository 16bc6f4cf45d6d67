// The denoising filter with version 1 of OpenImageDenoise: what it calls, in which order and with which arguments, and
// what becomes of every failure.
#include <algorithm>
#include <cstdlib>
#include <map>
#include <utility>

#include "StandInTest.h"

namespace {

using zqx::img::DenoisingFilter;
using zqx::img::Image;

static_assert(DenoisingFilter::COLOR == 0 && DenoisingFilter::ALBEDO == 1 && DenoisingFilter::NORMAL == 2);

const Calls SET_UP = {
    "oidnNewDevice(0) = device 1",
    "oidnCommitDevice(device 1)",
    "oidnNewFilter(device 1, RT) = filter 1",
    "oidnSetFilter1i(filter 1, maxMemoryMB, 1500)",
    "oidnGetDeviceError(device 1) = 0",
};

/// Shows the inputs of a filter, and has its message set.
class OpenFilter : public DenoisingFilter {
public:
    void complain(const std::string& message) { mErrorMessage = message; }
    const std::map<int, Image>& inputs() const { return mInputs; }
};

class DenoisingWithVersion1 : public StandInTest {
protected:
    DenoisingWithVersion1() { pictures.giveTo(filter); }

    void expectInvalidInput() {
        EXPECT_FALSE(filter.execute());
        EXPECT_EQ("Invalid Input", filter.getErrorMessage());
        EXPECT_EQ(SET_UP, calls());
    }

    /// The message of the first run is given; the second run shows that set-up is not tried again.
    void expectNoDenoiser(const std::string& message) {
        EXPECT_FALSE(filter.execute());
        EXPECT_EQ(message, filter.getErrorMessage());
        const Calls ofFirstRun = calls();
        failNoMore();
        EXPECT_FALSE(filter.execute());
        EXPECT_EQ("Denoiser not available.", filter.getErrorMessage());
        EXPECT_EQ(ofFirstRun, calls());
        EXPECT_EQ(-1, pictures.output.floats[0]) << "the output changed";
    }

    Pictures pictures;
    OpenFilter filter;
};

// Calls of a run

TEST_F(DenoisingWithVersion1, FirstRunSetsUpAndDenoises) {
    EXPECT_TRUE(filter.execute());
    EXPECT_EQ(SET_UP + pictures.run(), calls());
    EXPECT_EQ(std::vector<float>(24, Pictures::DENOISED), pictures.output.floats);
    EXPECT_EQ("", filter.getErrorMessage());
}

TEST_F(DenoisingWithVersion1, MakingAndConfiguringAFilterCallsNothing) {
    filter.setHDR(true);
    EXPECT_EQ(Calls(), calls());
}

TEST_F(DenoisingWithVersion1, LaterRunsUseTheSameDeviceAndFilter) {
    EXPECT_TRUE(filter.execute());
    forgetCalls();
    EXPECT_TRUE(filter.execute());
    EXPECT_EQ(pictures.run(), calls());
}

TEST_F(DenoisingWithVersion1, AllFiltersShareTheDevice) {
    {
        OpenFilter first;
        pictures.giveTo(first);
        EXPECT_TRUE(first.execute());
    }
    forgetCalls();
    EXPECT_TRUE(filter.execute());
    EXPECT_EQ(pictures.run(), calls());
}

TEST_F(DenoisingWithVersion1, HdrIsToldInPlaceOfSrgb) {
    filter.setHDR(true);
    EXPECT_TRUE(filter.execute());
    EXPECT_EQ(SET_UP + pictures.run(true), calls());
}

TEST_F(DenoisingWithVersion1, HdrIsToldAtEveryRun) {
    filter.setHDR(true);
    EXPECT_TRUE(filter.execute());
    filter.setHDR(false);
    forgetCalls();
    EXPECT_TRUE(filter.execute());
    EXPECT_EQ(pictures.run(false), calls());
}

TEST_F(DenoisingWithVersion1, CopiesAndMovesKeepHdr) {
    filter.setHDR(true);
    OpenFilter copied(filter);
    OpenFilter moved(std::move(copied));
    OpenFilter assigned;
    assigned = moved;
    OpenFilter moveAssigned;
    moveAssigned = std::move(assigned);
    EXPECT_TRUE(moveAssigned.execute());
    EXPECT_EQ(SET_UP + pictures.run(true), calls());
}

TEST_F(DenoisingWithVersion1, CopiesAndMovesKeepTheDefault) {
    const OpenFilter copied(filter);
    OpenFilter assigned;
    assigned.setHDR(true);
    assigned = copied;
    OpenFilter moveAssigned;
    moveAssigned.setHDR(true);
    moveAssigned = std::move(assigned);
    EXPECT_TRUE(moveAssigned.execute());
    EXPECT_EQ(SET_UP + pictures.run(false), calls());
}

TEST_F(DenoisingWithVersion1, OutputMayBeTheColourInput) {
    filter.setOutput(pictures.color.image);
    EXPECT_TRUE(filter.execute());
    EXPECT_EQ(std::vector<float>(24, Pictures::DENOISED), pictures.color.floats);
}

// Layouts

TEST_F(DenoisingWithVersion1, EveryImageHasItsOwnStrides) {
    std::vector<float> padded(2 * 15, 4);        // 4 pixels of 12 bytes and 12 bytes of padding in a row
    std::vector<float> fourFloats(4 * 2 * 4, 8); // 16 bytes a pixel
    std::vector<float> wide(7 * 2 * 3, 16);      // rows of 7 pixels, of which 4 are seen
    std::vector<float> target(6 * 4 * 4, -1);    // 6 x 4 pixels of 16 bytes, with a border of one pixel
    Image parent(target.data(), 6, 4, Image::RGBA32F, 0);
    filter.setInput(DenoisingFilter::COLOR, Image(padded.data(), 4, 2, Image::RGB32F, 60));
    filter.setInput(DenoisingFilter::ALBEDO, Image(fourFloats.data(), 4, 2, Image::RGBA32F, 0));
    filter.setInput(DenoisingFilter::NORMAL, Image(wide.data(), 7, 2, Image::RGB32F, 0).getSubImage(3, 0, 4, 2));
    filter.setOutput(parent.getSubImage(1, 1, 4, 2));
    EXPECT_TRUE(filter.execute());

    const std::string call = "oidnSetSharedFilterImage(filter 1, ";
    const Calls all = calls();
    ASSERT_EQ(SET_UP.size() + 9, all.size());
    EXPECT_EQ(call + "color, " + address(padded.data()) + ", 3, 4, 2, 0, 12, 60)", all[5]);
    EXPECT_EQ(call + "albedo, " + address(fourFloats.data()) + ", 3, 4, 2, 0, 16, 64)", all[6]);
    EXPECT_EQ(call + "normal, " + address(wide.data() + 9) + ", 3, 4, 2, 0, 12, 84)", all[7]);
    EXPECT_EQ(call + "output, " + address(target.data() + 28) + ", 3, 4, 2, 0, 16, 96)", all[8]);

    for (std::size_t i = 0; i < target.size(); ++i) {
        const std::size_t x = i / 4 % 6;
        const std::size_t y = i / 24;
        const bool isInside = x >= 1 && x <= 4 && y >= 1 && y <= 2 && i % 4 != 3;
        EXPECT_EQ(isInside ? Pictures::DENOISED : -1, target[i]) << "element " << i;
    }
}

TEST_F(DenoisingWithVersion1, SizeIsThatOfTheColourImage) {
    Picture large(5, 3, 8);
    filter.setInput(DenoisingFilter::ALBEDO, large.image);
    EXPECT_TRUE(filter.execute());
    const Calls all = calls();
    ASSERT_LT(6U, all.size());
    EXPECT_EQ("oidnSetSharedFilterImage(filter 1, albedo, " + address(large.floats.data()) + ", 3, 4, 2, 0, 12, 60)",
              all[6]);
}

TEST_F(DenoisingWithVersion1, FormatsAreNotExamined) {
    filter.setInput(DenoisingFilter::COLOR, Image(pictures.color.floats.data(), 4, 2, Image::SRGB8, 0));
    filter.setOutput(Image(pictures.output.floats.data(), 12, 2, Image::GRAY32F, 0));
    fail("execution", "pixel stride smaller than pixel size");
    EXPECT_FALSE(filter.execute());
    const Calls all = calls();
    ASSERT_LT(8U, all.size());
    EXPECT_EQ("oidnSetSharedFilterImage(filter 1, color, " + address(pictures.color.floats.data()) +
                  ", 3, 4, 2, 0, 3, 12)",
              all[5]);
    EXPECT_EQ("oidnSetSharedFilterImage(filter 1, output, " + address(pictures.output.floats.data()) +
                  ", 3, 4, 2, 0, 4, 48)",
              all[8]);
}

TEST_F(DenoisingWithVersion1, PicturesWithoutAreaAreRunAsAnyOther) {
    filter.setInput(DenoisingFilter::COLOR, Image(pictures.color.floats.data(), 0, 2, Image::RGB32F, 0));
    EXPECT_TRUE(filter.execute());
    const Calls all = calls();
    ASSERT_LT(5U, all.size());
    EXPECT_EQ("oidnSetSharedFilterImage(filter 1, color, " + address(pictures.color.floats.data()) +
                  ", 3, 0, 2, 0, 12, 0)",
              all[5]);
    EXPECT_EQ(-1, pictures.output.floats[0]);
}

// Images without pixels

TEST_F(DenoisingWithVersion1, ColourWithoutPixelsIsInvalid) {
    filter.setInput(DenoisingFilter::COLOR, Image());
    expectInvalidInput();
}

TEST_F(DenoisingWithVersion1, AlbedoWithoutPixelsIsInvalid) {
    filter.setInput(DenoisingFilter::ALBEDO, Image(nullptr, 4, 2, Image::RGB32F, 0));
    expectInvalidInput();
}

TEST_F(DenoisingWithVersion1, NormalWithoutPixelsIsInvalid) {
    filter.setInput(DenoisingFilter::NORMAL, Image());
    expectInvalidInput();
}

TEST_F(DenoisingWithVersion1, OutputWithoutPixelsIsInvalid) {
    filter.setOutput(Image());
    expectInvalidInput();
}

TEST_F(DenoisingWithVersion1, ColourAloneIsInvalidAndOtherInputsBecomeEmpty) {
    OpenFilter lone;
    lone.setInput(DenoisingFilter::COLOR, pictures.color.image);
    lone.setOutput(pictures.output.image);
    EXPECT_FALSE(lone.execute());
    EXPECT_EQ("Invalid Input", lone.getErrorMessage());
    ASSERT_EQ(3U, lone.inputs().size());
    EXPECT_EQ(pictures.color.floats.data(), lone.inputs().at(DenoisingFilter::COLOR).getDataPtr());
    EXPECT_EQ(nullptr, lone.inputs().at(DenoisingFilter::ALBEDO).getDataPtr());
    EXPECT_EQ(nullptr, lone.inputs().at(DenoisingFilter::NORMAL).getDataPtr());
}

TEST_F(DenoisingWithVersion1, FilterWithoutInputsGetsThreeEmptyOnes) {
    OpenFilter bare;
    bare.setOutput(pictures.output.image);
    EXPECT_FALSE(bare.execute());
    EXPECT_EQ("Invalid Input", bare.getErrorMessage());
    EXPECT_EQ(3U, bare.inputs().size());
}

TEST_F(DenoisingWithVersion1, InvalidInputAtTheFirstRunLeavesTheDenoiserUsable) {
    filter.setOutput(Image());
    EXPECT_FALSE(filter.execute());
    filter.setOutput(pictures.output.image);
    EXPECT_TRUE(filter.execute());
    EXPECT_EQ(SET_UP + pictures.run(), calls());
}

// Errors of a run

TEST_F(DenoisingWithVersion1, ErrorOfARunIsReportedInTheLibrarysWords) {
    fail("execution", "image size mismatch");
    EXPECT_FALSE(filter.execute());
    EXPECT_EQ("image size mismatch", filter.getErrorMessage());
}

TEST_F(DenoisingWithVersion1, ErrorOfARunWithoutTextIsAnEmptyMessage) {
    filter.setOutput(Image());
    EXPECT_FALSE(filter.execute());
    ASSERT_EQ("Invalid Input", filter.getErrorMessage());
    filter.setOutput(pictures.output.image);
    fail("execution", "");
    EXPECT_FALSE(filter.execute());
    EXPECT_EQ("", filter.getErrorMessage());
}

TEST_F(DenoisingWithVersion1, LaterSuccessKeepsTheMessage) {
    fail("execution", "image size mismatch");
    EXPECT_FALSE(filter.execute());
    failNoMore();
    forgetCalls();
    EXPECT_TRUE(filter.execute());
    EXPECT_EQ(pictures.run(), calls());
    EXPECT_EQ("image size mismatch", filter.getErrorMessage());
}

TEST_F(DenoisingWithVersion1, SuccessfulSetUpKeepsAnEarlierMessage) {
    filter.complain("of an earlier failure");
    EXPECT_TRUE(filter.execute());
    EXPECT_EQ("of an earlier failure", filter.getErrorMessage());
}

// Errors of set-up

TEST_F(DenoisingWithVersion1, DeviceThatCannotBeMadeIsReportedOnceAndNotTriedAgain) {
    fail("device", "unsupported device type");
    expectNoDenoiser("unsupported device type");
    EXPECT_EQ((Calls{"oidnNewDevice(0) = no device", "oidnGetDeviceError(no device) = 1"}), calls());
}

TEST_F(DenoisingWithVersion1, DeviceThatCannotBeMadeWithoutAnErrorIsAnEmptyMessage) {
    failSilently("device");
    expectNoDenoiser("");
    EXPECT_EQ((Calls{"oidnNewDevice(0) = no device", "oidnGetDeviceError(no device) = 0"}), calls());
}

TEST_F(DenoisingWithVersion1, FilterThatCannotBeMadeIsReportedAndTheDeviceReleased) {
    fail("filter", "unknown filter type");
    expectNoDenoiser("unknown filter type");
    EXPECT_EQ((Calls{
                  "oidnNewDevice(0) = device 1",
                  "oidnCommitDevice(device 1)",
                  "oidnNewFilter(device 1, RT) = no filter",
                  "oidnSetFilter1i(no filter, maxMemoryMB, 1500)",
                  "oidnGetDeviceError(device 1) = 1",
                  "oidnReleaseDevice(device 1)",
              }),
              calls());
}

TEST_F(DenoisingWithVersion1, FilterThatCannotBeMadeWithoutAnErrorIsAnEmptyMessage) {
    failSilently("filter");
    expectNoDenoiser("");
    EXPECT_EQ("oidnReleaseDevice(device 1)", calls().back());
}

TEST_F(DenoisingWithVersion1, ErrorOfSetUpReleasesDeviceAndFilter) {
    fail("commit", "out of memory");
    expectNoDenoiser("out of memory");
    const Calls all = calls();
    ASSERT_EQ(7U, all.size());
    EXPECT_EQ("oidnGetDeviceError(device 1) = 1", all[4]);
    EXPECT_EQ(1, std::count(all.begin(), all.end(), "oidnReleaseDevice(device 1)"));
    EXPECT_EQ(1, std::count(all.begin(), all.end(), "oidnReleaseFilter(filter 1)"));
}

TEST_F(DenoisingWithVersion1, ErrorOfSetUpWithoutTextIsAnEmptyMessage) {
    filter.complain("of an earlier failure");
    fail("commit", "");
    expectNoDenoiser("");
}

TEST_F(DenoisingWithVersion1, FailedSetUpComesBeforeInvalidInput) {
    filter.setOutput(Image());
    fail("device", "unsupported device type");
    expectNoDenoiser("unsupported device type");
}

TEST_F(DenoisingWithVersion1, FailedSetUpHoldsForAllFilters) {
    fail("device", "unsupported device type");
    EXPECT_FALSE(filter.execute());
    failNoMore();
    OpenFilter other;
    pictures.giveTo(other);
    EXPECT_FALSE(other.execute());
    EXPECT_EQ("Denoiser not available.", other.getErrorMessage());
}

// End of the process, which is that of a child here

TEST_F(DenoisingWithVersion1, EndOfTheProcessReleasesFilterAndDevice) {
    EXPECT_EXIT(std::exit(filter.execute() ? 0 : 1), testing::ExitedWithCode(0), "");
    const Calls released = {"oidnReleaseFilter(filter 1)", "oidnReleaseDevice(device 1)"};
    EXPECT_EQ(SET_UP + pictures.run() + released, calls());
}

TEST_F(DenoisingWithVersion1, EndOfTheProcessReleasesNothingTwice) {
    fail("commit", "out of memory");
    EXPECT_EXIT(std::exit(filter.execute() ? 0 : 1), testing::ExitedWithCode(1), "");
    const Calls all = calls();
    EXPECT_EQ(7U, all.size());
    EXPECT_EQ(1, std::count(all.begin(), all.end(), "oidnReleaseDevice(device 1)"));
    EXPECT_EQ(1, std::count(all.begin(), all.end(), "oidnReleaseFilter(filter 1)"));
}

} // namespace
