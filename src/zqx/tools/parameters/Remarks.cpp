// Warnings, or one error in place of them all.
#include "zqx/tools/parameters/Remarks.h"

#include "zqx/pictures/files/Error.h"

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
    if (mLines.empty()) {
        return;
    }
    std::string text = "correct the following, or leave --strict out to go on with warnings";
    for (const std::string& line : mLines) {
        text += "\n" + line;
    }
    throw Error("--strict", text);
}

} // namespace zqx::tools
