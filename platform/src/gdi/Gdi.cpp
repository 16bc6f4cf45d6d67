// Device-independent bitmaps in memory, where the system has none. On Windows this file is empty.
#include <gdi/Gdi.h>

#if !defined(_WIN32)

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstring>
#include <limits>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <utility>
#include <vector>

namespace gdi {

namespace {

/// The bitmap information header as it lies in files and in memory.
struct InfoHeader {
    std::uint32_t size;
    std::int32_t width;
    std::int32_t height;
    std::uint16_t planes;
    std::uint16_t bitsPerPixel;
    std::uint32_t compression;
    std::uint32_t imageSize;
    std::int32_t horizontalPixelsPerMeter;
    std::int32_t verticalPixelsPerMeter;
    std::uint32_t coloursUsed;
    std::uint32_t coloursImportant;
};
static_assert(sizeof(InfoHeader) == 40);

/// Blue, green, red, and a fourth byte that is alpha in pixels and nothing in palettes.
using Colour = std::array<unsigned char, 4>;
using Palette = std::array<Colour, 256>;

struct Bitmap {
    std::int32_t width;
    std::int32_t height;
    std::uint16_t bitsPerPixel;
    Palette palette = {};
    std::vector<unsigned char> bits;
};

struct Registry {
    std::mutex mutex;
    std::uintptr_t lastHandle = 0;
    std::map<std::uintptr_t, std::shared_ptr<Bitmap>> bitmaps;
    std::set<std::uintptr_t> contexts;

    /// Handles are not used again, so a stale one stays invalid.
    std::uintptr_t newHandle() { return lastHandle += 4; }
};

/// Never destroyed: destructors of static objects may still delete bitmaps.
Registry& registry() {
    static Registry& instance = *new Registry;
    return instance;
}

std::uintptr_t getKey(const void* handle) {
    return reinterpret_cast<std::uintptr_t>(handle);
}

/// Shared, so that a bitmap deleted on another thread lasts until a call on it has ended.
std::shared_ptr<Bitmap> find(const void* handle) {
    Registry& live = registry();
    const std::scoped_lock lock(live.mutex);
    const auto entry = live.bitmaps.find(getKey(handle));
    return entry == live.bitmaps.end() ? nullptr : entry->second;
}

bool isLiveContext(HDC context) {
    Registry& live = registry();
    const std::scoped_lock lock(live.mutex);
    return live.contexts.contains(getKey(context));
}

/// Bytes from one scan line to the next.
std::size_t computePitch(std::int32_t width, std::uint16_t bitsPerPixel) {
    return (static_cast<std::size_t>(width) * bitsPerPixel / 8 + 3) / 4 * 4;
}

/// Headers of other libraries need not be aligned, so they are copied.
InfoHeader headerAt(const void* pInfo) {
    InfoHeader header;
    std::memcpy(&header, pInfo, sizeof header);
    return header;
}

bool isUnderstood(const InfoHeader& header) {
    const bool depth = header.bitsPerPixel == 8 || header.bitsPerPixel == 24 || header.bitsPerPixel == 32;
    if (header.size != sizeof header || header.planes != 1 || header.compression != 0 || !depth || header.width <= 0 ||
        header.height <= 0) {
        return false;
    }
    const std::size_t most = std::numeric_limits<std::int32_t>::max();
    return computePitch(header.width, header.bitsPerPixel) <= most / static_cast<std::size_t>(header.height);
}

Colour colourAt(const Bitmap& bitmap, const unsigned char* line, std::int32_t x) {
    if (bitmap.bitsPerPixel == 8) {
        const Colour& entry = bitmap.palette[line[x]];
        return {entry[0], entry[1], entry[2], 0};
    }
    const unsigned char* pixel = line + static_cast<std::size_t>(x) * bitmap.bitsPerPixel / 8;
    return {pixel[0], pixel[1], pixel[2], bitmap.bitsPerPixel == 32 ? pixel[3] : static_cast<unsigned char>(0)};
}

void copyLine(const Bitmap& bitmap, const unsigned char* source, std::uint16_t bitsPerPixel, unsigned char* target) {
    if (bitsPerPixel == bitmap.bitsPerPixel) {
        std::memcpy(target, source, computePitch(bitmap.width, bitsPerPixel));
        return;
    }
    const std::size_t pixelBytes = bitsPerPixel / 8;
    for (std::int32_t x = 0; x < bitmap.width; ++x) {
        std::memcpy(target + static_cast<std::size_t>(x) * pixelBytes, colourAt(bitmap, source, x).data(), pixelBytes);
    }
}

void fillPalette(Palette& palette, const InfoHeader& header, const void* pInfo) {
    const std::size_t count = header.coloursUsed == 0 ? palette.size() : header.coloursUsed;
    std::memcpy(palette.data(), static_cast<const unsigned char*>(pInfo) + sizeof header,
                std::min(count, palette.size()) * sizeof(Colour));
}

/// Files a bitmap under a new handle.
HBITMAP keep(std::shared_ptr<Bitmap> bitmap) {
    Registry& live = registry();
    const std::scoped_lock lock(live.mutex);
    const std::uintptr_t handle = live.newHandle();
    live.bitmaps.emplace(handle, std::move(bitmap));
    return std::bit_cast<HBITMAP>(handle);
}

} // namespace

int GetObjectA(void* handle, int size, void* pOut) {
    const std::shared_ptr<Bitmap> bitmap = find(handle);
    const int needed = static_cast<int>(sizeof(BITMAP));
    if (bitmap == nullptr || (pOut != nullptr && size < needed)) {
        return 0;
    }
    if (pOut != nullptr) {
        const auto pitch = static_cast<std::int32_t>(computePitch(bitmap->width, bitmap->bitsPerPixel));
        const BITMAP record = {0, bitmap->width, bitmap->height, pitch, 1, bitmap->bitsPerPixel, bitmap->bits.data()};
        std::memcpy(pOut, &record, sizeof record);
    }
    return needed;
}

HDC GetDC(void* window) {
    if (window != nullptr) {
        return nullptr;
    }
    Registry& live = registry();
    const std::scoped_lock lock(live.mutex);
    return std::bit_cast<HDC>(*live.contexts.insert(live.newHandle()).first);
}

int ReleaseDC(void* /*window*/, HDC context) {
    Registry& live = registry();
    const std::scoped_lock lock(live.mutex);
    return static_cast<int>(live.contexts.erase(getKey(context)));
}

int GetDIBits(HDC context, HBITMAP handle, unsigned int start, unsigned int lines, void* pBits, void* pInfo,
              unsigned int usage) {
    const std::shared_ptr<Bitmap> bitmap = find(handle);
    if (bitmap == nullptr || !isLiveContext(context) || pBits == nullptr || pInfo == nullptr || usage != RGB_COLORS) {
        return 0;
    }
    InfoHeader header = headerAt(pInfo);
    const bool toPalette = header.bitsPerPixel == 8;
    if (!isUnderstood(header) || header.width != bitmap->width || header.height != bitmap->height ||
        (toPalette && bitmap->bitsPerPixel != 8)) {
        return 0;
    }
    const auto height = static_cast<unsigned int>(bitmap->height);
    const unsigned int count = start < height ? std::min(lines, height - start) : 0;
    const std::size_t sourcePitch = computePitch(bitmap->width, bitmap->bitsPerPixel);
    const std::size_t targetPitch = computePitch(bitmap->width, header.bitsPerPixel);
    for (std::size_t i = 0; i < count; ++i) {
        copyLine(*bitmap, bitmap->bits.data() + (start + i) * sourcePitch, header.bitsPerPixel,
                 static_cast<unsigned char*>(pBits) + i * targetPitch);
    }
    // As the system does, to the dismay of whoever finds the bits by the colour count.
    header.coloursUsed = 0;
    header.coloursImportant = 0;
    std::memcpy(pInfo, &header, sizeof header);
    if (toPalette) {
        std::memcpy(static_cast<unsigned char*>(pInfo) + sizeof header, bitmap->palette.data(), sizeof(Palette));
    }
    return static_cast<int>(count);
}

HBITMAP CreateDIBSection(HDC /*context*/, const void* pInfo, unsigned int usage, void** pBits, void* section,
                         unsigned int /*offset*/) {
    if (pBits != nullptr) {
        *pBits = nullptr;
    }
    if (pInfo == nullptr || usage != RGB_COLORS || section != nullptr) {
        return nullptr;
    }
    const InfoHeader header = headerAt(pInfo);
    if (!isUnderstood(header)) {
        return nullptr;
    }
    try {
        auto bitmap = std::make_shared<Bitmap>();
        bitmap->width = header.width;
        bitmap->height = header.height;
        bitmap->bitsPerPixel = header.bitsPerPixel;
        bitmap->bits.resize(computePitch(header.width, header.bitsPerPixel) * static_cast<std::size_t>(header.height));
        if (header.bitsPerPixel == 8) {
            fillPalette(bitmap->palette, header, pInfo);
        }
        unsigned char* bits = bitmap->bits.data();
        HBITMAP handle = keep(std::move(bitmap));
        if (pBits != nullptr) {
            *pBits = bits;
        }
        return handle;
    } catch (...) {
        return nullptr;
    }
}

int DeleteObject(void* handle) {
    Registry& live = registry();
    const std::scoped_lock lock(live.mutex);
    return static_cast<int>(live.bitmaps.erase(getKey(handle)));
}

} // namespace gdi

#endif
