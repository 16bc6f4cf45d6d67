// Small bitmaps: made, painted and looked at through the interface.
#pragma once

#include <array>
#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

#include <FreeImage.h>

#include "components/support/Components.h"

namespace test {

struct Pixel {
    float r;
    float g;
    float b;
    float a;

    friend bool operator==(const Pixel&, const Pixel&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Pixel& pixel) {
        return out << '(' << pixel.r << ", " << pixel.g << ", " << pixel.b << ", " << pixel.a << ')';
    }
};

inline Pixel pixelAt(IFreeImage& bitmap, int x, int y) {
    Pixel pixel{-1.0F, -1.0F, -1.0F, -1.0F};
    EXPECT_EQ(bitmap.getPixelF(x, y, &pixel.r, &pixel.g, &pixel.b, &pixel.a), tov::SUCCESS);
    return pixel;
}

inline void setPixel(IFreeImage& bitmap, int x, int y, const Pixel& pixel) {
    EXPECT_EQ(bitmap.setPixelF(x, y, pixel.r, pixel.g, pixel.b, pixel.a), tov::SUCCESS);
}

template <typename Get>
int getNumber(IFreeImage& bitmap, const Get& get) {
    int number = -1;
    EXPECT_EQ((bitmap.*get)(&number), tov::SUCCESS);
    return number;
}

inline int readWidth(IFreeImage& bitmap) {
    return getNumber(bitmap, &IFreeImage::getWidth);
}
inline int readHeight(IFreeImage& bitmap) {
    return getNumber(bitmap, &IFreeImage::getHeight);
}
inline int getDepth(IFreeImage& bitmap) {
    return getNumber(bitmap, &IFreeImage::getBitsPerPixel);
}
inline int detectType(IFreeImage& bitmap) {
    return getNumber(bitmap, &IFreeImage::getDataType);
}
inline int computePitch(IFreeImage& bitmap) {
    return getNumber(bitmap, &IFreeImage::getPitch);
}

inline bool isEmpty(IFreeImage& bitmap) {
    Pixel pixel{};
    return bitmap.getPixelF(0, 0, &pixel.r, &pixel.g, &pixel.b, &pixel.a) == tov::NOT_READY;
}

/// Scan line 0 being the bottom one.
inline unsigned char* getLine(IFreeImage& bitmap, int line) {
    void* address = nullptr;
    EXPECT_EQ(bitmap.getScanline(line, &address), tov::SUCCESS);
    return static_cast<unsigned char*>(address);
}

inline std::vector<int> bytesOfLine(IFreeImage& bitmap, int line, int count) {
    const unsigned char* bytes = getLine(bitmap, line);
    return {bytes, bytes + count};
}

inline Bitmap allocated(int type, int width, int height, int bitsPerPixel) {
    Bitmap bitmap = newBitmap();
    EXPECT_EQ(bitmap->allocate(type, width, height, bitsPerPixel), tov::SUCCESS);
    return bitmap;
}

/// A colour of its own for every position of small bitmaps, exact in bytes.
inline Pixel colorAt(int x, int y) {
    return {static_cast<float>(10 * x + 5) / 255.0F, static_cast<float>(40 * y + 20) / 255.0F, 200.0F / 255.0F, 1.0F};
}

inline Bitmap painted(int width, int height, int bitsPerPixel = 24) {
    Bitmap bitmap = allocated(FIT_BITMAP, width, height, bitsPerPixel);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            setPixel(*bitmap, x, y, colorAt(x, y));
        }
    }
    return bitmap;
}

inline bool isPainted(IFreeImage& bitmap, int width, int height) {
    bool same = readWidth(bitmap) == width && readHeight(bitmap) == height;
    for (int y = 0; same && y < height; ++y) {
        for (int x = 0; same && x < width; ++x) {
            same = pixelAt(bitmap, x, y) == colorAt(x, y);
        }
    }
    return same;
}

/// A directory for the files of one test, removed with them at its end.
class TemporaryDirectory {
public:
    TemporaryDirectory() {
        const auto* test = testing::UnitTest::GetInstance()->current_test_info();
        const std::string name = std::string(test->test_suite_name()) + "." + test->name();
        mPath = std::filesystem::path(testing::TempDir()) / ("zqx-components-" + name);
        std::filesystem::remove_all(mPath);
        std::filesystem::create_directories(mPath);
    }
    ~TemporaryDirectory() { std::filesystem::remove_all(mPath); }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    /// Name of a file in it, in UTF-8.
    std::string file(const std::string& name) const { return mPath.string() + "/" + name; }

private:
    std::filesystem::path mPath;
};

} // namespace test
