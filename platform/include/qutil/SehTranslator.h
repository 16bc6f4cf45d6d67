/// @file
/// Turns processor faults into C++ exceptions for the length of a scope.
#pragma once

#include <tov/Export.h>

#if defined(_MSC_VER)
#include <eh.h>
#endif

namespace qutil {

/// While one lives on a thread, bad memory accesses, illegal instructions and integer divisions by zero of that thread
/// surface as SehException where they happen. Translators nest, and are destroyed on the thread that made them.
///
/// It works on Linux with GCC (x86-64, AArch64) and with Microsoft's compiler; elsewhere, and in builds with the
/// address or thread sanitizer, which report faults themselves, it does nothing: ask isEffective().
///
/// The compiler must be told that any access may throw, or it drops handlers and destructors as unreachable: build the
/// catching code with -fnon-call-exceptions (/EHa with Microsoft's compiler). Even so, a fault ends the process in a
/// function that promises not to throw, in a parallel region that does not catch it, when the stack is exhausted, or
/// after link-time optimisation, which forgets the option. So does a fault inside the memory allocator, whose lock
/// would never be given back, and one inside the translation itself.
///
/// On Linux the signal handlers belong to the process: they are installed with the first translator and the previous
/// ones put back with the last, unless somebody else's have come on top. Faults of threads without a translator, and
/// signals sent by processes, go to the previous handlers.
class ZQX_PLATFORM_API SehTranslator {
public:
    /// Faults of this thread become exceptions from here on.
    SehTranslator();
    /// As it was before.
    ~SehTranslator();
    SehTranslator(const SehTranslator&) = delete;
    SehTranslator& operator=(const SehTranslator&) = delete;

    /// Whether faults are translated in this build.
    static bool isEffective();

#if defined(_MSC_VER)
private:
    _se_translator_function mPrevious;
#endif
};

} // namespace qutil
