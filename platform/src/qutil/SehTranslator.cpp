// Fault translation: one implementation for Linux signals, one for Microsoft's structured exceptions, one that does
// nothing. Throwing out of a signal handler is sound here because the signal is synchronous: the unwinder knows signal
// frames, and goes on in the faulting function as if the faulting instruction had been a call.
#include <qutil/SehTranslator.h>

#include <qutil/SehException.h>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
// These sanitizers explain a fault better than an exception could.
#elif defined(__linux__) && defined(__GNUC__) && !defined(__clang__) && (defined(__x86_64__) || defined(__aarch64__))
#define ZQX_FAULT_SIGNALS
#endif

#if defined(ZQX_FAULT_SIGNALS)
#include <csignal>
#include <cstdint>
#include <mutex>

#include <ucontext.h>
#elif defined(_MSC_VER)
#include <windows.h>
#endif

namespace qutil {

#if defined(ZQX_FAULT_SIGNALS)

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

#if defined(__x86_64__)
std::uintptr_t instructionOf(const mcontext_t& context) {
    return static_cast<std::uintptr_t>(context.gregs[REG_RIP]);
}

/// Undoes a call that led nowhere: no unwind information covers the target, but the caller's covers the call.
void stepBackToCaller(mcontext_t& context) {
    context.gregs[REG_RIP] = *reinterpret_cast<const greg_t*>(context.gregs[REG_RSP]) - 1;
    context.gregs[REG_RSP] += static_cast<greg_t>(sizeof(greg_t));
}
#else
std::uintptr_t instructionOf(const mcontext_t& context) {
    return context.pc;
}

/// As above; a call leaves its return address in the link register.
void stepBackToCaller(mcontext_t& context) {
    constexpr std::uintptr_t INSTRUCTION_BYTES = 4;
    context.pc = context.regs[30] - INSTRUCTION_BYTES;
}
#endif

const struct sigaction& previousOf(int number) {
    const FaultSignal* pSignal = sSignals;
    while (pSignal->number != number) {
        ++pSignal;
    }
    return pSignal->previous;
}

/// Does what would have happened without us.
void passOn(int number, siginfo_t* pInfo, void* pContext) {
    const struct sigaction& previous = previousOf(number);
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

void onFault(int number, siginfo_t* pInfo, void* pContext) {
    if (tDepth == 0 || pInfo->si_code <= 0) {
        passOn(number, pInfo, pContext);
        return;
    }
    mcontext_t& context = static_cast<ucontext_t*>(pContext)->uc_mcontext;
    const auto* address = reinterpret_cast<const void*>(instructionOf(context));
    if (number == SIGSEGV && pInfo->si_addr == address) {
        stepBackToCaller(context);
    }
    throw SehException(static_cast<unsigned int>(number), address);
}

/// The address of a handler, in whichever of the two forms it was given.
void* handlerOf(const struct sigaction& action) {
    return (action.sa_flags & SA_SIGINFO) != 0 ? reinterpret_cast<void*>(action.sa_sigaction)
                                               : reinterpret_cast<void*>(action.sa_handler);
}

bool isOurs(const struct sigaction& action) {
    return handlerOf(action) == reinterpret_cast<void*>(onFault);
}

struct sigaction currentOf(const FaultSignal& signal) {
    struct sigaction current = {};
    sigaction(signal.number, nullptr, &current);
    return current;
}

/// Whether a handler is known not to lead to ours: it was there before, or is none.
bool isBelow(const FaultSignal& signal, const struct sigaction& action) {
    return handlerOf(action) == handlerOf(signal.previous) || action.sa_handler == SIG_DFL ||
           action.sa_handler == SIG_IGN;
}

void install(FaultSignal& signal) {
    const struct sigaction current = currentOf(signal);
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
    const struct sigaction current = currentOf(signal);
    if (isOurs(current)) {
        sigaction(signal.number, &signal.previous, nullptr);
        signal.covered = false;
    } else {
        signal.covered = !isBelow(signal, current);
    }
}

} // namespace

SehTranslator::SehTranslator() {
    if (tDepth == 0) {
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

#elif defined(_MSC_VER)

namespace {

void throwFault(unsigned int code, _EXCEPTION_POINTERS* pPointers) {
    throw SehException(code, pPointers->ExceptionRecord->ExceptionAddress);
}

} // namespace

SehTranslator::SehTranslator() : mPrevious(_set_se_translator(throwFault)) {
}

SehTranslator::~SehTranslator() {
    _set_se_translator(mPrevious);
}

bool SehTranslator::isEffective() {
    return true;
}

#else

SehTranslator::SehTranslator() = default;

SehTranslator::~SehTranslator() = default;

bool SehTranslator::isEffective() {
    return false;
}

#endif

} // namespace qutil
