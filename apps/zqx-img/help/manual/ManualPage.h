// Manual pages from the command line.
#pragma once

#include <string>

#include "help/CommandText.h"

namespace zqx::app {

struct ManualInfo {
    std::string version;
    std::string date; ///< ISO 8601
};

/// The page of the program, with all commands named, in the roff of man(7).
std::string programPage(const CommandText& program, const ManualInfo& info);
/// The page of one command.
std::string commandPage(const CommandText& program, const CommandText& command, const ManualInfo& info);

} // namespace zqx::app
