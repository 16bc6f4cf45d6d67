// The denoising filter with version 2 of OpenImageDenoise, whose setters have other names and whose devices may be
// graphics cards.
#include <cstdlib>

#include "StandInTest.h"

namespace {

using zqx::img::DenoisingFilter;

/// The calls of a run, from the pictures on.
Calls run(const Pictures& pictures, const std::string& device) {
    Calls calls = pictures.run();
    calls[4] = "oidnSetFilterBool(filter 1, hdr, false)";
    calls[5] = "oidnSetFilterBool(filter 1, srgb, true)";
    calls[8] = "oidnGetDeviceError(" + device + ") = 0";
    return calls;
}

class DenoisingWithVersion2 : public StandInTest {
protected:
    DenoisingWithVersion2() { pictures.giveTo(filter); }

    Pictures pictures;
    DenoisingFilter filter;
};

const Calls SET_UP = {
    "oidnNewDevice(0) = device 1",
    "oidnCommitDevice(device 1)",
    "oidnGetDeviceBool(device 1, systemMemorySupported) = true",
    "oidnNewFilter(device 1, RT) = filter 1",
    "oidnSetFilterInt(filter 1, maxMemoryMB, 1500)",
    "oidnGetDeviceError(device 1) = 0",
};

TEST_F(DenoisingWithVersion2, FirstRunSetsUpAndDenoises) {
    EXPECT_TRUE(filter.execute());
    EXPECT_EQ(SET_UP + run(pictures, "device 1"), calls());
    EXPECT_EQ(std::vector<float>(24, Pictures::DENOISED), pictures.output.floats);
}

TEST_F(DenoisingWithVersion2, LaterRunsUseTheSameDeviceAndFilter) {
    EXPECT_TRUE(filter.execute());
    forgetCalls();
    EXPECT_TRUE(filter.execute());
    EXPECT_EQ(run(pictures, "device 1"), calls());
}

TEST_F(DenoisingWithVersion2, HdrIsToldInPlaceOfSrgb) {
    filter.setHDR(true);
    EXPECT_TRUE(filter.execute());
    const Calls all = calls();
    ASSERT_EQ(SET_UP.size() + 9, all.size());
    EXPECT_EQ("oidnSetFilterBool(filter 1, hdr, true)", all[10]);
    EXPECT_EQ("oidnSetFilterBool(filter 1, srgb, false)", all[11]);
}

TEST_F(DenoisingWithVersion2, DeviceThatCannotReadTheMemoryGivesWayToTheProcessor) {
    useDeviceWithOwnMemory();
    EXPECT_TRUE(filter.execute());
    const Calls setUp = {
        "oidnNewDevice(0) = device 1",
        "oidnCommitDevice(device 1)",
        "oidnGetDeviceBool(device 1, systemMemorySupported) = false",
        "oidnReleaseDevice(device 1)",
        "oidnNewDevice(1) = device 2",
        "oidnCommitDevice(device 2)",
        "oidnNewFilter(device 2, RT) = filter 1",
        "oidnSetFilterInt(filter 1, maxMemoryMB, 1500)",
        "oidnGetDeviceError(device 2) = 0",
    };
    EXPECT_EQ(setUp + run(pictures, "device 2"), calls());
    EXPECT_EQ(std::vector<float>(24, Pictures::DENOISED), pictures.output.floats);
}

TEST_F(DenoisingWithVersion2, NoDeviceThatReadsTheMemoryIsAFailureOfSetUp) {
    useDeviceWithOwnMemory();
    fail("processor", "unsupported device type");
    EXPECT_FALSE(filter.execute());
    EXPECT_EQ("unsupported device type", filter.getErrorMessage());
    EXPECT_EQ((Calls{
                  "oidnNewDevice(0) = device 1",
                  "oidnCommitDevice(device 1)",
                  "oidnGetDeviceBool(device 1, systemMemorySupported) = false",
                  "oidnReleaseDevice(device 1)",
                  "oidnNewDevice(1) = no device",
                  "oidnGetDeviceError(no device) = 1",
              }),
              calls());
    failNoMore();
    EXPECT_FALSE(filter.execute());
    EXPECT_EQ("Denoiser not available.", filter.getErrorMessage());
}

TEST_F(DenoisingWithVersion2, DeviceThatCannotBeMadeIsReportedOnceAndNotTriedAgain) {
    fail("device", "unsupported device type");
    EXPECT_FALSE(filter.execute());
    EXPECT_EQ("unsupported device type", filter.getErrorMessage());
    failNoMore();
    EXPECT_FALSE(filter.execute());
    EXPECT_EQ("Denoiser not available.", filter.getErrorMessage());
    EXPECT_EQ((Calls{"oidnNewDevice(0) = no device", "oidnGetDeviceError(no device) = 1"}), calls());
}

TEST_F(DenoisingWithVersion2, ErrorOfARunIsReportedInTheLibrarysWords) {
    fail("execution", "image size mismatch");
    EXPECT_FALSE(filter.execute());
    EXPECT_EQ("image size mismatch", filter.getErrorMessage());
}

TEST_F(DenoisingWithVersion2, EndOfTheProcessReleasesFilterAndDevice) {
    EXPECT_EXIT(std::exit(filter.execute() ? 0 : 1), testing::ExitedWithCode(0), "");
    const Calls released = {"oidnReleaseFilter(filter 1)", "oidnReleaseDevice(device 1)"};
    EXPECT_EQ(SET_UP + run(pictures, "device 1") + released, calls());
}

} // namespace
