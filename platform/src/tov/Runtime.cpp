// The component runtime: registry of classes, comparison of identifiers, memory.
#include <tov/Runtime.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <map>
#include <mutex>
#include <string>

namespace tov {

namespace {

/// Locale-independent: identifiers are ASCII.
int lowered(char c) {
    return c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : static_cast<unsigned char>(c);
}

struct ClassLess {
    bool operator()(const std::string& first, const std::string& second) const {
        return tovCompareCLSID(first.c_str(), second.c_str()) < 0;
    }
};

struct Registry {
    std::mutex mutex;
    std::map<std::string, unsigned int, ClassLess> modules;
};

/// Never destroyed: modules unregister themselves from destructors of static objects, too.
Registry& registry() {
    static Registry& instance = *new Registry;
    return instance;
}

/// Puts null before any text, and texts in the order of a comparison.
template <typename Compare>
int compareNullable(const char* first, const char* second, Compare compare) {
    if (first == nullptr || second == nullptr) {
        return static_cast<int>(first != nullptr) - static_cast<int>(second != nullptr);
    }
    return compare(first, second);
}

int compareIgnoringCase(const char* first, const char* second) {
    while (*first != '\0' && lowered(*first) == lowered(*second)) {
        ++first;
        ++second;
    }
    return lowered(*first) - lowered(*second);
}

} // namespace

Result tovRegisterDSO(const char* clsid, unsigned int module, unsigned int /*flags*/) {
    if (clsid == nullptr || module == 0) {
        return INVALID_ARGUMENT;
    }
    try {
        Registry& known = registry();
        const std::scoped_lock lock(known.mutex);
        const auto entry = known.modules.try_emplace(clsid, module).first;
        return entry->second == module ? SUCCESS : FAILURE;
    } catch (...) {
        return FAILURE;
    }
}

Result tovUnregisterDSO(const char* clsid, unsigned int module, unsigned int /*flags*/) {
    if (clsid == nullptr || module == 0) {
        return INVALID_ARGUMENT;
    }
    try {
        Registry& known = registry();
        const std::scoped_lock lock(known.mutex);
        const auto entry = known.modules.find(clsid);
        if (entry == known.modules.end() || entry->second != module) {
            return FAILURE;
        }
        known.modules.erase(entry);
        return SUCCESS;
    } catch (...) {
        return FAILURE;
    }
}

unsigned int tovFindDSO(const char* clsid) {
    if (clsid == nullptr) {
        return 0;
    }
    try {
        Registry& known = registry();
        const std::scoped_lock lock(known.mutex);
        const auto entry = known.modules.find(clsid);
        return entry == known.modules.end() ? 0 : entry->second;
    } catch (...) {
        return 0;
    }
}

int tovCompareCLSID(const char* first, const char* second) {
    return compareNullable(first, second, compareIgnoringCase);
}

int tovCompareIID(const char* first, const char* second) {
    return compareNullable(first, second, std::strcmp);
}

char* tovStrDup(const char* text) {
    if (text == nullptr) {
        return nullptr;
    }
    const std::size_t size = std::strlen(text) + 1;
    auto* copy = static_cast<char*>(tovCalloc(size, 1));
    if (copy != nullptr) {
        std::memcpy(copy, text, size);
    }
    return copy;
}

void* tovCalloc(std::size_t count, std::size_t size) {
    // What an empty request returns differs between systems; here null always means failure.
    return std::calloc(std::max<std::size_t>(count, 1), std::max<std::size_t>(size, 1));
}

void tovFree(void* memory) {
    std::free(memory);
}

} // namespace tov
