/// @file
/// A fast hash of bytes, for finding equal pictures; not for security.
#pragma once

#include <cstddef>
#include <cstdint>

#include <tov/Export.h>

namespace qutil {

/// Paul Hsieh's SuperFastHash of a byte range: the same value on every machine, whatever its byte order. 0 for an
/// empty range or null. The length takes part with its low 32 bits.
ZQX_PLATFORM_API std::uint32_t superFastHash(const char* data, std::size_t length);

} // namespace qutil
