// Fault translation: every kind of fault, destructors on the way, loops, nesting, threads, and the handlers that were
// there before. Compiled with exceptions from any access.
#include <qutil/SehTranslator.h>

#include <atomic>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <qutil/SehException.h>

#if defined(__linux__)
#include <sys/mman.h>
#include <unistd.h>
#endif

using qutil::SehException;
using qutil::SehTranslator;

namespace {

/// Volatile: the compiler must neither know nor care what happens.
int* volatile gNowhere = nullptr;
volatile int gZero = 0;
volatile int gSink = 0;

void readNowhere() {
    gSink = *gNowhere;
}

void writeNowhere() {
    *gNowhere = 1;
}

void divideByZero() {
#if defined(__x86_64__) || defined(_M_X64)
    gSink = 1 / gZero;
#else
    readNowhere(); // division does not trap here
#endif
}

void callNowhere() {
    // Made from data, so that its value is not known.
    void (*function)() = nullptr;
    int* const nowhere = gNowhere;
    static_assert(sizeof function == sizeof nowhere);
    std::memcpy(&function, &nowhere, sizeof function);
    function();
    gSink = gSink + 1; // no tail call: the caller is to be found on the stack
}

/// Says in a flag that it was destroyed.
struct Witness {
    explicit Witness(bool& destroyed) : mDestroyed(destroyed) {}
    ~Witness() { mDestroyed = true; }
    bool& mDestroyed;
};

/// The guard of a component method, in small. @return the code of the fault, or -1.
int guarded(void (*body)()) {
    const SehTranslator translator;
    try {
        body();
    } catch (const SehException& fault) {
        return static_cast<int>(fault.code());
    }
    return -1;
}

class Faults : public testing::Test {
protected:
    void SetUp() override {
        if (!SehTranslator::isEffective()) {
            GTEST_SKIP() << "faults are not translated in this build";
        }
    }
};
using FaultDeathTest = Faults;

} // namespace

TEST(SehException, SaysWhatAndWhere) {
    const int place = 0;
    const SehException fault(0xC0000005, &place);
    EXPECT_EQ(fault.code(), 0xC0000005U);
    EXPECT_EQ(fault.address(), &place);
    EXPECT_EQ(std::string(fault.what()).find("Processor fault 0xC0000005 at "), 0U);
}

TEST(SehException, IsAStandardException) {
    EXPECT_THROW(throw SehException(1, nullptr), std::exception);
}

TEST(SehTranslator, WithoutFaultsNothingHappens) {
    EXPECT_EQ(guarded([] { gSink = 1; }), -1);
}

TEST_F(Faults, EveryKindOfFaultIsAnException) {
    for (const auto fault : {readNowhere, writeNowhere, divideByZero, callNowhere}) {
        EXPECT_NE(guarded(fault), -1);
    }
}

#if defined(__linux__)

namespace {

/// Sets a signal's handler for the length of a test.
class HandlerScope {
public:
    HandlerScope(int number, void (*handler)(int)) : mNumber(number) {
        struct sigaction action = {};
        action.sa_handler = handler;
        sigaction(number, &action, &mPrevious);
    }
    ~HandlerScope() { sigaction(mNumber, &mPrevious, nullptr); }
    HandlerScope(const HandlerScope&) = delete;
    HandlerScope& operator=(const HandlerScope&) = delete;

private:
    int mNumber;
    struct sigaction mPrevious = {};
};

void (*getHandler(int number))(int) {
    struct sigaction current = {};
    sigaction(number, nullptr, &current);
    return current.sa_handler;
}

std::atomic<int> gHandled = 0;

void countSignal(int /*number*/) {
    ++gHandled;
}

void exitWithSeven(int /*number*/) {
    std::_Exit(7);
}

} // namespace

TEST_F(Faults, BadReadsAndWritesAreExceptions) {
    EXPECT_EQ(guarded(readNowhere), SIGSEGV);
    EXPECT_EQ(guarded(writeNowhere), SIGSEGV);
}

#if defined(__x86_64__)
TEST_F(Faults, DivisionByZeroIsAnException) {
    EXPECT_EQ(guarded(divideByZero), SIGFPE);
}

TEST_F(Faults, IllegalInstructionIsAnException) {
    // Called out of the optimiser's sight: it takes a trap for something that cannot throw.
    static void (*volatile trap)() = [] { __builtin_trap(); };
    EXPECT_EQ(guarded([] { trap(); }), SIGILL);
}

TEST_F(Faults, AddressOutsideTheProcessorsRangeIsAnException) {
    int* const before = gNowhere;
    gNowhere = reinterpret_cast<int*>(std::uintptr_t{1} << 60U);
    EXPECT_EQ(guarded(readNowhere), SIGSEGV);
    gNowhere = before;
}
#endif

TEST_F(Faults, CallToNowhereIsAnExceptionThatNamesTheTarget) {
    const SehTranslator translator;
    try {
        callNowhere();
        FAIL() << "no fault";
    } catch (const SehException& fault) {
        EXPECT_EQ(fault.code(), static_cast<unsigned int>(SIGSEGV));
        EXPECT_EQ(fault.address(), nullptr);
    }
}

TEST_F(Faults, CallIntoDataIsAnException) {
    static int data[4] = {};
    int* const before = gNowhere;
    gNowhere = data;
    EXPECT_EQ(guarded(callNowhere), SIGSEGV);
    gNowhere = before;
}

TEST_F(Faults, AccessBehindTheEndOfAFileIsAnException) {
    char name[] = "/tmp/zqx-faults-XXXXXX";
    const int file = mkstemp(name);
    ASSERT_GE(file, 0);
    unlink(name);
    void* memory = mmap(nullptr, 4096, PROT_READ, MAP_SHARED, file, 0);
    ASSERT_NE(memory, MAP_FAILED);
    int* const before = gNowhere;
    gNowhere = static_cast<int*>(memory);
    EXPECT_EQ(guarded(readNowhere), SIGBUS);
    gNowhere = before;
    munmap(memory, 4096);
    close(file);
}

TEST_F(Faults, FaultAndHandlerMayShareAFunction) {
    const SehTranslator translator;
    bool destroyed = false;
    unsigned int code = 0;
    try {
        const Witness witness(destroyed);
        gSink = *gNowhere;
    } catch (const SehException& fault) {
        code = fault.code();
    }
    EXPECT_EQ(code, static_cast<unsigned int>(SIGSEGV));
    EXPECT_TRUE(destroyed);
}

TEST_F(Faults, DestructorsRunOnTheWay) {
    const SehTranslator translator;
    bool outer = false;
    bool inner = false;
    const std::function<void()> body = [&] {
        const Witness witness(inner);
        writeNowhere();
    };
    EXPECT_THROW(
        {
            const Witness witness(outer);
            body();
        },
        SehException);
    EXPECT_TRUE(outer);
    EXPECT_TRUE(inner);
}

TEST_F(Faults, HundredThousandInALoop) {
    int caught = 0;
    for (int i = 0; i < 100'000; ++i) {
        caught += guarded(i % 2 == 0 ? readNowhere : divideByZero) > 0 ? 1 : 0;
    }
    EXPECT_EQ(caught, 100'000);
}

TEST_F(Faults, OneTranslatorServesManyFaults) {
    const SehTranslator translator;
    for (int i = 0; i < 1000; ++i) {
        EXPECT_THROW(readNowhere(), SehException);
    }
}

TEST_F(Faults, NestedTranslatorsAllWork) {
    const SehTranslator outer;
    EXPECT_EQ(guarded(readNowhere), SIGSEGV);
    {
        const SehTranslator inner;
        EXPECT_THROW(readNowhere(), SehException);
    }
    EXPECT_THROW(readNowhere(), SehException);
}

TEST_F(Faults, ManyThreadsFaultAtOnce) {
    std::vector<std::thread> threads;
    std::vector<int> caught(8, 0);
    for (std::size_t t = 0; t < caught.size(); ++t) {
        threads.emplace_back([t, &caught] {
            for (int i = 0; i < 2000; ++i) {
                caught[t] += guarded(readNowhere) == SIGSEGV ? 1 : 0;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(caught, std::vector<int>(8, 2000));
}

TEST_F(Faults, SignalStaysUnblockedAfterwards) {
    EXPECT_EQ(guarded(readNowhere), SIGSEGV);
    sigset_t blocked;
    pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
    EXPECT_EQ(sigismember(&blocked, SIGSEGV), 0);
}

TEST_F(Faults, PreviousHandlersComeBackWithTheLastTranslator) {
    const HandlerScope scope(SIGSEGV, countSignal);
    {
        const SehTranslator outer;
        { const SehTranslator inner; }
        EXPECT_NE(getHandler(SIGSEGV), countSignal);
    }
    EXPECT_EQ(getHandler(SIGSEGV), countSignal);
}

TEST_F(Faults, SentSignalsGoToThePreviousHandler) {
    const HandlerScope scope(SIGSEGV, countSignal);
    gHandled = 0;
    const SehTranslator translator;
    std::raise(SIGSEGV);
    EXPECT_EQ(gHandled, 1);
}

TEST_F(Faults, IgnoredSentSignalsStayIgnored) {
    const HandlerScope scope(SIGFPE, SIG_IGN);
    const SehTranslator translator;
    std::raise(SIGFPE);
}

TEST_F(Faults, HandlerInstalledOnTopStays) {
    const HandlerScope restore(SIGILL, SIG_DFL);
    {
        const SehTranslator translator;
        std::signal(SIGILL, countSignal);
    }
    EXPECT_EQ(getHandler(SIGILL), countSignal);
    // Still so for later translators: theirs may pass signals on to ours.
    {
        const SehTranslator translator;
        EXPECT_EQ(getHandler(SIGILL), countSignal);
    }
}

TEST_F(Faults, FaultsAreTranslatedAgainWhenAHandlerOnTopIsGone) {
    {
        const HandlerScope below(SIGSEGV, SIG_DFL);
        const SehTranslator translator;
        std::signal(SIGSEGV, countSignal);
    }
    const HandlerScope gone(SIGSEGV, SIG_DFL);
    EXPECT_EQ(guarded(readNowhere), SIGSEGV);
}

TEST_F(Faults, HandlerOnTopMayPutOursBackLate) {
    const HandlerScope below(SIGSEGV, countSignal);
    struct sigaction ours = {};
    {
        const SehTranslator translator;
        const struct sigaction none = {};
        sigaction(SIGSEGV, &none, &ours);
        std::signal(SIGSEGV, exitWithSeven);
    }
    sigaction(SIGSEGV, &ours, nullptr);
    gHandled = 0;
    std::raise(SIGSEGV);
    EXPECT_EQ(gHandled, 1);
    EXPECT_EQ(guarded(readNowhere), SIGSEGV);
    EXPECT_EQ(getHandler(SIGSEGV), countSignal);
}

TEST_F(FaultDeathTest, ThreadWithoutTranslatorDiesOfItsFault) {
    EXPECT_EXIT(
        {
            const SehTranslator translator;
            std::thread(readNowhere).join();
        },
        testing::KilledBySignal(SIGSEGV), "");
}

TEST_F(FaultDeathTest, FaultAfterTheLastTranslatorIsFatal) {
    EXPECT_EXIT(
        {
            guarded(readNowhere);
            readNowhere();
        },
        testing::KilledBySignal(SIGSEGV), "");
}

#if defined(__GLIBC__)

namespace {

void* (*const volatile allocate)(std::size_t) = std::malloc; // out of the optimiser's sight
void (*const volatile release)(void*) = std::free;

/// Has the next large allocation of glibc fault over a wrong link between free blocks, the heap being locked.
void breakHeap() {
    constexpr std::size_t TOO_LARGE_FOR_A_CACHE = 0x1000;
    auto* const links = static_cast<void* volatile*>(allocate(TOO_LARGE_FOR_A_CACHE));
    allocate(TOO_LARGE_FOR_A_CACHE); // keeps the block from joining what is free behind it
    release(const_cast<void**>(links));
    links[1] = reinterpret_cast<void*>(0x1000);
}

} // namespace

TEST_F(FaultDeathTest, FaultInsideTheAllocatorEndsTheProcessInsteadOfWaitingForTheHeap) {
    EXPECT_EXIT(
        {
            alarm(30);                 // a process that waits for ever ends by another signal
            std::thread([] {}).join(); // the heap is locked only where there has been a second thread
            const SehTranslator translator;
            breakHeap();
            try {
                allocate(0x2000);
            } catch (const SehException&) {
            }
        },
        testing::KilledBySignal(SIGSEGV), "");
}

#endif

TEST_F(FaultDeathTest, SentSignalKillsAsItDidBefore) {
    EXPECT_EXIT(
        {
            const SehTranslator translator;
            std::raise(SIGSEGV);
        },
        testing::KilledBySignal(SIGSEGV), "");
}

TEST_F(FaultDeathTest, IgnoredFaultIsFatalAllTheSame) {
    EXPECT_EXIT(
        {
            std::signal(SIGSEGV, SIG_IGN);
            const SehTranslator translator;
            std::thread(readNowhere).join();
        },
        testing::KilledBySignal(SIGSEGV), "");
}

TEST_F(FaultDeathTest, FaultOfAnotherThreadGoesToThePreviousHandler) {
    EXPECT_EXIT(
        {
            std::signal(SIGSEGV, exitWithSeven);
            const SehTranslator translator;
            std::thread(readNowhere).join();
        },
        testing::ExitedWithCode(7), "");
}

TEST_F(FaultDeathTest, PreviousHandlerOfTheLongFormGetsItsDetails) {
    EXPECT_EXIT(
        {
            struct sigaction action = {};
            action.sa_flags = SA_SIGINFO;
            action.sa_sigaction = [](int, siginfo_t* pInfo, void*) { std::_Exit(pInfo->si_addr == nullptr ? 8 : 9); };
            sigaction(SIGSEGV, &action, nullptr);
            const SehTranslator translator;
            std::thread(readNowhere).join();
        },
        testing::ExitedWithCode(8), "");
}

#endif
