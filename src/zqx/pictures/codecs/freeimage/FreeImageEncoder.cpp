// Calls FreeImage's encoders.
#include "zqx/pictures/codecs/freeimage/FreeImageEncoder.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <span>

#include "zqx/img/system/LibraryMessages.h"
#include "zqx/pictures/codecs/freeimage/BitmapConversion.h"
#include "zqx/pictures/codecs/freeimage/BitmapMetadata.h"
#include "zqx/pictures/codecs/freeimage/FormatIds.h"
#include "zqx/pictures/codecs/freeimage/FreeImageMessages.h"
#include "zqx/pictures/files/Error.h"

namespace zqx::pictures {

namespace {

struct MemoryCloser {
    void operator()(FIMEMORY* memory) const { FreeImage_CloseMemory(memory); }
};
using Memory = std::unique_ptr<FIMEMORY, MemoryCloser>;

int saveFlags(FileFormat format, int quality) {
    constexpr int FINE_QUALITY = 90; // from here on chroma subsampling is the most visible loss
    constexpr int LOSSLESS = 1;      // of JPEG 2000, whose default compresses 16:1
    switch (format) {
    case FileFormat::JPEG: return quality | (quality >= FINE_QUALITY ? JPEG_SUBSAMPLING_444 : JPEG_SUBSAMPLING_420);
    case FileFormat::WEBP: return quality;
    case FileFormat::EXR: return EXR_FLOAT; // the default would round to half floats
    case FileFormat::J2K:
    case FileFormat::JP2: return LOSSLESS;
    default: return 0;
    }
}

/// Clamps values to the range of Radiance files, whose encoder turns negative values into random colours.
void limitToSharedExponent(img::Image& image) {
    const float largest = std::ldexp(255.0F, 127 - 8);
    const std::size_t samples = image.getWidth() * image.getBytePixelStride() / sizeof(float);
    for (std::size_t y = 0; y < image.getHeight(); ++y) {
        for (float& value : std::span(static_cast<float*>(image.getRowPtr(y)), samples)) {
            value = value > 0.0F ? std::min(value, largest) : 0.0F; // NaN becomes 0
        }
    }
}

} // namespace

void encodeByFreeImage(const std::string& name, FileFormat format, PixelBuffer pixels, SampleLayout layout, int quality,
                       const Metadata& metadata, const std::function<void(std::string_view)>& consumer) {
    const img::LibraryMessages listening;
    if (format == FileFormat::HDR) {
        limitToSharedExponent(pixels.image());
    }
    Bitmap bitmap = toStoredLayout(name, pixels, layout, getRowOrder(getFormatId(format)));
    attachMetadata(bitmap.get(), metadata);
    const Memory memory(FreeImage_OpenMemory(nullptr, 0));
    BYTE* bytes = nullptr;
    DWORD size = 0;
    if (!memory ||
        !FreeImage_SaveToMemory(getFormatId(format), bitmap.get(), memory.get(), saveFlags(format, quality)) ||
        !FreeImage_AcquireMemory(memory.get(), &bytes, &size)) {
        checkForLackOfMemory(std::uint64_t{2} * pixels.image().getByteRowStride() * pixels.height());
        throw Error(name, std::string("cannot be written as ") + getName(format) + inItsWords() +
                              "; choose another extension such as .png or .tif");
    }
    bitmap.reset();
    pixels.reset(); // to save memory while the file is written
    consumer({reinterpret_cast<const char*>(bytes), size});
}

} // namespace zqx::pictures
