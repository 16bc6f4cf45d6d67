// Rendered bitmaps into files, in the form and with the metadata that the file format can hold.
#include "zqx/pictures/codecs/Encode.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <span>
#include <string_view>
#include <utility>

#include <tov/CountedObject.h>
#include <tov/IOutputStream.h>
#include <zqx/img/FreeImage.h>

#include "zqx/pictures/codecs/Alpha.h"
#include "zqx/pictures/codecs/Depth16.h"
#include "zqx/pictures/codecs/FreeImageMessages.h"
#include "zqx/pictures/codecs/Metadata.h"
#include "zqx/pictures/files/Error.h"
#include "zqx/pictures/metadata/MetadataWriter.h"

namespace zqx::pictures {

namespace {

/// An output file as the component's stream, which is given all of an encoded picture at once.
class FileStream : public tov::CountedObject<tov::IOutputStream> {
public:
    using Finish = std::function<void(std::string_view, const FileConsumer&)>;

    FileStream(OutputFile& file, Finish finish) : mFile(file), mFinish(std::move(finish)) {}

    tov::Result write(const tov::Sequence<unsigned char>& bytes) override {
        mFinish({reinterpret_cast<const char*>(bytes.data), bytes.count},
                [this](std::string_view finished) { mFile.write(finished); });
        return mFile.hasFailed() ? tov::FAILURE : tov::SUCCESS;
    }

private:
    OutputFile& mFile;
    Finish mFinish;
};

int saveFlags(FREE_IMAGE_FORMAT format, int quality) {
    constexpr int FINE_QUALITY = 90; // from here on colour subsampling is what shows first
    switch (format) {
    case FIF_JPEG: return quality | (quality >= FINE_QUALITY ? JPEG_SUBSAMPLING_444 : JPEG_SUBSAMPLING_420);
    case FIF_WEBP:
    case FIF_JXR: return quality;
    case FIF_EXR: return EXR_FLOAT; // the default would round to half floats
    case FIF_J2K:
    case FIF_JP2: return 1; // without loss; the default keeps one byte of 16
    default: return 0;
    }
}

/// True when any pixel of a picture of floats is as asked for.
template <typename Pixel, typename Predicate>
bool anyPixel(const Picture& picture, const Predicate& predicate) {
    for (unsigned y = 0; y < picture.height(); ++y) {
        const BYTE* row = FreeImage_GetScanLine(picture.bitmap.get(), static_cast<int>(y));
        if (std::ranges::any_of(std::span(reinterpret_cast<const Pixel*>(row), picture.width()), predicate)) {
            return true;
        }
    }
    return false;
}

/// False for a picture whose alpha is the same as having none.
bool isTransparent(const Picture& picture) {
    return picture.form == Form::RGBA_FLOAT
               ? anyPixel<FIRGBAF>(picture, [](const FIRGBAF& pixel) { return pixel.alpha != 1.0F; })
               : FreeImage_IsTransparent(picture.bitmap.get()) != 0;
}

/// True for what a Radiance file keeps: three mantissas of 8 bits with the exponent of the largest.
bool fitsSharedExponent(float red, float green, float blue) {
    constexpr int MANTISSA_BITS = 8;
    int exponent = 0;
    std::frexp(std::max({red, green, blue}), &exponent);
    return std::ranges::all_of(std::to_array({red, green, blue}), [exponent](float value) {
        const float steps = std::ldexp(value, MANTISSA_BITS - exponent);
        return steps >= 0.0F && steps == std::floor(steps) && std::isfinite(value);
    });
}

bool fitsSharedExponent(const Picture& picture) {
    switch (picture.form) {
    case Form::GREY_FLOAT:
        return !anyPixel<float>(picture, [](float grey) { return !fitsSharedExponent(grey, grey, grey); });
    case Form::RGB_FLOAT:
        return !anyPixel<FIRGBF>(
            picture, [](const FIRGBF& pixel) { return !fitsSharedExponent(pixel.red, pixel.green, pixel.blue); });
    default:
        return !anyPixel<FIRGBAF>(
            picture, [](const FIRGBAF& pixel) { return !fitsSharedExponent(pixel.red, pixel.green, pixel.blue); });
    }
}

/// Brings values into what a Radiance file can say. Its encoder makes chance colours of negative ones.
void limitToSharedExponent(FIBITMAP* bitmap) {
    const float largest = std::ldexp(255.0F, 127 - 8);
    for (unsigned y = 0; y < FreeImage_GetHeight(bitmap); ++y) {
        BYTE* row = FreeImage_GetScanLine(bitmap, static_cast<int>(y));
        for (float& value : std::span(reinterpret_cast<float*>(row), FreeImage_GetLine(bitmap) / sizeof(float))) {
            value = value > 0.0F ? std::min(value, largest) : 0.0F; // NaN becomes 0
        }
    }
}

void warnOfLostDepth(const std::string& name, const Picture& source, Form form) {
    const bool floats = isFloat(source.stored);
    const int depth = depthOf(form);
    std::string loss;
    if (depth < depthOf(source.stored)) {
        loss = "has " + std::to_string(depth) + " bits per channel, " +
               (floats ? "values beyond 0 to 1 are lost and the rest is rounded" : "the picture's 16 are cut to that");
    } else if (outputFormat(name) == FIF_HDR && depthOf(source.stored) > 8 && !fitsSharedExponent(source)) {
        loss = "keeps 8 bits of each value";
    } else {
        return;
    }
    warn(name,
         "this format " + loss + ", choose " + (floats ? ".exr or .tif to keep floats" : ".png or .tif to keep 16"));
}

/// The bitmap as its file has it, from one in the working form.
Bitmap makeStored(const std::string& name, Bitmap working, Form form) {
    if (depthOf(form) == 16) {
        return encodeDepth16(working.get());
    }
    if (form != Form::PALETTE8) {
        return working;
    }
    Bitmap palette(FreeImage_ColorQuantizeEx(working.get(), FIQ_WUQUANT, 256, 0, nullptr));
    if (!palette) {
        throw Error(name, "its colours cannot be reduced to a palette" + inItsWords());
    }
    return palette;
}

} // namespace

void warnOfLosses(const std::string& name, const Picture& source, Form form) {
    if (hasAlpha(source.form) && !hasAlpha(form) && isTransparent(source)) {
        warn(name, std::string("this format has no transparency, the picture becomes opaque, choose ") +
                       (isFloat(source.stored) ? ".exr or .tif" : ".png or .tif") + " to keep it");
    }
    warnOfLostDepth(name, source, form);
    if (form == Form::PALETTE8) {
        warn(name, "this format has 256 colours, the picture's are reduced to them, choose .png or .tif to keep all");
    }
}

void encodePicture(OutputFile& file, const std::string& name, FREE_IMAGE_FORMAT format, Bitmap bitmap, Form form,
                   const Picture& original, const EncodeOptions& options) {
    alsoAsk(img::FreeImage::getLibraryMessage); // whose component listens in our place from the first picture saved
    listenToFreeImage();
    const Metadata metadata = options.stripped(original.metadata);
    finishAlpha(bitmap.get(), format, form, original);
    bitmap = makeStored(name, std::move(bitmap), form);
    if (format == FIF_HDR) {
        limitToSharedExponent(bitmap.get());
    }
    carryOver(name, format, bitmap.get(), form, original, metadata);
    if (isTurnedOver(format)) {
        FreeImage_FlipVertical(bitmap.get());
    }
    const unsigned width = FreeImage_GetWidth(bitmap.get());
    const unsigned height = FreeImage_GetHeight(bitmap.get());
    const tov::TovRef<img::FreeImage> component(new img::FreeImage(bitmap.release()));
    const tov::TovRef<FileStream> stream(
        new FileStream(file, [&](std::string_view encoded, const FileConsumer& consumer) {
            writeWithMetadata(name, encoded, metadata, width, height, consumer);
        }));
    // A storage failure is told by the file itself, which knows the reason better than the encoder does.
    if (tov::failed(component->saveToStream(stream.get(), format, saveFlags(format, options.quality))) &&
        !file.hasFailed()) {
        throw Error(name, std::string("cannot be written as ") + FreeImage_GetFormatFromFIF(format) +
                              inParentheses(img::FreeImage::getLibraryMessage()) +
                              ", choose another extension such as .png or .tif");
    }
}

} // namespace zqx::pictures
