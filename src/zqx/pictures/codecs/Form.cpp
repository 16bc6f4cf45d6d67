// What the working bitmaps are, and which of them a file format can hold.
#include "zqx/pictures/codecs/Form.h"

#include <mutex>
#include <new>
#include <span>

#include "zqx/pictures/files/Error.h"

namespace zqx::pictures {

namespace {

struct FormInfo {
    FREE_IMAGE_TYPE type; // in a file
    int bitsPerPixel;
    Form working;
    img::Image::Format format; // of the working form
    bool color;
    bool alpha;
    const char* name;
};

const FormInfo& infoOf(Form form) {
    using enum Form;
    static constexpr FormInfo INFOS[FORM_COUNT] = {
        {FIT_BITMAP, 8, GREY8, img::Image::SGRAY8, false, false, "8-bit grey"},
        {FIT_BITMAP, 24, RGB8, img::Image::SBGR8, true, false, "8-bit colour"},
        {FIT_BITMAP, 32, RGBA8, img::Image::SBGRA8, true, true, "8-bit colour with alpha"},
        {FIT_FLOAT, 32, GREY_FLOAT, img::Image::GRAY32F, false, false, "float grey"},
        {FIT_RGBF, 96, RGB_FLOAT, img::Image::RGB32F, true, false, "float colour"},
        {FIT_RGBAF, 128, RGBA_FLOAT, img::Image::RGBA32F, true, true, "float colour with alpha"},
        {FIT_UINT16, 16, GREY_FLOAT, img::Image::GRAY32F, false, false, "16-bit grey"},
        {FIT_RGB16, 48, RGB_FLOAT, img::Image::RGB32F, true, false, "16-bit colour"},
        {FIT_RGBA16, 64, RGBA_FLOAT, img::Image::RGBA32F, true, true, "16-bit colour with alpha"},
        {FIT_BITMAP, 8, RGB8, img::Image::SBGR8, true, false, "a palette of 256 colours"},
    };
    return INFOS[static_cast<std::size_t>(form)];
}

/// FreeImage names what its encoders accept, which is not always what the file then is.
bool canHold(FREE_IMAGE_FORMAT format, Form form) {
    const FormInfo& info = infoOf(form);
    switch (format) {
    case FIF_PSD:
        if (!info.color && info.type != FIT_UINT16) {
            return false; // its other grey files come out with a broken header, which FreeImage cannot read back itself
        }
        break;
    case FIF_JPEG:
        if (form == Form::RGBA8) {
            return false; // four channels of a JPEG are printing inks
        }
        break;
    case FIF_PBM:
    case FIF_PBMRAW: return false; // black and white only; anything else would be another format under this name
    case FIF_PGM:
    case FIF_PGMRAW: return form == Form::GREY8 || form == Form::GREY16;
    case FIF_PPM:
    case FIF_PPMRAW: return form == Form::RGB8 || form == Form::RGB16;
    default: break;
    }
    return info.type == FIT_BITMAP ? FreeImage_FIFSupportsExportBPP(format, info.bitsPerPixel) != 0
                                   : FreeImage_FIFSupportsExportType(format, info.type) != 0;
}

/// What to write instead of a form that a file format cannot hold, least loss first.
std::span<const Form> preferences(Form wanted) {
    using enum Form;
    static constexpr Form FOR_GREY8[] = {GREY8, RGB8, GREY_FLOAT, RGB_FLOAT};
    static constexpr Form FOR_RGB8[] = {RGB8, RGBA8, RGB_FLOAT, PALETTE8};
    static constexpr Form FOR_RGBA8[] = {RGBA8, RGBA_FLOAT, RGB8, RGB_FLOAT, PALETTE8};
    static constexpr Form FOR_GREY16[] = {GREY16, RGB16, GREY_FLOAT, RGB_FLOAT, GREY8, RGB8};
    static constexpr Form FOR_RGB16[] = {RGB16, RGBA16, RGB_FLOAT, RGB8, RGBA8, PALETTE8};
    static constexpr Form FOR_RGBA16[] = {RGBA16, RGBA_FLOAT, RGBA8, RGB16, RGB_FLOAT, RGB8, PALETTE8};
    static constexpr Form FOR_GREY_FLOAT[] = {GREY_FLOAT, RGB_FLOAT, GREY16, RGB16, GREY8, RGB8};
    static constexpr Form FOR_RGB_FLOAT[] = {RGB_FLOAT, RGBA_FLOAT, RGB16, RGBA16, RGB8, RGBA8, PALETTE8};
    static constexpr Form FOR_RGBA_FLOAT[] = {RGBA_FLOAT, RGBA16, RGBA8, RGB_FLOAT, RGB16, RGB8, PALETTE8};
    switch (wanted) {
    case GREY8: return FOR_GREY8;
    case RGBA8: return FOR_RGBA8;
    case GREY16: return FOR_GREY16;
    case RGB16: return FOR_RGB16;
    case RGBA16: return FOR_RGBA16;
    case GREY_FLOAT: return FOR_GREY_FLOAT;
    case RGB_FLOAT: return FOR_RGB_FLOAT;
    case RGBA_FLOAT: return FOR_RGBA_FLOAT;
    case RGB8:
    case PALETTE8: break;
    }
    return FOR_RGB8;
}

} // namespace

Form workingForm(Form form) {
    return infoOf(form).working;
}
bool hasColor(Form form) {
    return infoOf(form).color;
}
bool hasAlpha(Form form) {
    return infoOf(form).alpha;
}
bool isFloat(Form form) {
    return depthOf(form) == 32;
}

int depthOf(Form form) {
    switch (infoOf(form).type) {
    case FIT_BITMAP: return 8;
    case FIT_UINT16:
    case FIT_RGB16:
    case FIT_RGBA16: return 16;
    default: return 32;
    }
}

const char* nameOf(Form form) {
    return infoOf(form).name;
}

bool isTurnedOver(FREE_IMAGE_FORMAT format) {
    return format == FIF_PFM;
}

FREE_IMAGE_FORMAT formatOfName(const std::string& name) {
    static std::mutex mutex; // FreeImage takes names apart with strtok, whose place is one for all threads
    const std::lock_guard lock(mutex);
    return FreeImage_GetFIFFromFilename(name.c_str());
}

FREE_IMAGE_FORMAT outputFormat(const std::string& name) {
    const FREE_IMAGE_FORMAT format = formatOfName(name);
    if (format == FIF_UNKNOWN) {
        throw UsageError(name, "no picture format has this extension, use one such as .png, .jpg or .tif");
    }
    // FreeImage has a JPEG XR encoder, but it fails on every picture when it writes to a stream.
    if (format == FIF_JXR || !FreeImage_FIFSupportsWriting(format)) {
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
    throw Error(name, std::string(FreeImage_GetFormatFromFIF(format)) + " files cannot hold " + nameOf(wanted) +
                          ", choose another extension such as .png or .tif");
}

Bitmap allocateBitmap(Form form, unsigned width, unsigned height) {
    const FormInfo& info = infoOf(workingForm(form));
    Bitmap bitmap(FreeImage_AllocateT(info.type, static_cast<int>(width), static_cast<int>(height), info.bitsPerPixel,
                                      FI_RGBA_RED_MASK, FI_RGBA_GREEN_MASK, FI_RGBA_BLUE_MASK));
    if (!bitmap) {
        throw std::bad_alloc();
    }
    return bitmap;
}

img::Image viewOf(const Bitmap& bitmap, Form form) {
    return {FreeImage_GetBits(bitmap.get()), FreeImage_GetWidth(bitmap.get()), FreeImage_GetHeight(bitmap.get()),
            infoOf(form).format, FreeImage_GetPitch(bitmap.get())};
}

} // namespace zqx::pictures
