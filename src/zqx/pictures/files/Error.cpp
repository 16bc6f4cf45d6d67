// Routing of warnings.
#include "zqx/pictures/Diagnostics.h"

#include <utility>

namespace zqx::pictures {

namespace {

thread_local WarningHandler tListener;

WarningHandler& processHandler() {
    static WarningHandler& handler = *new WarningHandler; // never destroyed: threads may warn while the program ends
    return handler;
}

} // namespace

Error::~Error() = default;
UsageError::~UsageError() = default;

void warn(const std::string& subject, const std::string& text) {
    const std::string line = subject + ": " + text;
    if (tListener) {
        tListener(line);
    } else if (processHandler()) {
        processHandler()(line);
    }
}

void setWarningHandler(WarningHandler handler) {
    processHandler() = std::move(handler);
}

WarningListener::WarningListener(WarningHandler listener) : mPrevious(std::exchange(tListener, std::move(listener))) {
}

WarningListener::~WarningListener() {
    tListener = std::move(mPrevious);
}

} // namespace zqx::pictures
