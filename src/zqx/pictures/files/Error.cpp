// Where warnings go.
#include "zqx/pictures/files/Error.h"

#include <cstdio>
#include <utility>

#include "zqx/text/Cleaning.h"

namespace zqx::pictures {

namespace {

thread_local std::function<void(const std::string&)> tListener;

} // namespace

void warn(const std::string& subject, const std::string& remark) {
    const std::string line = subject + ": " + remark;
    if (tListener) {
        tListener(line);
    } else {
        std::fprintf(stderr, "zqx-img: warning: %s\n", text::printable(line).c_str());
    }
}

WarningListener::WarningListener(std::function<void(const std::string&)> listener)
    : mPrevious(std::exchange(tListener, std::move(listener))) {
}

WarningListener::~WarningListener() {
    tListener = std::move(mPrevious);
}

} // namespace zqx::pictures
