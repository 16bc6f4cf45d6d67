// What is not as it should be about the parameters, and yet leaves something to work with.
#pragma once

#include <string>
#include <vector>

#include "zqx/pictures/files/Error.h"

namespace zqx::tools {

/// Remarks that were taken for errors. what() tells what to do about them.
class RemarksError : public pictures::Error {
public:
    explicit RemarksError(std::vector<std::string> remarks);

    /// Each "subject: problem".
    const std::vector<std::string>& remarks() const { return mRemarks; }

private:
    std::vector<std::string> mRemarks;
};

/// Warns of each remark at once, or, when strict, collects them into one error.
class Remarks {
public:
    explicit Remarks(bool strict) : mStrict(strict) {}

    /// @param subject the file or option at fault
    /// @param consequence what is done about it, as the end of the problem's sentence
    void add(const std::string& subject, const std::string& problem, const std::string& consequence);

    /// @throws RemarksError with all remarks, when strict and there are any
    void settle() const;

private:
    bool mStrict;
    std::vector<std::string> mLines;
};

} // namespace zqx::tools
