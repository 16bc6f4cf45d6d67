// The Levenshtein distance, computed row by row.
#include "zqx/tools/parameters/Spelling.h"

#include <algorithm>
#include <cctype>
#include <numeric>
#include <vector>

namespace zqx::tools {

std::size_t editDistance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (const char letter : a) {
        std::size_t diagonal = row[0]++;
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t replaced = diagonal + (std::tolower(static_cast<unsigned char>(letter)) !=
                                                     std::tolower(static_cast<unsigned char>(b[j])));
            diagonal = row[j + 1];
            row[j + 1] = std::min({row[j] + 1, row[j + 1] + 1, replaced});
        }
    }
    return row.back();
}

} // namespace zqx::tools
