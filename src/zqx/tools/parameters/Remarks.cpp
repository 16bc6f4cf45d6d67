// Warnings, or a single error in their place.
#include "zqx/tools/parameters/Remarks.h"

#include <utility>

namespace zqx::tools {

using namespace pictures;

namespace {

constexpr const char* ADVICE = "correct the following, or omit --strict to continue with warnings";

std::string joined(const std::vector<std::string>& remarks) {
    std::string lines;
    for (const std::string& remark : remarks) {
        lines += "\n" + remark;
    }
    return lines;
}

} // namespace

void Remarks::add(const std::string& subject, const std::string& problem, const std::string& consequence) {
    if (mStrict) {
        mLines.push_back(subject + ": " + problem);
    } else {
        warn(subject, problem + consequence);
    }
}

void Remarks::settle() const {
    if (!mLines.empty()) {
        throw RemarksError(mLines);
    }
}

RemarksError::RemarksError(std::vector<std::string> remarks)
    : Error("--strict", std::string(ADVICE) + joined(remarks)), mRemarks(std::move(remarks)) {
}

std::string RemarksError::heading() {
    return std::string("--strict: ") + ADVICE;
}

} // namespace zqx::tools
