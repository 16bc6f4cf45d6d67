/// @file
/// Symbol visibility of zqx_tools: everything is hidden except what carries ZQX_TOOLS_EXPORT.
#pragma once

/// @def ZQX_TOOLS_EXPORT
/// Marks what the shared library exports.
/// @ingroup tools

#if !defined(_WIN32)
#define ZQX_TOOLS_EXPORT __attribute__((visibility("default")))
#elif defined(ZQX_STATIC_LIBRARIES)
#define ZQX_TOOLS_EXPORT
#elif defined(ZQX_TOOLS_BUILDING)
#define ZQX_TOOLS_EXPORT __declspec(dllexport)
#else
#define ZQX_TOOLS_EXPORT __declspec(dllimport)
#endif
