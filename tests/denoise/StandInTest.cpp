#include "StandInTest.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "StandIn.h"

using zqx::img::DenoisingFilter;

Calls operator+(Calls first, const Calls& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

std::string address(const void* pixels) {
    std::ostringstream out;
    out << pixels;
    return out.str();
}

void Pictures::giveTo(zqx::img::Filter& filter) const {
    filter.setInput(DenoisingFilter::COLOR, color.image);
    filter.setInput(DenoisingFilter::ALBEDO, albedo.image);
    filter.setInput(DenoisingFilter::NORMAL, normal.image);
    filter.setOutput(output.image);
}

Calls Pictures::run(bool hdr) const {
    const std::string layout = ", 3, 4, 2, 0, 12, 48)"; // three floats, 4 x 2 pixels, offset 0, strides
    return {
        "oidnSetSharedFilterImage(filter 1, color, " + address(color.floats.data()) + layout,
        "oidnSetSharedFilterImage(filter 1, albedo, " + address(albedo.floats.data()) + layout,
        "oidnSetSharedFilterImage(filter 1, normal, " + address(normal.floats.data()) + layout,
        "oidnSetSharedFilterImage(filter 1, output, " + address(output.floats.data()) + layout,
        hdr ? "oidnSetFilter1b(filter 1, hdr, true)" : "oidnSetFilter1b(filter 1, hdr, false)",
        hdr ? "oidnSetFilter1b(filter 1, srgb, false)" : "oidnSetFilter1b(filter 1, srgb, true)",
        "oidnCommitFilter(filter 1)",
        "oidnExecuteFilter(filter 1)",
        "oidnGetDeviceError(device 1) = 0",
    };
}

void StandInTest::SetUp() {
    static bool processIsUsed = false;
    ASSERT_FALSE(processIsUsed) << "Each of these tests needs a process of its own: run them with ctest.";
    processIsUsed = true;
    setenv(STAND_IN_CALLS, mCalls.c_str(), 1);
}

void StandInTest::TearDown() {
    unsetenv(STAND_IN_CALLS); // the library is still called when the process ends
}

Calls StandInTest::calls() const {
    std::ifstream file(mCalls);
    Calls lines;
    for (std::string line; std::getline(file, line);) {
        lines.push_back(line);
    }
    return lines;
}

void StandInTest::forgetCalls() {
    std::filesystem::remove(mCalls);
}

void StandInTest::fail(const char* what, const char* message) {
    setenv(STAND_IN_FAILURE, what, 1);
    setenv(STAND_IN_MESSAGE, message, 1);
}

void StandInTest::failSilently(const char* what) {
    setenv(STAND_IN_FAILURE, what, 1);
    unsetenv(STAND_IN_MESSAGE);
}

void StandInTest::failNoMore() {
    unsetenv(STAND_IN_FAILURE);
    unsetenv(STAND_IN_MESSAGE);
}

void StandInTest::useDeviceWithOwnMemory() {
    setenv(STAND_IN_OWN_MEMORY, "1", 1);
}
