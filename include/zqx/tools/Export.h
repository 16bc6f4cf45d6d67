/// @file
/// Symbol visibility of zqx_tools: everything is hidden except what carries ZQX_TOOLS_EXPORT.
#pragma once

/// @def ZQX_TOOLS_EXPORT
/// Marks what the shared library exports.
/// @ingroup tools

/// @defgroup tools Tools for pictures and folders of pictures
/// Parameter documents, runs over many pictures, histograms, comparisons, downscaling, contact sheets and lookup
/// tables: what the program zqx-img does, for programs of your own.

#if !defined(_WIN32)
#define ZQX_TOOLS_EXPORT __attribute__((visibility("default")))
#elif defined(ZQX_STATIC_LIBRARIES)
#define ZQX_TOOLS_EXPORT
#elif defined(ZQX_TOOLS_BUILDING)
#define ZQX_TOOLS_EXPORT __declspec(dllexport)
#else
#define ZQX_TOOLS_EXPORT __declspec(dllimport)
#endif
