/// @file
/// Result codes in words.
#pragma once

#include <cstdint>

#include <tov/Export.h>

namespace qutil {

/// A short text for a result code, in static memory; "Unknown result code" for codes that have none.
ZQX_PLATFORM_API const char* tovStrError(std::uint32_t code);

} // namespace qutil
