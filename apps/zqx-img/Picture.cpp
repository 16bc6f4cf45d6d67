// The decisions about bitmaps: FreeImage knows some forty kinds, the image model works with six of them.
#include "Picture.h"

#include <algorithm>
#include <cstdarg>
#include <cstring>
#include <new>
#include <span>

#if defined(__unix__)
#include <dlfcn.h>
#endif

#include <qutil/SehException.h>
#include <qutil/SehTranslator.h>
#include <tov/CountedObject.h>
#include <tov/IOutputStream.h>
#include <zqx/img/FreeImage.h>

#include "Error.h"

namespace zqx::img::app {

namespace {

struct FormInfo {
    FREE_IMAGE_TYPE type;
    int bitsPerPixel;
    Image::Format format;
    bool color;
    bool alpha;
    const char* name;
};

const FormInfo& infoOf(Form form) {
    static constexpr FormInfo INFOS[] = {
        {FIT_BITMAP, 8, Image::SGRAY8, false, false, "8-bit grey"},
        {FIT_BITMAP, 24, Image::SBGR8, true, false, "8-bit colour"},
        {FIT_BITMAP, 32, Image::SBGRA8, true, true, "8-bit colour with alpha"},
        {FIT_FLOAT, 32, Image::GRAY32F, false, false, "float grey"},
        {FIT_RGBF, 96, Image::RGB32F, true, false, "float colour"},
        {FIT_RGBAF, 128, Image::RGBA32F, true, true, "float colour with alpha"},
        {FIT_BITMAP, 24, Image::SBGR8, true, false, "a palette of 256 colours"},
    };
    return INFOS[static_cast<std::size_t>(form)];
}

// FreeImage explains failures only through this callback.
std::string gMessages;

void DLL_CALLCONV noteMessage(FREE_IMAGE_FORMAT, const char* message) {
    std::string line(message);
    std::ranges::replace_if(
        line, [](unsigned char c) { return c < ' ' || c == 0x7F; }, ' ');
    line.erase(line.find_last_not_of(' ') + 1);
    if (!line.empty()) {
        gMessages += (gMessages.empty() ? "" : "; ") + line;
    }
}

/// The TIFF decoder's library writes to standard error by itself, at length and about harmless tags. What matters of it
/// reaches us through FreeImage as well.
void quietenTiffLibrary() {
#if defined(__unix__)
    using Handler = void (*)(const char*, const char*, va_list);
    for (const char* setter : {"TIFFSetErrorHandler", "TIFFSetWarningHandler"}) {
        if (void* symbol = dlsym(RTLD_DEFAULT, setter)) {
            reinterpret_cast<Handler (*)(Handler)>(symbol)(nullptr);
        }
    }
#endif
}

void listenToFreeImage() {
    gMessages.clear();
    FreeImage_SetOutputMessage(noteMessage);
    quietenTiffLibrary();
}

/// Several decoders fill up what is missing at the end of a file without a word. What a complete file lets its decoder
/// read differs: some never read a byte too many, some read ahead in blocks, and some check for themselves.
bool isCutShort(const InputFile& file, FREE_IMAGE_FORMAT format) {
    switch (format) {
    case FIF_BMP:
    case FIF_EXR:
    case FIF_HDR:
    case FIF_PBM:
    case FIF_PBMRAW:
    case FIF_PGM:
    case FIF_PGMRAW:
    case FIF_PPM:
    case FIF_PPMRAW:
    case FIF_PSD:
    case FIF_RAS:
    case FIF_SGI: return file.wasReadShort();
    case FIF_JPEG:
    case FIF_PCX:
    case FIF_TARGA: return file.wasReadAtEnd();
    default: return false;
    }
}

std::string inParentheses(const std::string& words) {
    return words.empty() ? words : " (" + words + ")";
}

std::string inItsWords() {
    return inParentheses(gMessages);
}

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

/// A portable float map stores its bottom row first. FreeImage takes that row for the top one, both ways.
bool isTurnedOver(FREE_IMAGE_FORMAT format) {
    return format == FIF_PFM;
}

int loadFlags(FREE_IMAGE_FORMAT format) {
    switch (format) {
    case FIF_JPEG: return JPEG_ACCURATE | JPEG_EXIFROTATE;
    case FIF_ICO: return ICO_MAKEALPHA;
    case FIF_RAW: return RAW_DISPLAY; // the default is linear light in 16 bits, which would be taken for encoded colour
    default: return 0;
    }
}

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

/// FreeImage names what its encoders accept, which is not always what the file then is.
bool canHold(FREE_IMAGE_FORMAT format, Form form) {
    const FormInfo& info = infoOf(form);
    if (format == FIF_PSD && !info.color) {
        return false; // its grey files come out with a broken header, which FreeImage cannot read back itself
    }
    if (info.type != FIT_BITMAP) {
        return FreeImage_FIFSupportsExportType(format, info.type) != 0;
    }
    switch (format) {
    case FIF_JPEG:
        if (form == Form::RGBA8) {
            return false; // four channels of a JPEG are printing inks
        }
        break;
    case FIF_PBM:
    case FIF_PBMRAW: return false; // black and white only; anything else would be another format under this name
    case FIF_PGM:
    case FIF_PGMRAW: return form == Form::GREY8;
    case FIF_PPM:
    case FIF_PPMRAW: return form == Form::RGB8;
    default: break;
    }
    return FreeImage_FIFSupportsExportBPP(format, form == Form::PALETTE8 ? 8 : info.bitsPerPixel) != 0;
}

/// What to write instead of a form that a file format cannot hold, least loss first.
std::span<const Form> preferences(Form wanted) {
    using enum Form;
    static constexpr Form FOR_GREY8[] = {GREY8, RGB8, GREY_FLOAT, RGB_FLOAT};
    static constexpr Form FOR_RGB8[] = {RGB8, RGBA8, RGB_FLOAT, PALETTE8};
    static constexpr Form FOR_RGBA8[] = {RGBA8, RGBA_FLOAT, RGB8, RGB_FLOAT, PALETTE8};
    static constexpr Form FOR_GREY_FLOAT[] = {GREY_FLOAT, RGB_FLOAT, GREY8, RGB8};
    static constexpr Form FOR_RGB_FLOAT[] = {RGB_FLOAT, RGBA_FLOAT, RGB8, RGBA8, PALETTE8};
    static constexpr Form FOR_RGBA_FLOAT[] = {RGBA_FLOAT, RGBA8, RGB_FLOAT, RGB8, PALETTE8};
    switch (wanted) {
    case GREY8: return FOR_GREY8;
    case RGBA8: return FOR_RGBA8;
    case GREY_FLOAT: return FOR_GREY_FLOAT;
    case RGB_FLOAT: return FOR_RGB_FLOAT;
    case RGBA_FLOAT: return FOR_RGBA_FLOAT;
    case RGB8:
    case PALETTE8: break;
    }
    return FOR_RGB8;
}

std::span<const RGBQUAD> paletteOf(FIBITMAP* bitmap) {
    return {FreeImage_GetPalette(bitmap), FreeImage_GetColorsUsed(bitmap)};
}

bool hasGreyPalette(FIBITMAP* bitmap) {
    return std::ranges::all_of(paletteOf(bitmap), [](const RGBQUAD& entry) {
        return entry.rgbRed == entry.rgbGreen && entry.rgbGreen == entry.rgbBlue;
    });
}

/// True where the index already is the grey value.
bool isGreyRamp(FIBITMAP* bitmap) {
    const std::span<const RGBQUAD> palette = paletteOf(bitmap);
    for (std::size_t i = 0; i < palette.size(); ++i) {
        if (palette[i].rgbRed != i) {
            return false;
        }
    }
    return FreeImage_GetBPP(bitmap) == 8;
}

FIBITMAP* doublesToFloats(FIBITMAP* bitmap) {
    const unsigned width = FreeImage_GetWidth(bitmap);
    const unsigned height = FreeImage_GetHeight(bitmap);
    FIBITMAP* result = FreeImage_AllocateT(FIT_FLOAT, static_cast<int>(width), static_cast<int>(height), 32);
    for (unsigned y = 0; result != nullptr && y < height; ++y) {
        const auto* from = reinterpret_cast<const double*>(FreeImage_GetScanLine(bitmap, static_cast<int>(y)));
        auto* to = reinterpret_cast<float*>(FreeImage_GetScanLine(result, static_cast<int>(y)));
        std::transform(from, from + width, to, [](double value) { return static_cast<float>(value); });
    }
    return result;
}

struct Converted {
    FIBITMAP* bitmap; // the one given where nothing had to be converted
    Form form;
};

Converted convertPalette(FIBITMAP* bitmap) {
    if (FreeImage_IsTransparent(bitmap)) {
        return {FreeImage_ConvertTo32Bits(bitmap), Form::RGBA8};
    }
    if (!hasGreyPalette(bitmap)) {
        return {FreeImage_ConvertTo24Bits(bitmap), Form::RGB8};
    }
    return {isGreyRamp(bitmap) ? bitmap : FreeImage_ConvertToGreyscale(bitmap), Form::GREY8};
}

Converted convertStandard(FIBITMAP* bitmap) {
    switch (FreeImage_GetBPP(bitmap)) {
    case 32: return {bitmap, Form::RGBA8};
    case 24: return {bitmap, Form::RGB8};
    case 16: return {FreeImage_ConvertTo24Bits(bitmap), Form::RGB8};
    default: return convertPalette(bitmap);
    }
}

Converted convertStretched(const std::string& name, FIBITMAP* bitmap) {
    warn(name, "holds numbers without a known range, which are stretched to 8-bit grey");
    return {FreeImage_ConvertToStandardType(bitmap, TRUE), Form::GREY8};
}

Converted convertToWorkingForm(const std::string& name, FIBITMAP* bitmap) {
    const FREE_IMAGE_TYPE type = FreeImage_GetImageType(bitmap);
    if (type == FIT_UINT16 || type == FIT_RGB16 || type == FIT_RGBA16) {
        warn(name, "has 16 bits per channel, of which the upper 8 are used");
    }
    switch (type) {
    case FIT_BITMAP: return convertStandard(bitmap);
    case FIT_UINT16: return {FreeImage_ConvertTo8Bits(bitmap), Form::GREY8};
    case FIT_RGB16: return {FreeImage_ConvertTo24Bits(bitmap), Form::RGB8};
    case FIT_RGBA16: return {FreeImage_ConvertTo32Bits(bitmap), Form::RGBA8};
    case FIT_FLOAT: return {bitmap, Form::GREY_FLOAT};
    case FIT_DOUBLE: return {doublesToFloats(bitmap), Form::GREY_FLOAT};
    case FIT_RGBF: return {bitmap, Form::RGB_FLOAT};
    case FIT_RGBAF: return {bitmap, Form::RGBA_FLOAT};
    default: return convertStretched(name, bitmap);
    }
}

std::vector<BYTE> iccProfileOf(FIBITMAP* bitmap) {
    const FIICCPROFILE* profile = FreeImage_GetICCProfile(bitmap);
    if (profile == nullptr || profile->data == nullptr) {
        return {};
    }
    const BYTE* bytes = static_cast<const BYTE*>(profile->data);
    return {bytes, bytes + profile->size};
}

constexpr WORD UPRIGHT = 1;

/// Finds the orientation entry of the first directory of an Exif block ("Exif", two zeros, then a TIFF header; see Exif
/// 2.3, 4.6) and sets it upright. A block that is not understood is left as it is.
void markUpright(std::span<BYTE> exif) {
    constexpr std::size_t HEADER = 6;
    constexpr std::size_t ENTRY_SIZE = 12;
    constexpr unsigned ORIENTATION_TAG = 0x0112;
    if (exif.size() < HEADER + 8 || std::memcmp(exif.data(), "Exif\0\0", HEADER) != 0) {
        return;
    }
    const std::span<BYTE> tiff = exif.subspan(HEADER);
    const bool bigEndian = tiff[0] == 'M';
    const auto number = [&](std::size_t offset, std::size_t size) {
        std::size_t value = 0;
        for (std::size_t i = 0; i < size; ++i) {
            value = value << 8 | tiff[offset + (bigEndian ? i : size - 1 - i)];
        }
        return value;
    };
    const std::size_t directory = number(4, 4);
    if (directory > tiff.size() - 2) {
        return;
    }
    const std::size_t entries = std::min(number(directory, 2), (tiff.size() - directory - 2) / ENTRY_SIZE);
    for (std::size_t entry = directory + 2; entry < directory + 2 + entries * ENTRY_SIZE; entry += ENTRY_SIZE) {
        if (number(entry, 2) == ORIENTATION_TAG) {
            tiff[entry + 8] = bigEndian ? 0 : UPRIGHT;
            tiff[entry + 9] = bigEndian ? UPRIGHT : 0;
        }
    }
}

/// Tells all metadata of a bitmap that it is upright now: turned twice it would be wrong again.
void markUpright(FIBITMAP* bitmap) {
    FITAG* tag = nullptr;
    if (FreeImage_GetMetadata(FIMD_EXIF_MAIN, bitmap, "Orientation", &tag) && FreeImage_GetTagType(tag) == FIDT_SHORT &&
        FreeImage_GetTagCount(tag) == 1) {
        FreeImage_SetTagValue(tag, &UPRIGHT);
    }
    if (FreeImage_GetMetadata(FIMD_EXIF_RAW, bitmap, "ExifRaw", &tag)) {
        const auto* bytes = static_cast<const BYTE*>(FreeImage_GetTagValue(tag));
        std::vector<BYTE> block(bytes, bytes + FreeImage_GetTagLength(tag));
        markUpright(block);
        FreeImage_SetTagValue(tag, block.data());
    }
}

/// Profiles describe one colour space and one encoding of it; on other pixels they do harm.
bool profileFits(const Picture& original, Form form) {
    constexpr std::size_t SIGNATURE_OFFSET = 16;
    constexpr std::size_t HEADER_SIZE = 128;
    const std::vector<BYTE>& profile = original.iccProfile;
    return profile.size() >= HEADER_SIZE && isFloat(form) == isFloat(original.form) &&
           std::memcmp(profile.data() + SIGNATURE_OFFSET, hasColor(form) ? "RGB " : "GRAY", 4) == 0;
}

void carryOver(const std::string& name, FREE_IMAGE_FORMAT format, FIBITMAP* bitmap, Form form,
               const Picture& original) {
    FreeImage_CloneMetadata(bitmap, original.bitmap.get()); // the resolution comes with it
    if (original.turnedUpright) {
        markUpright(bitmap);
    }
    if (original.iccProfile.empty()) {
        return;
    }
    if (!FreeImage_FIFSupportsICCProfiles(format) || !profileFits(original, form)) {
        warn(name, "the colour profile of the source does not fit this file and is left out");
        return;
    }
    std::vector<BYTE> profile = original.iccProfile;
    FreeImage_CreateICCProfile(bitmap, profile.data(), static_cast<long>(profile.size()));
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

bool hasColor(Form form) {
    return infoOf(form).color;
}
bool hasAlpha(Form form) {
    return infoOf(form).alpha;
}
bool isFloat(Form form) {
    return infoOf(form).type != FIT_BITMAP;
}

Bitmap decodeBitmap(InputFile& file, FREE_IMAGE_FORMAT format, int flags) {
    listenToFreeImage();
    Bitmap bitmap;
    try {
        const qutil::SehTranslator translator; // FreeImage's decoders trust what damaged files say of themselves
        bitmap.reset(file.decode(format, flags));
    } catch (const qutil::SehException&) {
        throw Error(file.name(), std::string("brought the ") + FreeImage_GetFormatFromFIF(format) +
                                     " decoder down, the file must be damaged");
    }
    if (!bitmap) {
        throw Error(file.name(), std::string("cannot be read as ") + FreeImage_GetFormatFromFIF(format) + inItsWords() +
                                     ", the file may be damaged");
    }
    return bitmap;
}

Picture loadPicture(const std::string& name) {
    InputFile file(name);
    const FREE_IMAGE_FORMAT format = file.detectFormat();
    Bitmap bitmap = decodeBitmap(file, format, loadFlags(format));
    if (isCutShort(file, format)) {
        throw Error(name, "is cut short" + inItsWords() + ", get a complete copy");
    }
    if (!gMessages.empty()) {
        warn(name, gMessages);
    }
    if (isTurnedOver(format)) {
        FreeImage_FlipVertical(bitmap.get());
    }
    if (!FreeImage_HasPixels(bitmap.get())) {
        throw Error(name, "holds no pixels");
    }
    if (FreeImage_GetColorType(bitmap.get()) == FIC_CMYK) {
        throw Error(name, "is in printing inks (CMYK), convert it to RGB first");
    }
    Picture picture{nullptr, Form::RGB8, iccProfileOf(bitmap.get()), format == FIF_JPEG};
    const Converted converted = convertToWorkingForm(name, bitmap.get());
    if (converted.bitmap == nullptr) {
        throw Error(name, "cannot be converted" + inItsWords());
    }
    if (converted.bitmap == bitmap.get()) {
        picture.bitmap = std::move(bitmap);
    } else {
        picture.bitmap.reset(converted.bitmap);
        FreeImage_CloneMetadata(converted.bitmap, bitmap.get());
    }
    picture.form = converted.form;
    return picture;
}

FREE_IMAGE_FORMAT outputFormat(const std::string& name) {
    const FREE_IMAGE_FORMAT format = FreeImage_GetFIFFromFilename(name.c_str());
    if (format == FIF_UNKNOWN) {
        throw UsageError(name, "no picture format has this extension, use one such as .png, .jpg or .tif");
    }
    if (!FreeImage_FIFSupportsWriting(format)) {
        throw UsageError(name, std::string(FreeImage_GetFormatFromFIF(format)) +
                                   " files can only be read, use an extension such as .png, .jpg or .tif");
    }
    return format;
}

Form chooseForm(const std::string& name, FREE_IMAGE_FORMAT format, Form wanted) {
    for (const Form form : preferences(wanted)) {
        if (canHold(format, form)) {
            return form;
        }
    }
    throw Error(name, std::string(FreeImage_GetFormatFromFIF(format)) + " files cannot hold " + infoOf(wanted).name +
                          ", choose another extension such as .png or .tif");
}

Bitmap allocateBitmap(Form form, unsigned width, unsigned height) {
    const FormInfo& info = infoOf(form);
    Bitmap bitmap(FreeImage_AllocateT(info.type, static_cast<int>(width), static_cast<int>(height), info.bitsPerPixel,
                                      FI_RGBA_RED_MASK, FI_RGBA_GREEN_MASK, FI_RGBA_BLUE_MASK));
    if (!bitmap) {
        throw std::bad_alloc();
    }
    return bitmap;
}

Image viewOf(const Bitmap& bitmap, Form form) {
    return {FreeImage_GetBits(bitmap.get()), FreeImage_GetWidth(bitmap.get()), FreeImage_GetHeight(bitmap.get()),
            infoOf(form).format, FreeImage_GetPitch(bitmap.get())};
}

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
