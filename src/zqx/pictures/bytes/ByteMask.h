// Changes to what decoders read of a file.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace zqx::pictures {

/// Bytes that decoders are to find in place of a file's own.
class ByteMask {
public:
    void add(std::uint64_t offset, std::string bytes) { mPatches.push_back({offset, std::move(bytes)}); }

    /// Puts them over what was read at a place.
    void apply(std::uint64_t offset, std::span<char> bytes) const;

private:
    struct Patch {
        std::uint64_t offset;
        std::string bytes;
    };
    std::vector<Patch> mPatches;
};

} // namespace zqx::pictures
