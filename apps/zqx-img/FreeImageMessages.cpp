// FreeImage's words, which reach a program only through one function for the whole process.
#include "FreeImageMessages.h"

#include <algorithm>
#include <cstdarg>

#if defined(__unix__)
#include <dlfcn.h>
#endif

#include <FreeImage.h>

namespace zqx::img::app {

namespace {

thread_local std::string tMessages; // pictures are decoded by several threads

void DLL_CALLCONV noteMessage(FREE_IMAGE_FORMAT, const char* message) {
    std::string line(message);
    std::ranges::replace_if(
        line, [](unsigned char c) { return c < ' ' || c == 0x7F; }, ' ');
    line.erase(line.find_last_not_of(' ') + 1);
    if (!line.empty()) {
        tMessages += (tMessages.empty() ? "" : "; ") + line;
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

} // namespace

void listenToFreeImage() {
    static const bool listening = (FreeImage_SetOutputMessage(noteMessage), quietenTiffLibrary(), true);
    (void)listening;
    tMessages.clear();
}

const std::string& freeImageMessages() {
    return tMessages;
}

std::string inParentheses(const std::string& words) {
    return words.empty() ? words : " (" + words + ")";
}

std::string inItsWords() {
    return inParentheses(tMessages);
}

} // namespace zqx::img::app
