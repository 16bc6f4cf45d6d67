// Landlock (landlock(7)), by system calls: C libraries have no functions for it, and the kernel's headers may be older
// than the kernel. A ruleset that handles rights and allows none takes all of them.
#include "zqx/pictures/isolation/decoder/FileBarrier.h"

#if defined(__linux__)

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include <sys/syscall.h>
#include <unistd.h>

namespace zqx::pictures {

namespace {

#if defined(__alpha__)
constexpr long FIRST_CALL = 554;
#else
constexpr long FIRST_CALL = 444;
#endif
constexpr long CREATE_RULESET = FIRST_CALL;
constexpr long RESTRICT_SELF = FIRST_CALL + 2;
constexpr unsigned ASK_FOR_VERSION = 1;

/// What each version of the interface added; they know the members of this in turn.
struct Ruleset {
    std::uint64_t files;
    std::uint64_t network;
    std::uint64_t scopes;
};

struct Version {
    int fileRights; ///< bits that there are
    int networkRights;
    int scopes;
    std::size_t size; ///< of the ruleset
};

constexpr std::array<Version, 6> VERSIONS{{
    {13, 0, 0, 8},
    {14, 0, 0, 8},  // linking and renaming across folders
    {15, 0, 0, 8},  // truncation
    {15, 2, 0, 16}, // TCP
    {16, 2, 0, 16}, // control of devices
    {16, 2, 2, 24}, // abstract sockets, signals
}};

constexpr std::uint64_t ones(int count) {
    return (std::uint64_t{1} << static_cast<unsigned>(count)) - 1;
}

} // namespace

bool barFiles() {
    const long version = syscall(CREATE_RULESET, nullptr, std::size_t{0}, ASK_FOR_VERSION);
    if (version < 1) {
        return false;
    }
    const std::size_t known = std::min(static_cast<std::size_t>(version), VERSIONS.size());
    const auto& [fileRights, networkRights, scopes, size] = VERSIONS[known - 1];
    const Ruleset ruleset{ones(fileRights), ones(networkRights), ones(scopes)};
    const long descriptor = syscall(CREATE_RULESET, &ruleset, size, 0U);
    if (descriptor < 0) {
        return false;
    }
    const bool restricted = syscall(RESTRICT_SELF, descriptor, 0U) == 0;
    close(static_cast<int>(descriptor));
    return restricted;
}

} // namespace zqx::pictures

#else

namespace zqx::pictures {

bool barFiles() {
    return false;
}

} // namespace zqx::pictures

#endif
