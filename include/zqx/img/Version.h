/// @file
/// The version that a program is compiled against. The one that it runs with: runtimeVersion() in Runtime.h.
#pragma once

/// @def ZQX_IMG_VERSION_MAJOR
/// Changes when programs have to be built anew.
/// @ingroup image
#define ZQX_IMG_VERSION_MAJOR 1

/// @def ZQX_IMG_VERSION_MINOR
/// Changes when there is more to use.
/// @ingroup image
#define ZQX_IMG_VERSION_MINOR 0

/// @def ZQX_IMG_VERSION_PATCH
/// Changes with everything else.
/// @ingroup image
#define ZQX_IMG_VERSION_PATCH 0

/// @def ZQX_IMG_VERSION
/// The three numbers as text.
/// @ingroup image
#define ZQX_IMG_VERSION "1.0.0"

namespace zqx::img {

/// @name The same for programs that do without macros
/// @{

inline constexpr int VERSION_MAJOR = ZQX_IMG_VERSION_MAJOR; ///< as ZQX_IMG_VERSION_MAJOR
inline constexpr int VERSION_MINOR = ZQX_IMG_VERSION_MINOR; ///< as ZQX_IMG_VERSION_MINOR
inline constexpr int VERSION_PATCH = ZQX_IMG_VERSION_PATCH; ///< as ZQX_IMG_VERSION_PATCH
inline constexpr const char* VERSION = ZQX_IMG_VERSION;     ///< as ZQX_IMG_VERSION
/// @}

} // namespace zqx::img
