// Manual pages made from the command line.
#pragma once

#include <string>

#include "help/CommandText.h"

namespace zqx::app {

struct ManualInfo {
    std::string version;
    std::string date; ///< ISO 8601
};

/// The page of the program, which lists all commands, in the man(7) macros.
std::string programPage(const CommandText& program, const ManualInfo& info);
/// The page of one command.
std::string commandPage(const CommandText& program, const CommandText& command, const ManualInfo& info);

} // namespace zqx::app
