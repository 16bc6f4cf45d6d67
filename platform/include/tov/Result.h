/// @file
/// Result codes of component methods. What each says in words: qutil/StrError.h.
#pragma once

#include <cstdint>

namespace tov {

/// What a component method returns; the sign bit marks a failure.
using Result = std::uint32_t;

/// Done.
inline constexpr Result SUCCESS = 0;
/// A pointer is null, or a value cannot be meant.
inline constexpr Result INVALID_ARGUMENT = 0x80070057;
/// Something went wrong that the method has no code for, as a rule an exception.
inline constexpr Result UNEXPECTED = 0x8000FFFF;
/// The object has no such interface.
inline constexpr Result NO_INTERFACE = 0x80004002;
/// What the method stands on refused: a file, a library, memory.
inline constexpr Result FAILURE = 0x80004005;
/// The object lacks something that it must be given first.
inline constexpr Result NOT_READY = 0x80000100;
/// Not for what the object holds.
inline constexpr Result NOT_SUPPORTED = 0x80000101;
/// The factory makes no objects that become part of others.
inline constexpr Result NO_AGGREGATION = 0x96240010;
/// The module does not hold the class.
inline constexpr Result CLASS_NOT_AVAILABLE = 0x96240012;

/// True for codes that are negative as signed 32-bit numbers; positive codes are successes with a remark.
constexpr bool failed(Result result) {
    return (result & 0x80000000U) != 0;
}

} // namespace tov
