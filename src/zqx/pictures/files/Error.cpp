// Where warnings go.
#include "zqx/pictures/files/Error.h"

#include <cstdio>
#include <utility>

namespace zqx::pictures {

namespace {

thread_local std::function<void(const std::string&)> tListener;

} // namespace

void warn(const std::string& subject, const std::string& text) {
    const std::string line = subject + ": " + text;
    if (tListener) {
        tListener(line);
    } else {
        std::fprintf(stderr, "zqx-img: warning: %s\n", line.c_str());
    }
}

WarningListener::WarningListener(std::function<void(const std::string&)> listener)
    : mPrevious(std::exchange(tListener, std::move(listener))) {
}

WarningListener::~WarningListener() {
    tListener = std::move(mPrevious);
}

} // namespace zqx::pictures
