// Errors and warnings, and the exit code of the program.
#pragma once

#include "zqx/pictures/Diagnostics.h"

namespace zqx::pictures {

/// Thrown to end the program with a specific exit code, after all messages have been printed.
struct ExitCode {
    int value;
};

} // namespace zqx::pictures
