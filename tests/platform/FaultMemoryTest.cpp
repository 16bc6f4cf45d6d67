// What fault translation asks of the heap: nothing. The program brings a malloc of its own, which counts, and which can
// fault while it holds a lock.
#include <qutil/SehException.h>
#include <qutil/SehTranslator.h>

#include <atomic>
#include <csignal>
#include <cstddef>

#include <gtest/gtest.h>
#include <unistd.h>

using qutil::SehException;
using qutil::SehTranslator;

namespace {

/// Volatile: the compiler must neither know nor care what happens.
int* volatile gNowhere = nullptr;
volatile int gSink = 0;

thread_local bool tCounting = false;
thread_local int tCounted = 0;

std::atomic<bool> gFaultsWithTheLock = false;
std::atomic_flag gLock;

void readNowhere() {
    gSink = *gNowhere;
}

/// As a heap's lock: whoever holds it and asks again waits for ever.
void faultWithTheLock() {
    while (gLock.test_and_set()) {
        pause();
    }
    readNowhere();
}

/// Allocations of this thread from a fault until its exception is caught.
int allocationsOfAFault() {
    tCounted = 0;
    tCounting = true;
    try {
        readNowhere();
    } catch (const SehException&) {
        tCounting = false;
    }
    return tCounted;
}

} // namespace

extern "C" void* __libc_malloc(std::size_t size);

extern "C" void* malloc(std::size_t size) {
    if (tCounting) {
        ++tCounted;
    }
    if (gFaultsWithTheLock) {
        faultWithTheLock();
    }
    return __libc_malloc(size);
}

TEST(FaultMemory, TranslatingAFaultAllocatesNothing) {
    const SehTranslator translator;
    EXPECT_EQ(allocationsOfAFault(), 0);
    EXPECT_EQ(allocationsOfAFault(), 0) << "by the same translator";
}

TEST(FaultMemory, FaultWhileAnotherOnesExceptionIsLookedAtIsAnExceptionToo) {
    const SehTranslator translator;
    const void* first = nullptr;
    const void* second = nullptr;
    try {
        readNowhere();
    } catch (const SehException& outer) {
        first = &outer;
        try {
            readNowhere();
        } catch (const SehException& inner) {
            second = &inner;
        }
    }
    EXPECT_NE(first, nullptr);
    EXPECT_NE(second, nullptr);
    EXPECT_NE(first, second);
}

TEST(FaultMemoryDeathTest, FaultUnderTheLockOfAnAllocatorOfTheProgramsOwnEndsTheProcess) {
    EXPECT_EXIT(
        {
            alarm(30); // a process that waits for ever ends by another signal
            const SehTranslator translator;
            gFaultsWithTheLock = true;
            try {
                ::operator delete(::operator new(1));
            } catch (const SehException&) {
            }
        },
        testing::KilledBySignal(SIGSEGV), "");
}

#if defined(__x86_64__)

namespace {

/// Faults with a frame pointer that leads nowhere, over which nobody finds the callers. Room whose size only turns out
/// at run time makes it a function that has a frame pointer.
[[gnu::noinline]] void faultOverABrokenStack(std::size_t size) {
    [[maybe_unused]] void* volatile room = __builtin_alloca(size);
    asm volatile("movq $64, %%rbp\n\tmovl (%0), %%eax" : : "r"(gNowhere) : "eax", "memory");
}

} // namespace

TEST(FaultMemoryDeathTest, FaultInTheSearchForWhoCatchesItEndsTheProcess) {
    EXPECT_EXIT(
        {
            alarm(30);
            const SehTranslator translator;
            try {
                faultOverABrokenStack(static_cast<std::size_t>(gSink) + 100);
            } catch (const SehException&) {
            }
        },
        testing::KilledBySignal(SIGSEGV), "");
}

#endif
