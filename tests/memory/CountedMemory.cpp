#include "CountedMemory.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> gHeld = 0;
std::atomic<std::size_t> gPeak = 0;
std::atomic<std::size_t> gLargest = 0;
std::atomic<std::size_t> gCount = 0;

/// In front of each piece of memory stands its size, in as many bytes as what follows is aligned to.
constexpr std::size_t PLAIN = alignof(std::max_align_t);
static_assert(PLAIN >= sizeof(std::size_t));

void raise(std::atomic<std::size_t>& mark, std::size_t value) {
    std::size_t seen = mark.load();
    while (seen < value && !mark.compare_exchange_weak(seen, value)) {
    }
}

void* allocate(std::size_t size, std::size_t alignment = PLAIN) noexcept {
    const std::size_t whole = (alignment + size + alignment - 1) / alignment * alignment;
    void* memory = std::aligned_alloc(alignment, whole);
    if (memory == nullptr) {
        return nullptr;
    }
    *static_cast<std::size_t*>(memory) = size;
    raise(gPeak, gHeld += size);
    raise(gLargest, size);
    ++gCount;
    return static_cast<unsigned char*>(memory) + alignment;
}

void* allocateOrThrow(std::size_t size, std::size_t alignment = PLAIN) {
    void* memory = allocate(size, alignment);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

void release(void* memory, std::size_t alignment = PLAIN) noexcept {
    if (memory != nullptr) {
        void* start = static_cast<unsigned char*>(memory) - alignment;
        gHeld -= *static_cast<std::size_t*>(start);
        std::free(start);
    }
}

} // namespace

namespace test {

CountedMemory::CountedMemory() : mBefore(gHeld) {
    gPeak = mBefore;
    gLargest = 0;
    gCount = 0;
}

std::size_t CountedMemory::peak() const {
    return gPeak - mBefore;
}

std::size_t CountedMemory::largest() const {
    return gLargest;
}

std::size_t CountedMemory::count() const {
    return gCount;
}

} // namespace test

// All forms by name: a sanitizer's own would otherwise not pass through the first.

void* operator new(std::size_t size) {
    return allocateOrThrow(size);
}

void* operator new[](std::size_t size) {
    return allocateOrThrow(size);
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return allocate(size);
}

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return allocate(size);
}

void operator delete(void* memory) noexcept {
    release(memory);
}

void operator delete[](void* memory) noexcept {
    release(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    release(memory);
}

void operator delete[](void* memory, std::size_t) noexcept {
    release(memory);
}

void operator delete(void* memory, const std::nothrow_t&) noexcept {
    release(memory);
}

void operator delete[](void* memory, const std::nothrow_t&) noexcept {
    release(memory);
}

void* operator new(std::size_t size, std::align_val_t alignment) {
    return allocateOrThrow(size, static_cast<std::size_t>(alignment));
}

void* operator new[](std::size_t size, std::align_val_t alignment) {
    return allocateOrThrow(size, static_cast<std::size_t>(alignment));
}

void operator delete(void* memory, std::align_val_t alignment) noexcept {
    release(memory, static_cast<std::size_t>(alignment));
}

void operator delete[](void* memory, std::align_val_t alignment) noexcept {
    release(memory, static_cast<std::size_t>(alignment));
}

void operator delete(void* memory, std::size_t, std::align_val_t alignment) noexcept {
    release(memory, static_cast<std::size_t>(alignment));
}

void operator delete[](void* memory, std::size_t, std::align_val_t alignment) noexcept {
    release(memory, static_cast<std::size_t>(alignment));
}
