/// @file
/// Colour grading as 3D lookup tables in the .cube format, for other programs.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <zqx/img/ColorGrading.h>
#include <zqx/tools/Export.h>

namespace zqx::tools {

/// Options for lookup tables.
/// @ingroup tools
struct CubeOptions {
    std::size_t size = 33; ///< points along each axis, 2 to 256
    bool linear = false;   ///< map linear light to linear light, unclipped, instead of encoded values from 0 to 1
    std::string title;     ///< a line of text; if empty, the file name without its extension
};

/// Grades a lattice of colours. All arithmetic is in floats, since 8-bit tables would show banding in the shadows.
/// @param grading the grading to bake
/// @param size points along each axis, at least 2
/// @param linear whether coordinates and results are linear light; encoded results are clipped to the range 0 to 1
/// @return red, green and blue of size^3 points; red varies fastest, blue slowest. With a hue
///         rotation black, which has no hue, becomes NaN
/// @ingroup tools
ZQX_TOOLS_EXPORT std::vector<float> bakeLattice(const img::ColorGrading& grading, std::size_t size, bool linear);

/// Writes a grading as a .cube file: text with a title, the size, the domain 0 to 1, and one line of plain decimals per
/// point, which read back as the same floats. NaN is written as 0, infinity as the largest float.
///
/// The file appears complete or not at all.
/// @param name of the file, in UTF-8
/// @param grading the grading to bake
/// @param options size, encoding and title
/// @throws pictures::UsageError if the size is out of range, pictures::Error naming the file if it cannot be written
/// @ingroup tools
ZQX_TOOLS_EXPORT void writeCubeFile(const std::string& name, const img::ColorGrading& grading,
                                    const CubeOptions& options = {});

} // namespace zqx::tools
