/// @file
/// The convention of component methods, written once: null pointers are named in the log, the body runs in a guard that
/// turns whatever escapes into a result code, and a failing result is logged.
#pragma once

#include <exception>

#include <qutil/Error.h>
#include <qutil/Log.h>
#include <qutil/SehException.h>
#include <qutil/SehTranslator.h>
#include <qutil/StrError.h>
#include <tov/Result.h>

/// The full signature of the enclosing function as the compiler spells it.
#if defined(_MSC_VER)
#define ZQX_FUNCTION_SIGNATURE __FUNCSIG__
#else
#define ZQX_FUNCTION_SIGNATURE __PRETTY_FUNCTION__
#endif

/// Where a component method is: its source path relative to the project without extension, this line, this function.
#define ZQX_METHOD_SITE(sourcePath)                                                                                    \
    ::zqx::detail::MethodSite {                                                                                        \
        sourcePath, __LINE__, ZQX_FUNCTION_SIGNATURE                                                                   \
    }

namespace zqx::detail {

inline constexpr const char* LOG_CATEGORY = "unknown";
/// Level of argument and result failures.
inline constexpr int LOG_LEVEL = 2;

struct MethodSite {
    const char* file;
    int line;
    const char* function;
};

/// Writes one record about a method, unless the log reports less than such. A record that there is no memory for is
/// lost: the result code is what counts.
inline void logMethod(const MethodSite& site, const char* text, const char* detail = "",
                      int level = LOG_LEVEL) noexcept {
    try {
        if (qutil::Log::reportingLevel() >= level) {
            qutil::Log::get(LOG_CATEGORY, site.file, site.line, site.function, level) << text << detail;
        }
    } catch (...) {
    }
}

/// Records what escaped from a method; lost where there is no memory for it.
template <typename Exception>
void logFatal(const MethodSite& site, const Exception& exception) noexcept {
    try {
        qutil::Log::logFatalException(LOG_CATEGORY, site.file, site.line, exception);
    } catch (...) {
    }
}

/// Names a required pointer that is null. @return the result code of an invalid argument
inline tov::Result nullArgument(const MethodSite& site, const char* parameter) {
    logMethod(site, parameter);
    return tov::INVALID_ARGUMENT;
}

/// Logs a failing result. @return the result
inline tov::Result reported(const MethodSite& site, tov::Result result) {
    if (tov::failed(result)) {
        logMethod(site, "End TOV-Function result: ", qutil::tovStrError(result));
    }
    return result;
}

/// Runs the body of a method, a callable that returns a result code. Exceptions, and processor faults where they can
/// be translated, are logged and become tov::UNEXPECTED.
template <typename Body>
tov::Result guarded(const MethodSite& site, const Body& body) {
    tov::Result result = tov::UNEXPECTED;
    try {
        const qutil::SehTranslator translator;
        result = body();
    } catch (const qutil::SehException& fault) {
        logFatal(site, fault);
    } catch (const qutil::Error* error) {
        logFatal(site, *error);
        delete error;
    } catch (const std::exception& exception) {
        logFatal(site, exception.what());
    } catch (...) {
        logFatal(site, static_cast<const char*>("Unhandled exception"));
    }
    return reported(site, result);
}

} // namespace zqx::detail
