// FreeImage explains itself only through callbacks of the process, which can be set and not asked for. It has two, for
// two calling conventions, and calls both. Programs take the plain one; the other one is taken here, once, so that a
// program's own goes on hearing everything, and one that it gives FreeImage for the second convention later stays.
#include "system/LibraryMessages.h"

#include <new>

#include <FreeImage.h>

namespace zqx::img {

namespace {

/// Hostile files can make a decoder complain without end.
constexpr std::size_t LONGEST = 2000;

thread_local std::string tMessages;
thread_local bool tListening = false;

void DLL_CALLCONV keepMessage(FREE_IMAGE_FORMAT /*format*/, const char* message) {
    if (!tListening || message == nullptr || tMessages.size() >= LONGEST) {
        return;
    }
    try {
        if (!tMessages.empty()) {
            tMessages += "; ";
        }
        tMessages += message;
        tMessages.erase(tMessages.find_last_not_of(" \r\n") + 1);
    } catch (const std::bad_alloc&) {
        tMessages.clear(); // an exception must not pass through the C library that calls
    }
}

} // namespace

LibraryMessages::LibraryMessages() {
    static const bool installed = (FreeImage_SetOutputMessageStdCall(keepMessage), true);
    forget();
    tListening = installed;
}

LibraryMessages::~LibraryMessages() {
    tListening = false;
}

void LibraryMessages::forget() {
    tMessages.clear();
}

const std::string& LibraryMessages::ofThisThread() {
    return tMessages;
}

} // namespace zqx::img
