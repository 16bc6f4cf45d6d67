/// @file
/// Symbol visibility of the library: everything is hidden except what carries ZQX_TOOLS_EXPORT.
#pragma once

/// @def ZQX_TOOLS_EXPORT
/// Marks what the shared library exports.
/// @ingroup tools

/// @defgroup tools What is done to many pictures, or about one
/// Adjustments from documents, runs over folders, histograms, comparisons, smaller versions, contact sheets and lookup
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
