#pragma once

#include <string>
#include <vector>

namespace platform {

/// Where a program begins that links the target `programentry`, which brings the system's own entry point. Each such
/// program defines it. The arguments, without the program's name, are UTF-8; on POSIX, where they are bytes, they may
/// be anything. A console shows what is written to it as UTF-8. Gives the exit code.
int programMain(const std::vector<std::string>& arguments);

} // namespace platform
