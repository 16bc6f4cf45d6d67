// Faults in parameters that can be worked around: warnings, or errors for those who want to be strict.
#pragma once

#include <string>
#include <vector>

#include "zqx/pictures/files/Error.h"

namespace zqx::tools {

/// Faults that were to be errors. what() tells what to do about them, and has a line for each.
class RemarksError : public pictures::Error {
public:
    explicit RemarksError(std::vector<std::string> remarks);

    /// What to do about them.
    static std::string heading();

    /// Each "subject: problem", for who prints them one by one: names in them may have line breaks.
    const std::vector<std::string>& remarks() const { return mRemarks; }

private:
    std::vector<std::string> mRemarks;
};

/// Warns of each fault at once or, when strict, collects them for one error.
class Remarks {
public:
    explicit Remarks(bool strict) : mStrict(strict) {}

    /// @param subject the file or option at fault
    /// @param consequence how the fault is handled; continues the sentence of the problem
    void add(const std::string& subject, const std::string& problem, const std::string& consequence);

    /// @throws RemarksError with all faults, when strict and there are any
    void settle() const;

private:
    bool mStrict;
    std::vector<std::string> mLines;
};

} // namespace zqx::tools
