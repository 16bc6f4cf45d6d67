// Grades a lattice of colours and writes it as the text of a .cube file.
#include <zqx/tools/CubeFile.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "kernels/grading/Lattice.h"
#include "zqx/pictures/files/Error.h"
#include "zqx/pictures/files/FileNames.h"
#include "zqx/pictures/files/OutputFile.h"
#include "zqx/text/Cleaning.h"
#include "zqx/text/Numbers.h"

namespace zqx::tools {

using namespace pictures;

namespace {

/// Plain decimals, since not every reader of the format understands exponents.
std::string formatNumber(float value) {
    const float finite =
        std::isnan(value) ? 0.0F
                          : std::clamp(value, std::numeric_limits<float>::lowest(), std::numeric_limits<float>::max());
    return text::shortestDecimal(finite);
}

/// The format has no escapes: characters that would end the line or the title are replaced.
std::string titleLine(const std::string& name, const CubeOptions& options) {
    std::string title = text::inOneLine(options.title.empty() ? toName(toPath(name).stem()) : options.title);
    std::ranges::replace(title, '"', '\'');
    return "TITLE \"" + title + "\"\n";
}

void writePoints(OutputFile& file, const std::vector<float>& table) {
    std::string line;
    for (std::size_t i = 0; i < table.size() && !file.hasFailed(); i += 3) {
        line.clear();
        for (std::size_t channel = 0; channel < 3; ++channel) {
            line += formatNumber(table[i + channel]);
            line += channel < 2 ? ' ' : '\n';
        }
        file.write(line);
    }
}

} // namespace

std::vector<float> bakeLattice(const img::ColorGrading& grading, std::size_t size, bool linear) {
    std::vector<float> table(3 * size * size * size);
    if (linear) {
        grading.generate3DLUT_RGB32F(size, table.data());
    } else {
        img::kernels::fillEncodedLattice(size, table);
        img::Image lattice(table.data(), size * size, size, img::Image::RGB32F, 0);
        grading.apply(lattice, lattice);
        img::kernels::encodeInPlace(table);
    }
    return table;
}

void writeCubeFile(const std::string& name, const img::ColorGrading& grading, const CubeOptions& options) {
    constexpr std::size_t LARGEST = 256; // the limit of common readers
    if (options.size < 2 || options.size > LARGEST) {
        throw UsageError(name,
                         "a lookup table has 2 to 256 points along each axis, not " + std::to_string(options.size));
    }
    OutputFile::check(name);
    const std::vector<float> table = bakeLattice(grading, options.size, options.linear);
    OutputFile file(name);
    file.write(titleLine(name, options) + "LUT_3D_SIZE " + std::to_string(options.size) +
               "\nDOMAIN_MIN 0 0 0\nDOMAIN_MAX 1 1 1\n");
    writePoints(file, table);
    file.commit();
}

} // namespace zqx::tools
