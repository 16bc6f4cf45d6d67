/// @file
/// A grading as a three-dimensional lookup table, for programs that know nothing of this library.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <zqx/img/ColorGrading.h>
#include <zqx/tools/Export.h>

namespace zqx::tools {

/// What a lookup table is for.
/// @ingroup tools
struct CubeOptions {
    std::size_t size = 33; ///< points along each axis, 2 to 256
    bool linear = false;   ///< for linear light in and out, without limits, instead of encoded values from 0 to 1
    std::string title;     ///< a line of text; the stem of the file's name where it is empty
};

/// Grades a lattice of colours in floats throughout, since tables of bytes would band in shadows.
/// @param grading what is baked
/// @param size points along each axis, at least 2
/// @param linear whether coordinates and results are linear light; encoded ones are limited to 0 and 1
/// @return red, green and blue of size^3 points, red the fastest, blue the slowest. Where hues are turned, a black
///         without hue grades to what is not a number
/// @ingroup tools
ZQX_TOOLS_EXPORT std::vector<float> bakeLattice(const img::ColorGrading& grading, std::size_t size, bool linear);

/// Writes a grading as a .cube file: text with a title, the size, the domain 0 to 1, and a line of plain decimals for
/// each point, which read back as the same floats. Not a number is written as 0, infinity as the largest float.
///
/// The file appears whole or not at all.
/// @param name of the file, in UTF-8
/// @param grading what is baked
/// @param options size, curve and title
/// @throws pictures::UsageError for a size out of range, pictures::Error naming the file when it cannot be written
/// @ingroup tools
ZQX_TOOLS_EXPORT void writeCubeFile(const std::string& name, const img::ColorGrading& grading,
                                    const CubeOptions& options = {});

} // namespace zqx::tools
