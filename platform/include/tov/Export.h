/// @file
/// Symbol visibility of the platform library: everything is hidden except what carries ZQX_PLATFORM_API.
#pragma once

/// @def ZQX_PLATFORM_API
/// Marks what the platform library exports.

#if defined(_WIN32)
#if defined(ZQX_STATIC_LIBRARIES)
#define ZQX_PLATFORM_API
#elif defined(ZQX_PLATFORM_BUILDING)
#define ZQX_PLATFORM_API __declspec(dllexport)
#else
#define ZQX_PLATFORM_API __declspec(dllimport)
#endif
#else
#define ZQX_PLATFORM_API __attribute__((visibility("default")))
#endif
