// Warnings, or one error in place of them all.
#include "zqx/tools/parameters/Remarks.h"

#include <utility>

namespace zqx::tools {

using namespace pictures;

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
    : Error("--strict", "correct the following, or leave --strict out to go on with warnings"),
      mRemarks(std::move(remarks)) {
}

} // namespace zqx::tools
