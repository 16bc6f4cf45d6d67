// What the program asks its decoder process for, as that process' command line.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "zqx/pictures/Limits.h"

namespace zqx::pictures {

struct DecodeRequest {
    /// Descriptors that the process finds open.
    static constexpr int RESULT = 3; ///< takes a Transfer
    static constexpr int ALIVE = 4;  ///< closes when the process ends

    std::uint64_t parent = 0; ///< whose end is that of the process
    std::uint64_t memory = 0; ///< bytes
    std::uint64_t milliseconds = 0;
    Limits limits;
    std::string name;

    std::vector<std::string> toArguments() const;
    /// Nothing where the arguments are no request.
    static std::optional<DecodeRequest> fromArguments(std::span<const char* const> arguments);
};

} // namespace zqx::pictures
