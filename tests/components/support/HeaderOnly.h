// Bitmaps of any size without memory for pixels, on which the image library refuses most of its work.
#pragma once

#include <array>
#include <cstdint>

#include <qutil/Streams.h>

#include "components/support/Bitmaps.h"

namespace test {

/// The headers of a bitmap file: its mark, the place of the pixels, and 40 bytes of information.
inline std::array<unsigned char, 54> bitmapFileHeader(std::uint32_t width, std::uint32_t height,
                                                      std::uint32_t bitsPerPixel) {
    std::array<unsigned char, 54> header = {'B', 'M'};
    const auto put = [&header](std::size_t offset, std::uint32_t value) {
        for (std::size_t i = 0; i < 4; ++i) {
            header[offset + i] = static_cast<unsigned char>(value >> (8 * i));
        }
    };
    put(10, 54);
    put(14, 40);
    put(18, width);
    put(22, height);
    put(26, 1 | bitsPerPixel << 16U); // one plane
    return header;
}

inline Bitmap headerOnly(std::uint32_t width, std::uint32_t height, std::uint32_t bitsPerPixel) {
    const auto header = bitmapFileHeader(width, height, bitsPerPixel);
    Bitmap bitmap = newBitmap();
    EXPECT_EQ(bitmap->loadFromStream(FIF_BMP, qutil::MemoryInputStream::create(header.data(), header.size()).get(),
                                     FIF_LOAD_NOPIXELS),
              tov::SUCCESS);
    return bitmap;
}

} // namespace test
