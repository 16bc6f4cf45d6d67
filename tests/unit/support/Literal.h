// Small packed pictures written out in a test.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <utility>
#include <vector>

#include <zqx/img/Image.h>

#include "unit/support/Formats.h"

namespace test {

/// A packed picture of bytes, as wide as the bytes allow.
class BytePicture {
public:
    BytePicture(Image::Format format, std::size_t height, std::initializer_list<unsigned char> bytes)
        : mBytes(bytes), mImage(mBytes.data(), bytes.size() / height / oracle::pixelSize(format), height, format, 0) {}
    BytePicture(const BytePicture&) = delete;
    BytePicture& operator=(const BytePicture&) = delete;

    Image& image() { return mImage; }

private:
    std::vector<unsigned char> mBytes;
    Image mImage;
};

/// A packed picture of floats, as wide as the floats allow.
class FloatPicture {
public:
    FloatPicture(Image::Format format, std::size_t height, std::initializer_list<float> floats)
        : FloatPicture(format, height, std::vector<float>(floats)) {}
    FloatPicture(Image::Format format, std::size_t height, std::vector<float> floats)
        : mFloats(std::move(floats)),
          mImage(mFloats.data(), mFloats.size() * 4 / height / oracle::pixelSize(format), height, format, 0) {}
    FloatPicture(const FloatPicture&) = delete;
    FloatPicture& operator=(const FloatPicture&) = delete;

    Image& image() { return mImage; }
    float operator[](std::size_t index) const { return mFloats[index]; }

private:
    std::vector<float> mFloats;
    Image mImage;
};

} // namespace test
