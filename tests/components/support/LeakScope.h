// Where the contract leaves an object behind, leak detection is told so.
#pragma once

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

namespace test {

/// What is allocated while it lives is not reported as a leak.
class LeakScope {
public:
#if defined(__SANITIZE_ADDRESS__)
    LeakScope() {
        __lsan_disable();
    }
    ~LeakScope() {
        __lsan_enable();
    }
#else
    LeakScope() {
    }
    ~LeakScope() {
    }
#endif
    LeakScope(const LeakScope&) = delete;
    LeakScope& operator=(const LeakScope&) = delete;
};

} // namespace test
