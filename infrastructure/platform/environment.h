#pragma once

#include <string>

namespace platform {

/// A variable of the process's environment, empty when there is none. UTF-8; on POSIX, where it is bytes, anything.
std::string environmentVariable(const std::string& name);

} // namespace platform
