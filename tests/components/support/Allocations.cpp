// Replaces the program's operator new by one that can be told to fail.
#include "components/support/Allocations.h"

#include <cstdlib>
#include <new>

namespace {

thread_local bool tArmed = false;
thread_local int tLeft = 0;
thread_local bool tLasting = false;
thread_local bool tHappened = false;

bool mustFail() {
    if (!tArmed || tLeft-- > 0) {
        return false;
    }
    tArmed = tLasting;
    tLeft = 0;
    tHappened = true;
    return true;
}

} // namespace

namespace test {

AllocationFailure::AllocationFailure(int after, Duration duration) {
    tLeft = after;
    tLasting = duration == LASTING;
    tHappened = false;
    tArmed = true;
}

AllocationFailure::~AllocationFailure() {
    tArmed = false;
}

bool AllocationFailure::hasHappened() const {
    return tHappened;
}

} // namespace test

void* operator new(std::size_t size) {
    void* memory = mustFail() ? nullptr : std::malloc(size == 0 ? 1 : size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

// The image library asks like this, and is not what is tested.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return std::malloc(size == 0 ? 1 : size);
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

void operator delete(void* memory, const std::nothrow_t&) noexcept {
    std::free(memory);
}
