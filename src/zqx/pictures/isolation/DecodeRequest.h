// What a program asks its decoder process for, as that process' command line.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "zqx/pictures/Limits.h"

namespace zqx::pictures {

struct DecodeRequest {
    /// Descriptors that the process finds open. It opens none itself.
    static constexpr int RESULT = 3; ///< takes a Transfer
    static constexpr int ALIVE = 4;  ///< closes when the process ends
    static constexpr int FILE = 5;   ///< the picture file, for reading
    static constexpr int LAST = FILE;

    /// What is to be done with the file.
    enum class Task : std::uint64_t { DECODE, DESCRIBE };

    std::uint64_t parent = 0; ///< the process with whose end this one ends
    std::uint64_t memory = 0; ///< bytes
    std::uint64_t milliseconds = 0;
    Limits limits;
    Task task = Task::DECODE;
    bool requireConfinement = true; ///< do nothing where the system cannot confine the process
    std::string name;               ///< of the file, for messages and for its extension

    std::vector<std::string> toArguments() const;
    /// Nothing where the arguments are no request.
    static std::optional<DecodeRequest> fromArguments(std::span<const char* const> arguments);
};

} // namespace zqx::pictures
