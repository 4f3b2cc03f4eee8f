#pragma once

#include "command.h"

#include <functional>
#include <string>
#include <vector>

namespace dbservice {

/// Reads a command line: fills the options of the program and of the command that it names, and runs that. What cannot
/// be understood is told on standard error, help on standard output. Gives the exit code.
int runCommandLine(const Command& program, const std::vector<std::string>& arguments,
                   const std::function<int(const Command&)>& run);

} // namespace dbservice
