// Assertions: the handler in charge, and the default one.
#include <qutil/Assert.h>

#include <utility>

#include <qutil/Log.h>

#include "Callback.h"

namespace qutil {

namespace {

/// Never destroyed, as the log's sink.
Callback<AssertHandler>& hostHandler() {
    static Callback<AssertHandler>& instance = *new Callback<AssertHandler>;
    return instance;
}

} // namespace

AssertHandler setAssertHandler(AssertHandler handler) {
    return hostHandler().exchange(std::move(handler));
}

bool zqxAssertFailed(const char* expression, const char* file, int line, const char* function) {
    if (const AssertHandler current = hostHandler().current()) {
        return current(expression, file, line);
    }
    constexpr int LEVEL = 1;
    if (Log::reportingLevel() >= LEVEL) {
        Log::get("assert", file, line, function, LEVEL) << (expression != nullptr ? expression : "");
    }
    return false;
}

} // namespace qutil
