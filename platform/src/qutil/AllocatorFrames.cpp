// The stack is walked with the unwinder, which knows at which address the function of a frame begins. That address is
// compared with those of the allocator's functions.
#include "AllocatorFrames.h"

#include "FaultSignals.h"

#if defined(ZQX_FAULT_SIGNALS)

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include <dlfcn.h>
#include <unwind.h>

namespace qutil {

namespace {

/// C's functions, and C++'s (new, new[], delete, delete[], also with a size), which programs may replace.
constexpr const char* FUNCTIONS[] = {
    "malloc",         "calloc",   "realloc", "reallocarray", "free",        "aligned_alloc",
    "posix_memalign", "memalign", "valloc",  "pvalloc",      "_Znwm",       "_Znam",
    "_ZdlPv",         "_ZdaPv",   "_ZdlPvm", "_ZdaPvm",      "malloc_trim",
};

/// Once as the program finds them, where another allocator may stand before the C library's, and once as the C library
/// has them, which that other one may call.
constexpr std::size_t PLACES = 2;

std::array<std::uintptr_t, std::size(FUNCTIONS)* PLACES> sAllocator = {};

struct Walk {
    int framesLeft;
    bool isInside;
};

_Unwind_Reason_Code visitFrame(_Unwind_Context* pFrame, void* pWalk) {
    Walk& walk = *static_cast<Walk*>(pWalk);
    const std::uintptr_t function = _Unwind_GetRegionStart(pFrame);
    walk.isInside = function != 0 && std::find(sAllocator.begin(), sAllocator.end(), function) != sAllocator.end();
    return walk.isInside || --walk.framesLeft == 0 ? _URC_NORMAL_STOP : _URC_NO_REASON;
}

} // namespace

void locateAllocator() {
    void* const library = dlopen("libc.so.6", RTLD_LAZY | RTLD_NOLOAD);
    auto* next = sAllocator.begin();
    for (const char* name : FUNCTIONS) {
        *next++ = reinterpret_cast<std::uintptr_t>(dlsym(RTLD_DEFAULT, name));
        *next++ = library == nullptr ? 0 : reinterpret_cast<std::uintptr_t>(dlsym(library, name));
    }
}

bool isAllocatorInterrupted() {
    constexpr int FRAMES = 32; // the handler's own among them
    Walk walk = {FRAMES, false};
    _Unwind_Backtrace(visitFrame, &walk);
    return walk.isInside;
}

} // namespace qutil

#endif
