// FreeImage and its libraries explain failures in English only, so that causes have to be found in their texts.
#include "zqx/pictures/codecs/freeimage/FreeImageMessages.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <new>

#include "zqx/img/system/LibraryMessages.h"
#include "zqx/text/Cleaning.h"

namespace zqx::pictures {

std::string freeImageMessages() {
    return text::withoutTrailingSpaces(text::inOneLine(img::LibraryMessages::ofThisThread()));
}

namespace {

bool reportedLackOfMemory() {
    static constexpr const char* COMPLAINTS[] = {"emory allocation", "ut of memory",     "nsufficient memory",
                                                 "ot enough memory", "bad_alloc",        "llocate memory",
                                                 "lack of memory",   "t allocate space", "exceeds system limits"};
    const std::string& messages = img::LibraryMessages::ofThisThread();
    return std::ranges::any_of(COMPLAINTS,
                               [&](const char* words) { return messages.find(words) != std::string::npos; });
}

/// Reserves memory without using it.
bool canAllocate(std::uint64_t bytes) {
    if (bytes > std::numeric_limits<std::size_t>::max() / 2) {
        return false;
    }
    void* volatile memory = std::malloc(static_cast<std::size_t>(bytes)); // volatile, or compilers leave it out
    std::free(memory);
    return bytes == 0 || memory != nullptr;
}

} // namespace

void checkForLackOfMemory(std::uint64_t bytes) {
    if (reportedLackOfMemory() || !canAllocate(bytes)) {
        throw std::bad_alloc();
    }
}

std::string inItsWords() {
    std::string messages = freeImageMessages();
    if (!messages.empty()) {
        messages.insert(0, " (").append(")");
    }
    return messages;
}

} // namespace zqx::pictures
