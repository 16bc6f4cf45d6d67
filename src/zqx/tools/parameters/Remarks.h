// Problems with parameters that can be worked around: warnings or, in strict mode, errors.
#pragma once

#include <string>
#include <vector>

#include "zqx/pictures/files/Error.h"

namespace zqx::tools {

/// Thrown in strict mode. what() says what to do, followed by one line for each problem.
class RemarksError : public pictures::Error {
public:
    explicit RemarksError(std::vector<std::string> remarks);

    /// The line that says what to do.
    static std::string heading();

    /// The problems, each as "subject: problem", to be printed one by one: names in them may contain line breaks.
    const std::vector<std::string>& remarks() const { return mRemarks; }

private:
    std::vector<std::string> mRemarks;
};

/// Warns about each problem immediately or, in strict mode, collects them for one error.
class Remarks {
public:
    explicit Remarks(bool strict) : mStrict(strict) {}

    /// @param subject the file or option at fault
    /// @param consequence how the problem is handled; continues its sentence
    void add(const std::string& subject, const std::string& problem, const std::string& consequence);

    /// @throws RemarksError with all problems, if there are any in strict mode
    void settle() const;

private:
    bool mStrict;
    std::vector<std::string> mLines;
};

} // namespace zqx::tools
