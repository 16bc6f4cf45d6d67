/// @file
/// Symbol visibility of zqx_pictures: everything is hidden except what carries ZQX_PICTURES_EXPORT.
#pragma once

/// @def ZQX_PICTURES_EXPORT
/// Marks what the shared library exports.
/// @ingroup pictures

#if defined(_WIN32)
#if defined(ZQX_STATIC_LIBRARIES)
#define ZQX_PICTURES_EXPORT
#elif defined(ZQX_PICTURES_BUILDING)
#define ZQX_PICTURES_EXPORT __declspec(dllexport)
#else
#define ZQX_PICTURES_EXPORT __declspec(dllimport)
#endif
#else
#define ZQX_PICTURES_EXPORT __attribute__((visibility("default")))
#endif
