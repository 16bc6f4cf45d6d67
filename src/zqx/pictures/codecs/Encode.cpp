// Encodes rendered pixels in a layout, and with the metadata, that the file format can store.
#include "zqx/pictures/codecs/Encode.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>
#include <string_view>
#include <utility>

#include "zqx/pictures/codecs/Alpha.h"
#include "zqx/pictures/codecs/Metadata.h"
#include "zqx/pictures/codecs/freeimage/FreeImageEncoder.h"
#include "zqx/pictures/files/Error.h"
#include "zqx/pictures/metadata/InstalledCodec.h"

namespace zqx::pictures {

namespace {

/// Whether any pixel satisfies a predicate. @param predicate takes the samples of a pixel
template <typename Sample, typename Predicate>
bool anyPixel(const img::Image& image, const Predicate& predicate) {
    const std::size_t channels = image.getBytePixelStride() / sizeof(Sample);
    for (std::size_t y = 0; y < image.getHeight(); ++y) {
        const auto* pixel = static_cast<const Sample*>(image.getRowPtr(y));
        for (const Sample* end = pixel + channels * image.getWidth(); pixel != end; pixel += channels) {
            if (predicate(std::span(pixel, channels))) {
                return true;
            }
        }
    }
    return false;
}

/// Whether any pixel is not fully opaque.
bool isTransparent(const img::Image& image) {
    return image.hasFloatFormat()
               ? anyPixel<float>(image, [](std::span<const float> pixel) { return pixel.back() != 1.0F; })
               : anyPixel<unsigned char>(image,
                                         [](std::span<const unsigned char> pixel) { return pixel.back() != 255; });
}

/// Whether a Radiance file stores the values exactly: three 8-bit mantissas that share the exponent of the largest
/// value.
bool fitsSharedExponent(float red, float green, float blue) {
    constexpr int MANTISSA_BITS = 8;
    int exponent = 0;
    std::frexp(std::max({red, green, blue}), &exponent);
    return std::ranges::all_of(std::to_array({red, green, blue}), [exponent](float value) {
        const float steps = std::ldexp(value, MANTISSA_BITS - exponent);
        return steps >= 0.0F && steps == std::floor(steps) && std::isfinite(value);
    });
}

bool fitsSharedExponent(const img::Image& floats) {
    return !anyPixel<float>(floats, [](std::span<const float> pixel) {
        return pixel.size() == 1 ? !fitsSharedExponent(pixel[0], pixel[0], pixel[0])
                                 : !fitsSharedExponent(pixel[0], pixel[1], pixel[2]);
    });
}

void warnOfLostDepth(const std::string& name, const Picture& source, SampleLayout layout) {
    const bool floats = isFloat(source.stored);
    const int depth = bitsPerChannel(layout);
    std::string loss;
    if (depth < bitsPerChannel(source.stored)) {
        loss = "has " + std::to_string(depth) + " bits per channel, " +
               (floats ? "so values outside 0 to 1 are clipped and the rest is rounded"
                       : "so the picture's 16 bits are reduced");
    } else if (outputFormat(name) == FileFormat::HDR && source.image().hasFloatFormat() &&
               bitsPerChannel(source.stored) > 8 && !fitsSharedExponent(source.image())) {
        loss = "keeps only 8 significant bits of each value";
    } else {
        return;
    }
    warn(name, "this format " + loss + "; choose " +
                   (floats ? ".exr or .tif to keep floats" : ".png or .tif to keep 16 bits"));
}

/// The pixels in the format that the encoder expects; only the order of the channels may differ.
PixelBuffer inWorkingFormat(PixelBuffer pixels, SampleLayout layout) {
    if (pixels.image().getFormat() == workingFormat(layout)) {
        return pixels;
    }
    PixelBuffer converted(pixels.width(), pixels.height(), layout);
    converted.image().convertFrom(pixels.image());
    return converted;
}

} // namespace

void warnOfLosses(const std::string& name, const Picture& source, SampleLayout layout) {
    if (hasAlpha(source.pixels.layout()) && !hasAlpha(layout) && isTransparent(source.image())) {
        warn(name, std::string("this format has no transparency, so the picture becomes opaque; choose ") +
                       (isFloat(source.stored) ? ".exr or .tif" : ".png or .tif") + " to keep it");
    }
    warnOfLostDepth(name, source, layout);
    if (layout == SampleLayout::PALETTE8) {
        warn(name,
             "this format has at most 256 colours, so the picture's are reduced; choose .png or .tif to keep all");
    }
}

void encodePicture(OutputFile& file, const std::string& name, FileFormat format, PixelBuffer pixels,
                   SampleLayout layout, const Picture& original, const WriteOptions& options) {
    pixels = inWorkingFormat(std::move(pixels), layout);
    finishAlpha(pixels.image(), format, layout, original);
    const Metadata metadata = metadataFor(name, format, layout, original.stored, options.stripped(original.metadata));
    const unsigned width = pixels.width();
    const unsigned height = pixels.height();
    // Failures to write are reported by the file itself, which knows the reason.
    encodeByFreeImage(name, format, std::move(pixels), layout, options.quality, metadata,
                      [&](std::string_view encoded) {
                          writeWithMetadata(name, encoded, metadata, width, height,
                                            [&file](std::string_view finished) { file.write(finished); });
                      });
}

} // namespace zqx::pictures
