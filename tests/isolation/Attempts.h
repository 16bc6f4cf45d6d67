// What a decoder that a file has taken over would try.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace zqx::pictures::test {

struct Target {
    std::string folder; ///< holds "victim", a file
    int process = 0;    ///< somebody else's
};

struct Attempt {
    /// What the kernel says to a process that nobody confines.
    static constexpr int SUCCEEDS = 0; ///< or an error of its own
    static constexpr int DEPENDS = -1; ///< on the system, or too dangerous to be tried

    const char* name;
    int unconfined;             ///< SUCCEEDS, DEPENDS or an errno
    bool byName;                ///< reaches for files by their names, which Landlock knows of
    std::function<long()> call; ///< negative with errno on a failure
};

std::vector<Attempt> attemptsOn(const Target& target);

/// What decoding cannot do without.
std::vector<Attempt> needs();

} // namespace zqx::pictures::test
