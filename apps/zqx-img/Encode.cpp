// Rendered bitmaps into files, in the form and with the metadata that the file format can hold.
#include "Encode.h"

#include <algorithm>
#include <span>

#include <tov/CountedObject.h>
#include <tov/IOutputStream.h>
#include <zqx/img/FreeImage.h>

#include "Error.h"
#include "FreeImageMessages.h"
#include "Metadata.h"

namespace zqx::img::app {

namespace {

/// An output file as the component's stream.
class FileStream : public tov::CountedObject<tov::IOutputStream> {
public:
    explicit FileStream(OutputFile& file) : mFile(file) {}

    tov::Result write(const tov::Sequence<unsigned char>& bytes) override {
        mFile.write({reinterpret_cast<const char*>(bytes.data), bytes.count});
        return mFile.hasFailed() ? tov::FAILURE : tov::SUCCESS;
    }

private:
    OutputFile& mFile;
};

int saveFlags(FREE_IMAGE_FORMAT format, int quality) {
    constexpr int FINE_QUALITY = 90; // from here on colour subsampling is what shows first
    switch (format) {
    case FIF_JPEG: return quality | (quality >= FINE_QUALITY ? JPEG_SUBSAMPLING_444 : JPEG_SUBSAMPLING_420);
    case FIF_WEBP:
    case FIF_JXR: return quality;
    case FIF_EXR: return EXR_FLOAT; // the default would round to half floats
    default: return 0;
    }
}

/// False for a picture whose alpha is the same as having none.
bool isTransparent(const Picture& picture) {
    if (picture.form != Form::RGBA_FLOAT) {
        return FreeImage_IsTransparent(picture.bitmap.get()) != 0;
    }
    for (unsigned y = 0; y < picture.height(); ++y) {
        const std::span<const FIRGBAF> row(
            reinterpret_cast<const FIRGBAF*>(FreeImage_GetScanLine(picture.bitmap.get(), static_cast<int>(y))),
            picture.width());
        if (std::ranges::any_of(row, [](const FIRGBAF& pixel) { return pixel.alpha != 1.0F; })) {
            return true;
        }
    }
    return false;
}

} // namespace

void warnOfLosses(const std::string& name, const Picture& source, Form form) {
    if (hasAlpha(source.form) && !hasAlpha(form) && isTransparent(source)) {
        warn(name, "this format has no transparency, the picture becomes opaque");
    }
    if (isFloat(source.form) && !isFloat(form)) {
        warn(name, "this format has 8 bits per channel, values are limited to that");
    }
    if (form == Form::PALETTE8) {
        warn(name, "this format has 256 colours, the picture's are reduced to them");
    }
}

void encodePicture(OutputFile& file, const std::string& name, FREE_IMAGE_FORMAT format, Bitmap bitmap, Form form,
                   const Picture& original, int quality) {
    alsoAsk(FreeImage::getLibraryMessage); // whose component listens in our place from the first picture saved
    listenToFreeImage();
    Bitmap palette;
    if (form == Form::PALETTE8) {
        palette.reset(FreeImage_ColorQuantizeEx(bitmap.get(), FIQ_WUQUANT, 256, 0, nullptr));
        if (!palette) {
            throw Error(name, "its colours cannot be reduced to a palette" + inItsWords());
        }
    }
    carryOver(name, format, (palette ? palette : bitmap).get(), form, original);
    if (isTurnedOver(format)) {
        FreeImage_FlipVertical((palette ? palette : bitmap).get());
    }
    const tov::TovRef<FreeImage> component(new FreeImage((palette ? palette : bitmap).release()));
    const tov::TovRef<FileStream> stream(new FileStream(file));
    // A storage failure is told by the file itself, which knows the reason better than the encoder does.
    if (tov::failed(component->saveToStream(stream.get(), format, saveFlags(format, quality))) && !file.hasFailed()) {
        throw Error(name, std::string("cannot be written as ") + FreeImage_GetFormatFromFIF(format) +
                              inParentheses(FreeImage::getLibraryMessage()) +
                              ", choose another extension such as .png or .tif");
    }
}

} // namespace zqx::img::app
