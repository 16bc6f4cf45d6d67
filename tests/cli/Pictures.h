// Pictures for the tests, made and read with FreeImage alone, so that the program is not judged by its own code.
#pragma once

#include <functional>
#include <memory>
#include <ostream>
#include <string>

#include <FreeImage.h>

namespace zqx::img::test {

struct BitmapUnloader {
    void operator()(FIBITMAP* bitmap) const { FreeImage_Unload(bitmap); }
};
using Bitmap = std::unique_ptr<FIBITMAP, BitmapUnloader>;

/// A pixel of an 8-bit picture.
struct Rgba {
    int r = 0;
    int g = 0;
    int b = 0;
    int a = 255;

    bool operator==(const Rgba&) const = default;
};
std::ostream& operator<<(std::ostream& stream, const Rgba& color);

/// Rows are counted from the top in all of these.
Rgba pixelAt(const Bitmap& bitmap, unsigned x, unsigned y);
const float* floatsAt(const Bitmap& bitmap, unsigned x, unsigned y);

Bitmap readPicture(const std::string& name, int flags = 0);
void writePicture(const std::string& name, const Bitmap& bitmap, int flags = 0);

/// A bitmap of 24 or 32 bits painted by a function of the pixel's place.
Bitmap paint(unsigned width, unsigned height, int bitsPerPixel, const std::function<Rgba(unsigned, unsigned)>& color);

/// A palette bitmap of 1, 4 or 8 bits.
Bitmap paintIndexed(unsigned width, unsigned height, int bitsPerPixel,
                    const std::function<Rgba(unsigned)>& paletteColor,
                    const std::function<unsigned(unsigned, unsigned)>& index);

/// A bitmap of a sample type filled with values that differ in every pixel and channel.
Bitmap fillSamples(FREE_IMAGE_TYPE type, int bitsPerPixel, unsigned width, unsigned height);

/// A colour of its own for every place.
Rgba motley(unsigned x, unsigned y);

/// The colour that says where the middle of each quarter is: red, green above blue, white.
Rgba quarters(unsigned x, unsigned y, unsigned width, unsigned height);

/// True when both have the same type, size, depth and pixels, alpha included.
bool isIdentical(const Bitmap& a, const Bitmap& b);

/// A JPEG of four quarters whose Exif block asks for a turn.
void writeOrientedJpeg(const std::string& name, unsigned width, unsigned height, int orientation);

} // namespace zqx::img::test
