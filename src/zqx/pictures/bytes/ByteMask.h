// Patches to what decoders read from a file.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace zqx::pictures {

/// Replaces some bytes of a file for its decoder; the file itself stays as it is.
class ByteMask {
public:
    void add(std::uint64_t offset, std::string bytes) { mPatches.push_back({offset, std::move(bytes)}); }

    /// Patches bytes that were read from an offset of the file.
    void apply(std::uint64_t offset, std::span<char> bytes) const;

private:
    struct Patch {
        std::uint64_t offset;
        std::string bytes;
    };
    std::vector<Patch> mPatches;
};

} // namespace zqx::pictures
