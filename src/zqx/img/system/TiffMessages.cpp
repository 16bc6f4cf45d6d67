// The TIFF library has one function for warnings and one for errors, for the whole process. They are looked for when
// they are wanted, since the library need not be there: FreeImage may have been built with one of its own that is
// silent.
#include "system/TiffMessages.h"

#if defined(__unix__) || defined(__APPLE__)

#include <array>
#include <atomic>
#include <cstdarg>
#include <cstddef>
#include <mutex>

#include <dlfcn.h>

namespace zqx::img {

namespace {

using Handler = void (*)(const char* module, const char* format, std::va_list arguments);
/// Sets a handler. @return the one before
using SetHandler = Handler (*)(Handler);

/// One of the two ways in which the library speaks.
struct Voice {
    SetHandler set;
    Handler filter;                          ///< our handler
    std::atomic<Handler> replaced = nullptr; ///< the library's own, while ours is in its place
};

thread_local bool tSilent = false;

template <std::size_t INDEX>
void filterMessages(const char* module, const char* format, std::va_list arguments);

SetHandler findSetter(const char* name) {
    return reinterpret_cast<SetHandler>(dlsym(RTLD_DEFAULT, name));
}

std::array<Voice, 2>& voices() {
    static std::array<Voice, 2> found = {{
        {findSetter("TIFFSetWarningHandler"), filterMessages<0>},
        {findSetter("TIFFSetErrorHandler"), filterMessages<1>},
    }};
    return found;
}

template <std::size_t INDEX>
void filterMessages(const char* module, const char* format, std::va_list arguments) {
    const Handler replaced = voices()[INDEX].replaced;
    if (!tSilent && replaced != nullptr) {
        replaced(module, format, arguments);
    }
}

/// Whether a handler is the one that the library comes with, which writes to the terminal.
bool isLibrarysOwn(Handler handler, SetHandler setter) {
    Dl_info ofHandler = {};
    Dl_info ofSetter = {};
    return handler != nullptr && dladdr(reinterpret_cast<void*>(handler), &ofHandler) != 0 &&
           dladdr(reinterpret_cast<void*>(setter), &ofSetter) != 0 && ofHandler.dli_fbase == ofSetter.dli_fbase;
}

void replace(Voice& voice) {
    if (voice.set == nullptr) {
        return;
    }
    const Handler before = voice.set(voice.filter);
    if (isLibrarysOwn(before, voice.set)) {
        voice.replaced = before;
    } else {
        voice.set(before); // somebody listens, or wants silence already
    }
}

void putBack(Voice& voice) {
    const Handler replaced = voice.replaced.exchange(nullptr);
    if (replaced == nullptr) {
        return;
    }
    const Handler present = voice.set(replaced);
    if (present != voice.filter) {
        voice.set(present); // given by the program in the meantime
    }
}

std::mutex sMutex;
int sSilences = 0; // of all threads

} // namespace

TiffSilence::TiffSilence() {
    const std::lock_guard lock(sMutex);
    if (sSilences++ == 0) {
        for (Voice& voice : voices()) {
            replace(voice);
        }
    }
    tSilent = true;
}

TiffSilence::~TiffSilence() {
    tSilent = false;
    const std::lock_guard lock(sMutex);
    if (--sSilences == 0) {
        for (Voice& voice : voices()) {
            putBack(voice);
        }
    }
}

} // namespace zqx::img

#else

namespace zqx::img {

TiffSilence::TiffSilence() = default;

TiffSilence::~TiffSilence() = default;

} // namespace zqx::img

#endif
