// Test pictures.
#include "Pictures.h"

#include <cstring>
#include <stdexcept>

#include "Program.h"

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

namespace zqx::img::test {

namespace {

/// FreeImage's own Photoshop encoder leaks a small record with every file it writes: not a finding about us.
class LeaksOfPsdEncoder {
public:
    explicit LeaksOfPsdEncoder(FREE_IMAGE_FORMAT format) : mActive(format == FIF_PSD) { allow(mActive); }
    LeaksOfPsdEncoder(const LeaksOfPsdEncoder&) = delete;
    LeaksOfPsdEncoder& operator=(const LeaksOfPsdEncoder&) = delete;
    ~LeaksOfPsdEncoder() { forbid(mActive); }

private:
#if defined(__SANITIZE_ADDRESS__)
    static void allow(bool active) {
        if (active) {
            __lsan_disable();
        }
    }
    static void forbid(bool active) {
        if (active) {
            __lsan_enable();
        }
    }
#else
    static void allow(bool /*active*/) {
    }
    static void forbid(bool /*active*/) {
    }
#endif
    bool mActive;
};

BYTE toByte(int value) {
    return static_cast<BYTE>(value);
}

Bitmap allocate(FREE_IMAGE_TYPE type, unsigned width, unsigned height, int bitsPerPixel) {
    return Bitmap(FreeImage_AllocateT(type, static_cast<int>(width), static_cast<int>(height), bitsPerPixel,
                                      FI_RGBA_RED_MASK, FI_RGBA_GREEN_MASK, FI_RGBA_BLUE_MASK));
}

BYTE* rowFromTop(const Bitmap& bitmap, unsigned y) {
    return FreeImage_GetScanLine(bitmap.get(), static_cast<int>(FreeImage_GetHeight(bitmap.get()) - 1 - y));
}

} // namespace

std::ostream& operator<<(std::ostream& stream, const Rgba& color) {
    return stream << '(' << color.r << ", " << color.g << ", " << color.b << ", " << color.a << ')';
}

Rgba pixelAt(const Bitmap& bitmap, unsigned x, unsigned y) {
    const BYTE* row = rowFromTop(bitmap, y);
    switch (FreeImage_GetBPP(bitmap.get())) {
    case 32:
        return {row[4 * x + FI_RGBA_RED], row[4 * x + FI_RGBA_GREEN], row[4 * x + FI_RGBA_BLUE],
                row[4 * x + FI_RGBA_ALPHA]};
    case 24: return {row[3 * x + FI_RGBA_RED], row[3 * x + FI_RGBA_GREEN], row[3 * x + FI_RGBA_BLUE]};
    case 8: {
        const RGBQUAD& entry = FreeImage_GetPalette(bitmap.get())[row[x]];
        return {entry.rgbRed, entry.rgbGreen, entry.rgbBlue};
    }
    default: throw std::invalid_argument("not a picture of bytes");
    }
}

const float* floatsAt(const Bitmap& bitmap, unsigned x, unsigned y) {
    return reinterpret_cast<const float*>(rowFromTop(bitmap, y) + x * (FreeImage_GetBPP(bitmap.get()) / 8));
}

Bitmap readPicture(const std::string& name, int flags) {
    const FREE_IMAGE_FORMAT format = FreeImage_GetFileType(name.c_str());
    Bitmap bitmap(FreeImage_Load(format, name.c_str(), flags));
    if (!bitmap) {
        throw std::runtime_error("cannot read " + name);
    }
    if (format == FIF_PFM) { // which FreeImage takes for stored from top to bottom
        FreeImage_FlipVertical(bitmap.get());
    }
    return bitmap;
}

void writePicture(const std::string& name, const Bitmap& bitmap, int flags) {
    const FREE_IMAGE_FORMAT format = FreeImage_GetFIFFromFilename(name.c_str());
    const LeaksOfPsdEncoder allowed(format);
    const Bitmap stored(FreeImage_Clone(bitmap.get()));
    if (format == FIF_PFM) {
        FreeImage_FlipVertical(stored.get());
    }
    if (!FreeImage_Save(format, stored.get(), name.c_str(), flags)) {
        throw std::runtime_error("cannot write " + name);
    }
}

Bitmap paint(unsigned width, unsigned height, int bitsPerPixel, const std::function<Rgba(unsigned, unsigned)>& color) {
    Bitmap bitmap = allocate(FIT_BITMAP, width, height, bitsPerPixel);
    for (unsigned y = 0; y < height; ++y) {
        BYTE* pixel = rowFromTop(bitmap, y);
        for (unsigned x = 0; x < width; ++x, pixel += bitsPerPixel / 8) {
            const Rgba value = color(x, y);
            pixel[FI_RGBA_RED] = toByte(value.r);
            pixel[FI_RGBA_GREEN] = toByte(value.g);
            pixel[FI_RGBA_BLUE] = toByte(value.b);
            if (bitsPerPixel == 32) {
                pixel[FI_RGBA_ALPHA] = toByte(value.a);
            }
        }
    }
    return bitmap;
}

Bitmap paintIndexed(unsigned width, unsigned height, int bitsPerPixel,
                    const std::function<Rgba(unsigned)>& paletteColor,
                    const std::function<unsigned(unsigned, unsigned)>& index) {
    Bitmap bitmap = allocate(FIT_BITMAP, width, height, bitsPerPixel);
    RGBQUAD* palette = FreeImage_GetPalette(bitmap.get());
    for (unsigned i = 0; i < FreeImage_GetColorsUsed(bitmap.get()); ++i) {
        const Rgba color = paletteColor(i);
        palette[i].rgbRed = toByte(color.r);
        palette[i].rgbGreen = toByte(color.g);
        palette[i].rgbBlue = toByte(color.b);
    }
    for (unsigned y = 0; y < height; ++y) {
        for (unsigned x = 0; x < width; ++x) {
            BYTE value = toByte(static_cast<int>(index(x, y)));
            FreeImage_SetPixelIndex(bitmap.get(), x, height - 1 - y, &value);
        }
    }
    return bitmap;
}

Bitmap fillSamples(FREE_IMAGE_TYPE type, int bitsPerPixel, unsigned width, unsigned height) {
    Bitmap bitmap = allocate(type, width, height, bitsPerPixel);
    const bool isFloat = type == FIT_FLOAT || type == FIT_RGBF || type == FIT_RGBAF;
    const unsigned samples = width * static_cast<unsigned>(bitsPerPixel) / (isFloat ? 32 : 16);
    for (unsigned y = 0; y < height; ++y) {
        BYTE* row = rowFromTop(bitmap, y);
        for (unsigned i = 0; i < samples; ++i) {
            const unsigned number = y * samples + i;
            if (isFloat) {
                reinterpret_cast<float*>(row)[i] = 0.0137F * static_cast<float>(number % 211);
            } else {
                reinterpret_cast<WORD*>(row)[i] = static_cast<WORD>(number * 977);
            }
        }
    }
    return bitmap;
}

Rgba motley(unsigned x, unsigned y) {
    return {static_cast<int>((x * 37 + y * 5) % 256), static_cast<int>((x * 11 + y * 91) % 256),
            static_cast<int>((x * 3 + y * 53 + 70) % 256), static_cast<int>((x * 29 + y * 17) % 256)};
}

Rgba quarters(unsigned x, unsigned y, unsigned width, unsigned height) {
    const bool right = x >= width / 2;
    if (y < height / 2) {
        return right ? Rgba{0, 255, 0} : Rgba{255, 0, 0};
    }
    return right ? Rgba{255, 255, 255} : Rgba{0, 0, 255};
}

bool isIdentical(const Bitmap& a, const Bitmap& b) {
    FIBITMAP* x = a.get();
    FIBITMAP* y = b.get();
    if (FreeImage_GetImageType(x) != FreeImage_GetImageType(y) || FreeImage_GetBPP(x) != FreeImage_GetBPP(y) ||
        FreeImage_GetWidth(x) != FreeImage_GetWidth(y) || FreeImage_GetHeight(x) != FreeImage_GetHeight(y)) {
        return false;
    }
    for (unsigned row = 0; row < FreeImage_GetHeight(x); ++row) {
        if (std::memcmp(rowFromTop(a, row), rowFromTop(b, row), FreeImage_GetLine(x)) != 0) {
            return false;
        }
    }
    return true;
}

void writeOrientedJpeg(const std::string& name, unsigned width, unsigned height, int orientation) {
    writePicture(name, paint(width, height, 24, [=](unsigned x, unsigned y) { return quarters(x, y, width, height); }),
                 JPEG_QUALITYSUPERB | JPEG_SUBSAMPLING_444);
    // A little-endian TIFF directory with one entry: tag 0x0112, type short, one value.
    std::string exif("Exif\0\0II\x2A\0\x08\0\0\0\x01\0\x12\x01\x03\0\x01\0\0\0", 24);
    exif += static_cast<char>(orientation);
    exif.append(7, '\0'); // the rest of the value's four bytes, and no further directory
    const std::size_t length = exif.size() + 2;
    const std::string marker{'\xFF', '\xE1', static_cast<char>(length >> 8), static_cast<char>(length & 0xFF)};
    std::string file = readFile(name);
    file.insert(2, marker + exif); // behind the start-of-image marker
    writeFile(name, file);
}

} // namespace zqx::img::test
