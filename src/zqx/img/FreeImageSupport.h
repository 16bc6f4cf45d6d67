// What the sources of the bitmap component share.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include <FreeImage.h>

#include <qutil/MethodGuard.h>
#include <zqx/img/FreeImage.h>

namespace zqx::img {

/// Where a method of the bitmap component is, for the log; expands to the line and function that it stands in.
#define ZQX_FREEIMAGE_SITE ZQX_METHOD_SITE("src/zqx/img/FreeImage")

// C's functions over memory promise not to throw: a fault in one of them, over a pointer that a host gave, would end
// the process in spite of all guards. Called through a pointer whose type promises nothing, it is an exception as any
// other; volatile, or the compiler would see through it.

inline void copyBytes(void* target, const void* source, std::size_t size) {
    static void* (*const volatile copy)(void*, const void*, std::size_t) = std::memcpy;
    copy(target, source, size);
}

inline std::size_t getLength(const char* text) {
    static std::size_t (*const volatile length)(const char*) = std::strlen;
    return length(text);
}

inline tov::Result successIf(bool done) {
    return done ? tov::SUCCESS : tov::FAILURE;
}

/// Below 0 a value is deliberately not limited: the low 8 bits of its truncation are taken. NaN gives 0.
inline BYTE toByte(float value) {
    if (value > 1.0F) {
        return 255;
    }
    const float scaled = std::trunc(value * 255.0F);
    return scaled > -9.0e18F ? static_cast<BYTE>(static_cast<std::int64_t>(scaled)) : BYTE{0};
}

/// Hands out a bitmap in a new component with one reference. @return tov::FAILURE for null, with nothing written
inline tov::Result handOut(FIBITMAP* bitmap, qfreeimage::IFreeImage** pOut) {
    if (bitmap == nullptr) {
        return tov::FAILURE;
    }
    FreeImage* component = nullptr;
    try {
        component = new FreeImage(bitmap);
    } catch (...) {
        FreeImage_Unload(bitmap);
        throw;
    }
    component->addRef();
    *pOut = component;
    return tov::SUCCESS;
}

} // namespace zqx::img
