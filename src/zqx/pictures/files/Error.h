// Errors and warnings, and how a program ends for them.
#pragma once

#include "zqx/pictures/Diagnostics.h"

namespace zqx::pictures {

/// Ends the program with an exit code of its own. All that there is to say has been said.
struct ExitCode {
    int value;
};

} // namespace zqx::pictures
