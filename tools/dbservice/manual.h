#pragma once

#include "command.h"

#include <string>

namespace dbservice {

/// The manual page of the program, made from what its commands say of themselves.
std::string manualPage(const Command& program, const std::string& version);

} // namespace dbservice
