// The gradings that are recorded, and their names.
#pragma once

#include <string>
#include <vector>

#include <zqx/img/ColorGrading.h>

namespace golden {

struct Look {
    std::string name;
    zqx::img::ColorGrading grading;
};

/// Every parameter alone, the others neutral.
std::vector<Look> singleLooks();

/// Every parameter alone not a number.
std::vector<Look> nanLooks();

/// Several parameters at once.
std::vector<Look> mixedLooks();

} // namespace golden
