// What the tests with a stand-in of OpenImageDenoise have in common: the calls it wrote down, its failures, and
// pictures to denoise.
#pragma once

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <zqx/img/DenoisingFilter.h>

#include "support/DirectoryTest.h"

using Calls = std::vector<std::string>;

Calls operator+(Calls first, const Calls& second);

/// As the stand-in writes an address down.
std::string address(const void* pixels);

/// Three floats a pixel, packed, all of one value.
struct Picture {
    Picture(std::size_t width, std::size_t height, float value)
        : floats(width * height * 3, value), image(floats.data(), width, height, zqx::img::Image::RGB32F, 0) {}
    Picture(const Picture&) = delete;
    Picture& operator=(const Picture&) = delete;

    std::vector<float> floats;
    zqx::img::Image image;
};

/// The pictures of one run, 4 x 2 pixels, which the stand-in turns into 0.5 * 4 + 0.25 * 8 + 0.125 * 16 = 6.
struct Pictures {
    static constexpr float DENOISED = 6;

    void giveTo(zqx::img::Filter& filter) const;

    /// The calls by which the filter of version 1 hands these pictures over and runs.
    Calls run(bool hdr = false) const;

    Picture color{4, 2, 4};
    Picture albedo{4, 2, 8};
    Picture normal{4, 2, 16};
    Picture output{4, 2, -1};
};

/// Each test needs a process and a search path for libraries of its own, as CTest gives it: what is found at the first
/// run is kept until the process ends.
class StandInTest : public zqx::img::test::DirectoryTest {
protected:
    void SetUp() override;
    void TearDown() override;

    /// The calls since the start, or since they were forgotten.
    Calls calls() const;
    void forgetCalls();

    /// From now on, something fails and reports an error, whose text may be empty.
    void fail(const char* what, const char* message);
    /// From now on, something fails and reports nothing.
    void failSilently(const char* what);
    void failNoMore();

    void useDeviceWithOwnMemory();

private:
    const std::string mCalls = at("calls.txt");
};
