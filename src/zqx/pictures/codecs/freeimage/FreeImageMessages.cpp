// FreeImage's words, which reach a program only through one function for the whole process.
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
    static const bool quiet = (quietenTiffLibrary(), true);
    (void)quiet;
    FreeImage_SetOutputMessage(noteMessage); // each time: FreeImage speaks to the last one who asked it to
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
