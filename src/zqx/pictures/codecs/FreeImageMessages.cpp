// FreeImage's words, which reach a program only through one function for the whole process.
#include "zqx/pictures/codecs/FreeImageMessages.h"

#include <atomic>
#include <cstdarg>
#include <cstddef>
#include <string_view>

#if defined(__unix__)
#include <dlfcn.h>
#endif

#include <FreeImage.h>

#include "zqx/text/Cleaning.h"

namespace zqx::pictures {

namespace {

thread_local std::string tMessages;       // pictures are decoded by several threads
thread_local std::size_t tKnownWords = 0; // of the other listener, from before
std::atomic<std::string (*)()> gOtherListener = nullptr;

void addMessage(std::string& messages, std::string_view words) {
    const std::string line = text::withoutTrailingSpaces(text::inOneLine(words));
    if (!line.empty()) {
        messages += (messages.empty() ? "" : "; ") + line;
    }
}

void DLL_CALLCONV noteMessage(FREE_IMAGE_FORMAT, const char* message) {
    addMessage(tMessages, message);
}

/// All that the other listener heard on this thread.
std::string otherWords() {
    const auto listener = gOtherListener.load();
    return listener != nullptr ? listener() : std::string();
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
    tKnownWords = otherWords().size();
}

std::string freeImageMessages() {
    std::string messages = tMessages;
    std::string words = otherWords();
    words.erase(0, tKnownWords);
    addMessage(messages, words.starts_with("; ") ? words.substr(2) : words);
    return messages;
}

void alsoAsk(std::string (*words)()) {
    gOtherListener = words;
}

std::string inParentheses(const std::string& words) {
    return words.empty() ? words : " (" + words + ")";
}

std::string inItsWords() {
    return inParentheses(freeImageMessages());
}

} // namespace zqx::pictures
