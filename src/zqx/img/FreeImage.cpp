// The bitmap component: its bitmap, files and streams. Pixels are in FreeImagePixels.cpp, transforms in
// FreeImageTransforms.cpp.
#include <limits>
#include <memory>
#include <mutex>

#include <qutil/Assert.h>

#include "FreeImageAdapter.h"
#include "FreeImageSupport.h"
#include "system/LibraryMessages.h"

#if defined(_WIN32)
#include <qutil/XString.h>
#endif

namespace zqx::img {

namespace {

constexpr int DETECT_FORMAT = -1;

struct MemoryCloser {
    void operator()(FIMEMORY* memory) const { FreeImage_CloseMemory(memory); }
};
using Memory = std::unique_ptr<FIMEMORY, MemoryCloser>;

struct RuntimeMemoryFreer {
    void operator()(unsigned char* bytes) const { tov::tovFree(bytes); }
};
using RuntimeBytes = std::unique_ptr<unsigned char, RuntimeMemoryFreer>;

struct TagDeleter {
    void operator()(FITAG* tag) const { FreeImage_DeleteTag(tag); }
};
using Tag = std::unique_ptr<FITAG, TagDeleter>;

/// Level of what explains a failure and is none itself.
constexpr int EXPLANATION_LEVEL = 3;

/// Logs what FreeImage said, where somebody wants to know so much, before the failure is. @return the result
tov::Result explained(const detail::MethodSite& site, tov::Result result) {
    if (const std::string& words = LibraryMessages::ofThisThread(); tov::failed(result) && !words.empty()) {
        detail::logMethod(site, "FreeImage: ", words.c_str(), EXPLANATION_LEVEL);
    }
    return result;
}

#if defined(_WIN32)
FIBITMAP* loadFile(FREE_IMAGE_FORMAT format, const char* path, int flags) {
    return FreeImage_LoadU(format, qutil::XString(path).toWide().c_str(), flags);
}

bool saveFile(FREE_IMAGE_FORMAT format, FIBITMAP* bitmap, const char* path, int flags) {
    return FreeImage_SaveU(format, bitmap, qutil::XString(path).toWide().c_str(), flags) != 0;
}
#else
// FreeImage's wide-name calls do nothing outside Windows; narrow names are UTF-8 there anyway.
FIBITMAP* loadFile(FREE_IMAGE_FORMAT format, const char* path, int flags) {
    return FreeImage_Load(format, path, flags);
}

bool saveFile(FREE_IMAGE_FORMAT format, FIBITMAP* bitmap, const char* path, int flags) {
    return FreeImage_Save(format, bitmap, path, flags) != 0;
}
#endif

/// Saves into memory. The library is listened to for as long as it works, and not while a stream takes what it made.
bool encode(FREE_IMAGE_FORMAT format, FIBITMAP* bitmap, FIMEMORY* memory, int flags) {
    const LibraryMessages messages;
    return FreeImage_SaveToMemory(format, bitmap, memory, flags) != 0;
}

/// Content decides, then the extension.
FREE_IMAGE_FORMAT detectFormat(const char* path) {
    const FREE_IMAGE_FORMAT byContent = FreeImage_GetFileType(path, 0);
    if (byContent != FIF_UNKNOWN) {
        return byContent;
    }
    static std::mutex mutex; // FreeImage takes names apart with strtok, whose place is one for all threads
    const std::lock_guard lock(mutex);
    return FreeImage_GetFIFFromFilename(path);
}

/// Stores a number that FreeImage tells of a bitmap.
template <typename Query>
tov::Result queryBitmap(const detail::MethodSite& site, const char* parameter, int* pOut, FIBITMAP* bitmap,
                        const Query& query) {
    if (pOut == nullptr) {
        return detail::nullArgument(site, parameter);
    }
    if (bitmap == nullptr) {
        return detail::reported(site, tov::NOT_READY);
    }
    *pOut = static_cast<int>(query(bitmap));
    return tov::SUCCESS;
}

/// Asks whether to go on after a failure.
bool continuesAfter(tov::Result result) {
    return zqxAssert(qutil::tovStrError(result));
}

/// All bytes of a stream. A failing stream's code is passed on, unless the assertion handler chooses to go on.
tov::Result readStream(qutil::IIOStream& stream, RuntimeBytes& bytes, std::uint32_t& size) {
    tov::Result result = stream.getSize(&size);
    if (tov::failed(result) && !continuesAfter(result)) {
        return result;
    }
    unsigned char* buffer = nullptr;
    result = stream.read(size, &buffer);
    bytes.reset(buffer);
    return tov::failed(result) && !continuesAfter(result) ? result : tov::SUCCESS;
}

} // namespace

FreeImage::~FreeImage() {
    FreeImage::unload();
}

FreeImage* FreeImage::create() {
    return new FreeImage;
}

tov::TovRef<FreeImage> FreeImage::load(const char* path) {
    tov::TovRef<FreeImage> image(create());
    const tov::Result result = image->load(DETECT_FORMAT, path, 0);
    if (tov::failed(result) && !continuesAfter(result)) {
        return {};
    }
    return image;
}

tov::Result FreeImage::load(int format, const char* path, int flags) {
    const detail::MethodSite site = ZQX_FREEIMAGE_SITE;
    if (path == nullptr) {
        return detail::nullArgument(site, "path");
    }
    return detail::guarded(site, [&]() -> tov::Result {
        const LibraryMessages messages;
        const FREE_IMAGE_FORMAT known =
            format == DETECT_FORMAT ? detectFormat(path) : static_cast<FREE_IMAGE_FORMAT>(format);
        if (known == FIF_UNKNOWN || FreeImage_FIFSupportsReading(known) == 0) {
            return explained(site, tov::FAILURE);
        }
        unload();
        mBitmap = loadFile(known, path, flags);
        return explained(site, successIf(mBitmap != nullptr));
    });
}

tov::Result FreeImage::loadFromStream(int format, qutil::IIOStream* pStream, int flags) {
    const detail::MethodSite site = ZQX_FREEIMAGE_SITE;
    if (pStream == nullptr) {
        return detail::nullArgument(site, "pStream");
    }
    return detail::guarded(site, [&]() -> tov::Result {
        LibraryMessages::forget();
        RuntimeBytes bytes;
        std::uint32_t size = 0;
        if (const tov::Result result = readStream(*pStream, bytes, size); tov::failed(result)) {
            return result;
        }
        const LibraryMessages messages;
        const Memory memory(FreeImage_OpenMemory(bytes.get(), size)); // without bytes: an empty file
        if (!memory) {
            return tov::FAILURE;
        }
        const FREE_IMAGE_FORMAT known = format == DETECT_FORMAT ? FreeImage_GetFileTypeFromMemory(memory.get(), 0)
                                                                : static_cast<FREE_IMAGE_FORMAT>(format);
        if (known == FIF_UNKNOWN) {
            return tov::FAILURE;
        }
        if (FreeImage_FIFSupportsReading(known) != 0) {
            unload();
            mBitmap = FreeImage_LoadFromMemory(known, memory.get(), flags);
        }
        return explained(site, successIf(mBitmap != nullptr)); // whichever bitmap is held now
    });
}

tov::Result FreeImage::save(int format, const char* path, int flags) {
    LibraryMessages::forget();
    if (path == nullptr) {
        return tov::INVALID_ARGUMENT;
    }
    if (mBitmap == nullptr) {
        return tov::NOT_READY;
    }
    if (!supportsWriting(format)) {
        return tov::NOT_SUPPORTED;
    }
    const LibraryMessages messages;
    return successIf(saveFile(static_cast<FREE_IMAGE_FORMAT>(format), mBitmap, path, flags));
}

tov::Result FreeImage::saveToStream(tov::IOutputStream* pStream, int format, int flags) {
    const detail::MethodSite site = ZQX_FREEIMAGE_SITE;
    if (pStream == nullptr) {
        return tov::INVALID_ARGUMENT; // not logged
    }
    return detail::guarded(site, [&]() -> tov::Result {
        LibraryMessages::forget();
        if (mBitmap == nullptr) {
            return tov::NOT_READY;
        }
        if (!supportsWriting(format)) {
            return tov::NOT_SUPPORTED;
        }
        const Memory memory(FreeImage_OpenMemory(nullptr, 0));
        if (!memory) {
            return tov::FAILURE;
        }
        BYTE* bytes = nullptr;
        DWORD size = 0;
        if (!encode(static_cast<FREE_IMAGE_FORMAT>(format), mBitmap, memory.get(), flags) ||
            FreeImage_AcquireMemory(memory.get(), &bytes, &size) == 0) {
            return explained(site, tov::FAILURE);
        }
        return pStream->write({size, bytes});
    });
}

bool FreeImage::supportsWriting(int format) const {
    const auto file = static_cast<FREE_IMAGE_FORMAT>(format);
    if (FreeImage_FIFSupportsWriting(file) == 0) {
        return false;
    }
    const FREE_IMAGE_TYPE type = FreeImage_GetImageType(mBitmap);
    return type == FIT_BITMAP ? FreeImage_FIFSupportsExportBPP(file, static_cast<int>(FreeImage_GetBPP(mBitmap))) != 0
                              : FreeImage_FIFSupportsExportType(file, type) != 0;
}

tov::Result FreeImage::allocate(int type, int width, int height, int bitsPerPixel) {
    return detail::guarded(ZQX_FREEIMAGE_SITE, [&] {
        unload();
        mBitmap = FreeImage_AllocateT(static_cast<FREE_IMAGE_TYPE>(type), width, height, bitsPerPixel, 0, 0, 0);
        return successIf(mBitmap != nullptr);
    });
}

tov::Result FreeImage::unload() {
    if (mBitmap != nullptr) {
        FreeImage_Unload(mBitmap);
        mBitmap = nullptr;
    }
    return tov::SUCCESS;
}

tov::Result FreeImage::getWidth(int* pWidth) {
    return queryBitmap(ZQX_FREEIMAGE_SITE, "pWidth", pWidth, mBitmap, FreeImage_GetWidth);
}

tov::Result FreeImage::getHeight(int* pHeight) {
    return queryBitmap(ZQX_FREEIMAGE_SITE, "pHeight", pHeight, mBitmap, FreeImage_GetHeight);
}

tov::Result FreeImage::getBitsPerPixel(int* pBitsPerPixel) {
    return queryBitmap(ZQX_FREEIMAGE_SITE, "pBitsPerPixel", pBitsPerPixel, mBitmap, FreeImage_GetBPP);
}

tov::Result FreeImage::getDataType(int* pType) {
    return queryBitmap(ZQX_FREEIMAGE_SITE, "pType", pType, mBitmap, FreeImage_GetImageType);
}

tov::Result FreeImage::getPitch(int* pPitch) {
    const detail::MethodSite site = ZQX_FREEIMAGE_SITE;
    if (mBitmap == nullptr) {
        return detail::reported(site, tov::NOT_READY); // before the pointer, unlike the other sizes
    }
    return queryBitmap(site, "pPitch", pPitch, mBitmap, FreeImage_GetPitch);
}

tov::Result FreeImage::setMetaData(const char* pXmp) {
    return detail::guarded(ZQX_FREEIMAGE_SITE, [&]() -> tov::Result {
        constexpr const char* KEY = "XMLPacket";
        const char* packet = pXmp == nullptr ? "" : pXmp;
        const Tag tag(FreeImage_CreateTag());
        if (!tag || mBitmap == nullptr) {
            return tov::FAILURE;
        }
        const std::size_t size = getLength(packet) + 1; // with the terminating zero
        if (size > std::numeric_limits<DWORD>::max()) {
            return tov::FAILURE;
        }
        const auto length = static_cast<DWORD>(size);
        FreeImage_SetTagKey(tag.get(), KEY);
        FreeImage_SetTagLength(tag.get(), length);
        FreeImage_SetTagCount(tag.get(), length);
        FreeImage_SetTagType(tag.get(), FIDT_ASCII);
        FreeImage_SetTagValue(tag.get(), packet);
        return successIf(FreeImage_SetMetadata(FIMD_XMP, mBitmap, KEY, tag.get()) != 0);
    });
}

std::size_t FreeImage::getWidth() const {
    return FreeImage_GetWidth(mBitmap);
}

std::size_t FreeImage::getHeight() const {
    return FreeImage_GetHeight(mBitmap);
}

std::size_t FreeImage::getBitsPerPixel() const {
    return FreeImage_GetBPP(mBitmap);
}

std::shared_ptr<Image> FreeImage::asImage() {
    return std::make_shared<FreeImageAdapter>(this);
}

std::string FreeImage::getLibraryMessage() {
    return LibraryMessages::ofThisThread();
}

} // namespace zqx::img
