#pragma once

#include "command.h"

#include <string>

namespace dbservice {

/// A script for bash that completes the program's commands, options and words; elsewhere it leaves bash to complete
/// names of files.
std::string bashCompletion(const Command& program);

} // namespace dbservice
