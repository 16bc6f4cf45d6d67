// FreeImage reports messages through a single callback per process; they are kept per thread.
#include "zqx/pictures/codecs/freeimage/FreeImageMessages.h"

#include <algorithm>
#include <cstdarg>
#include <string_view>

#if defined(__unix__)
#include <dlfcn.h>
#endif

#include <FreeImage.h>

#include "zqx/text/Cleaning.h"

namespace zqx::pictures {

namespace {

thread_local std::string tMessages; // pictures are decoded by several threads

void addMessage(std::string& messages, std::string_view words) {
    const std::string line = text::withoutTrailingSpaces(text::inOneLine(words));
    if (!line.empty()) {
        messages += (messages.empty() ? "" : "; ") + line;
    }
}

void DLL_CALLCONV noteMessage(FREE_IMAGE_FORMAT, const char* message) {
    addMessage(tMessages, message);
}

/// The TIFF library writes lengthy messages about harmless tags to standard error. Those that matter are also passed on
/// by FreeImage.
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
    static const bool quiet = (quietenTiffLibrary(), true);
    (void)quiet;
    FreeImage_SetOutputMessage(noteMessage); // each time: other code in the process may have set its own callback
    tMessages.clear();
}

std::string freeImageMessages() {
    return tMessages;
}

bool saidToLackMemory() {
    static constexpr const char* COMPLAINTS[] = {"emory allocation", "ut of memory", "nsufficient memory",
                                                 "ot enough memory", "bad_alloc",    "llocate memory"};
    return std::ranges::any_of(COMPLAINTS,
                               [](const char* words) { return tMessages.find(words) != std::string::npos; });
}

std::string inItsWords() {
    return tMessages.empty() ? tMessages : " (" + tMessages + ")";
}

} // namespace zqx::pictures
