/// @file
/// Atomic operations on plain counters.
#pragma once

#include <cstdint>

#include <tov/Export.h>

namespace rhm {

/// Adds one. @return the new value. Thread-safe.
ZQX_PLATFORM_API std::uint32_t rhmAtomicIncrement(std::uint32_t* pCount);

/// Subtracts one. @return the new value. Thread-safe.
ZQX_PLATFORM_API std::uint32_t rhmAtomicDecrement(std::uint32_t* pCount);

} // namespace rhm
