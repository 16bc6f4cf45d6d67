/// @file
/// Symbol visibility of the library: everything is hidden except what carries ZQX_IMG_API.
#pragma once

/// @def ZQX_IMG_API
/// Marks what the shared library exports.
/// @ingroup image

#if defined(_WIN32)
#if defined(ZQX_STATIC_LIBRARIES)
#define ZQX_IMG_API
#elif defined(ZQX_IMG_BUILDING)
#define ZQX_IMG_API __declspec(dllexport)
#else
#define ZQX_IMG_API __declspec(dllimport)
#endif
#else
#define ZQX_IMG_API __attribute__((visibility("default")))
#endif
