// Lattices of graded colours, and the text that .cube files are.
#include <zqx/tools/CubeFile.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

#include "kernels/ScalarMaths.h"
#include "zqx/pictures/files/Error.h"
#include "zqx/pictures/files/InputFile.h"
#include "zqx/pictures/files/OutputFile.h"

namespace zqx::tools {

using namespace pictures;

namespace {

constexpr double GAMMA = 2.2; // of the encoded formats

std::vector<float> bakeEncoded(const img::ColorGrading& grading, std::size_t size) {
    std::vector<float> axis(size);
    for (std::size_t i = 0; i < size; ++i) {
        axis[i] =
            static_cast<float>(img::kernels::maths::pow(static_cast<double>(i) / static_cast<double>(size - 1), GAMMA));
    }
    std::vector<float> table(3 * size * size * size);
    for (std::size_t i = 0; i < table.size(); i += 3) {
        const std::size_t point = i / 3;
        table[i] = axis[point % size];
        table[i + 1] = axis[point / size % size];
        table[i + 2] = axis[point / size / size];
    }
    img::Image lattice(table.data(), size * size, size, img::Image::RGB32F, 0);
    grading.apply(lattice, lattice);
    for (float& value : table) {
        value =
            static_cast<float>(img::kernels::maths::pow(std::clamp(static_cast<double>(value), 0.0, 1.0), 1.0 / GAMMA));
    }
    return table;
}

/// Plain decimals that read back as the same float; not every reader of the format knows exponents.
void appendNumber(std::string& text, float value) {
    char digits[128];
    const float finite =
        std::isnan(value) ? 0.0F
                          : std::clamp(value, std::numeric_limits<float>::lowest(), std::numeric_limits<float>::max());
    text.append(digits, std::to_chars(digits, digits + sizeof digits, finite, std::chars_format::fixed).ptr);
}

/// The format has no escapes: what would end the line or the title is replaced.
std::string titleLine(const std::string& name, const CubeOptions& options) {
    std::string title = options.title.empty() ? toName(toPath(name).stem()) : options.title;
    std::ranges::replace_if(
        title, [](unsigned char c) { return c < ' ' || c == 0x7F; }, ' ');
    std::ranges::replace(title, '"', '\'');
    return "TITLE \"" + title + "\"\n";
}

void writePoints(OutputFile& file, const std::vector<float>& table) {
    std::string line;
    for (std::size_t i = 0; i < table.size() && !file.hasFailed(); i += 3) {
        line.clear();
        for (std::size_t channel = 0; channel < 3; ++channel) {
            appendNumber(line, table[i + channel]);
            line += channel < 2 ? ' ' : '\n';
        }
        file.write(line);
    }
}

} // namespace

std::vector<float> bakeLattice(const img::ColorGrading& grading, std::size_t size, bool linear) {
    if (!linear) {
        return bakeEncoded(grading, size);
    }
    std::vector<float> table(3 * size * size * size);
    grading.generate3DLUT_RGB32F(size, table.data());
    return table;
}

void writeCubeFile(const std::string& name, const img::ColorGrading& grading, const CubeOptions& options) {
    constexpr std::size_t LARGEST = 256; // what readers of the format take
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
