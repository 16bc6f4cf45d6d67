// Faults in parameters that can be worked around: warnings, or errors for those who want to be strict.
#pragma once

#include <string>
#include <vector>

namespace zqx::tools {

/// Warns of each fault at once or, when strict, collects them for one error.
class Remarks {
public:
    explicit Remarks(bool strict) : mStrict(strict) {}

    /// @param subject the file or option at fault
    /// @param consequence how the fault is handled; continues the sentence of the problem
    void add(const std::string& subject, const std::string& problem, const std::string& consequence);

    /// @throws Error with one line for each fault, when strict and there are any
    void settle() const;

private:
    bool mStrict;
    std::vector<std::string> mLines;
};

} // namespace zqx::tools
