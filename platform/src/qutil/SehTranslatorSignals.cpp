// Fault translation out of Linux signals. Throwing out of a signal handler is sound here because the signal is
// synchronous: the unwinder knows signal frames, and goes on in the faulting function as if the faulting instruction
// had been a call. The handler allocates nothing, as a fault may come at any time: the exception's memory is had
// beforehand.
#include <qutil/SehTranslator.h>

#include "FaultSignals.h"

#if defined(ZQX_FAULT_SIGNALS)

#include <csignal>
#include <cstdint>
#include <mutex>
#include <new>
#include <typeinfo>
#include <utility>

#include <cxxabi.h>
#include <ucontext.h>

#include <qutil/SehException.h>

#include "AllocatorFrames.h"

namespace qutil {

namespace {

/// A fault signal and the handler that it had before ours.
struct FaultSignal {
    int number;
    /// Somebody else's handler came on top of ours, and may pass signals on to it.
    bool covered = false;
    struct sigaction previous = {};
};

std::mutex sMutex;
unsigned int sThreads = 0;
FaultSignal sSignals[] = {{SIGSEGV}, {SIGBUS}, {SIGFPE}, {SIGILL}};

/// Translators alive on this thread.
thread_local int tDepth = 0;

/// Memory of the next exception on this thread; null when it was used and no normal code has run since.
thread_local void* tSpare = nullptr;

/// Whether this thread is in the handler, or looks for who catches what the handler threw.
thread_local bool tHandling = false;

#if defined(__x86_64__)
std::uintptr_t getInstruction(const mcontext_t& context) {
    return static_cast<std::uintptr_t>(context.gregs[REG_RIP]);
}

/// Undoes a call that led nowhere: no unwind information covers the target, but the caller's covers the call.
void stepBackToCaller(mcontext_t& context) {
    context.gregs[REG_RIP] = *reinterpret_cast<const greg_t*>(context.gregs[REG_RSP]) - 1;
    context.gregs[REG_RSP] += static_cast<greg_t>(sizeof(greg_t));
}
#else
std::uintptr_t getInstruction(const mcontext_t& context) {
    return context.pc;
}

/// As above; a call leaves its return address in the link register.
void stepBackToCaller(mcontext_t& context) {
    constexpr std::uintptr_t INSTRUCTION_BYTES = 4;
    context.pc = context.regs[30] - INSTRUCTION_BYTES;
}
#endif

const struct sigaction& getPrevious(int number) {
    const FaultSignal* pSignal = sSignals;
    while (pSignal->number != number) {
        ++pSignal;
    }
    return pSignal->previous;
}

/// Does what would have happened without us.
void passOn(int number, siginfo_t* pInfo, void* pContext) {
    const struct sigaction& previous = getPrevious(number);
    const bool sent = pInfo->si_code <= 0;
    if ((previous.sa_flags & SA_SIGINFO) != 0) {
        previous.sa_sigaction(number, pInfo, pContext);
    } else if (previous.sa_handler == SIG_DFL || (previous.sa_handler == SIG_IGN && !sent)) {
        // A fault comes again when its instruction is repeated, a sent signal does not. Faults cannot be ignored.
        std::signal(number, SIG_DFL);
        if (sent) {
            std::raise(number);
        }
    } else if (previous.sa_handler != SIG_IGN) {
        previous.sa_handler(number);
    }
}

/// Sets the mark of this thread. An exception takes it off on its way, before anything else, once it is known who
/// catches it.
class HandlingScope {
public:
    HandlingScope() { tHandling = true; }
    ~HandlingScope() { tHandling = false; }
    HandlingScope(const HandlingScope&) = delete;
    HandlingScope& operator=(const HandlingScope&) = delete;
};

void provideSpare() {
    if (tSpare == nullptr) {
        tSpare = abi::__cxa_allocate_exception(sizeof(SehException));
    }
}

/// Called when an exception has been dealt with; its memory is freed thereafter, so the next one gets its own.
void destroyFault(void* pFault) {
    static_cast<SehException*>(pFault)->~SehException();
    if (tDepth > 0) {
        provideSpare();
    }
}

/// What `throw SehException(code, address)` does, but for the memory.
[[noreturn]] void throwFault(unsigned int code, const void* address) {
    provideSpare(); // finds none only in a second fault while the first one's exception is still looked at
    void* const memory = std::exchange(tSpare, nullptr);
    new (memory) SehException(code, address);
    abi::__cxa_throw(memory, const_cast<std::type_info*>(&typeid(SehException)), destroyFault);
}

void onFault(int number, siginfo_t* pInfo, void* pContext) {
    if (tDepth == 0 || pInfo->si_code <= 0) {
        passOn(number, pInfo, pContext);
        return;
    }
    if (tHandling) {
        std::signal(number, SIG_DFL); // the instruction is repeated, and ends the process
        return;
    }
    const HandlingScope handling;
    mcontext_t& context = static_cast<ucontext_t*>(pContext)->uc_mcontext;
    const mcontext_t before = context;
    const auto* address = reinterpret_cast<const void*>(getInstruction(context));
    if (number == SIGSEGV && pInfo->si_addr == address) {
        stepBackToCaller(context);
    }
    if (isAllocatorInterrupted()) {
        // The heap is lost: destructors on the way of an exception would free, and wait for ever.
        context = before;
        passOn(number, pInfo, pContext);
        return;
    }
    throwFault(static_cast<unsigned int>(number), address);
}

/// The address of a handler, in whichever of the two forms it was given.
void* getHandler(const struct sigaction& action) {
    return (action.sa_flags & SA_SIGINFO) != 0 ? reinterpret_cast<void*>(action.sa_sigaction)
                                               : reinterpret_cast<void*>(action.sa_handler);
}

bool isOurs(const struct sigaction& action) {
    return getHandler(action) == reinterpret_cast<void*>(onFault);
}

struct sigaction getCurrent(const FaultSignal& signal) {
    struct sigaction current = {};
    sigaction(signal.number, nullptr, &current);
    return current;
}

/// Whether a handler is known not to lead to ours: it was there before, or is none.
bool isBelow(const FaultSignal& signal, const struct sigaction& action) {
    return getHandler(action) == getHandler(signal.previous) || action.sa_handler == SIG_DFL ||
           action.sa_handler == SIG_IGN;
}

void install(FaultSignal& signal) {
    const struct sigaction current = getCurrent(signal);
    // A handler from above ours stays there: with ours on top as well, the two would call each other for ever. It may
    // also have gone and left ours behind.
    if (isOurs(current) || (signal.covered && !isBelow(signal, current))) {
        return;
    }
    // Known before it is needed: another thread may fault as soon as ours is in place.
    signal.previous = current;
    signal.covered = false;
    struct sigaction action = {};
    action.sa_sigaction = onFault;
    // Not deferred: the handler is left by an exception, so nothing would unblock the signal.
    action.sa_flags = SA_SIGINFO | SA_NODEFER;
    sigemptyset(&action.sa_mask);
    sigaction(signal.number, &action, nullptr);
}

void restore(FaultSignal& signal) {
    const struct sigaction current = getCurrent(signal);
    if (isOurs(current)) {
        sigaction(signal.number, &signal.previous, nullptr);
        signal.covered = false;
    } else {
        signal.covered = !isBelow(signal, current);
    }
}

/// Does beforehand what would take memory in the handler.
void prepareThread() {
    static const bool located = (locateAllocator(), true);
    static_cast<void>(located);
    // The runtime's record of this thread's exceptions is made when it is first asked for.
    [[maybe_unused]] const void* volatile record = abi::__cxa_get_globals();
    provideSpare();
}

void giveSpareBack() {
    if (tSpare != nullptr) {
        abi::__cxa_free_exception(std::exchange(tSpare, nullptr));
    }
}

} // namespace

SehTranslator::SehTranslator() {
    if (tDepth == 0) {
        prepareThread();
        const std::scoped_lock lock(sMutex);
        if (sThreads++ == 0) {
            for (FaultSignal& signal : sSignals) {
                install(signal);
            }
        }
    }
    ++tDepth;
}

SehTranslator::~SehTranslator() {
    if (--tDepth == 0) {
        giveSpareBack();
        const std::scoped_lock lock(sMutex);
        if (--sThreads == 0) {
            for (FaultSignal& signal : sSignals) {
                restore(signal);
            }
        }
    }
}

bool SehTranslator::isEffective() {
    return true;
}

} // namespace qutil

#endif
