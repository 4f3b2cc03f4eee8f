#pragma once

#include "command.h"

#include <vector>

namespace dbservice {

/// In the order of the help.
std::vector<Command> allCommands();

} // namespace dbservice
