#pragma once

#include <string>
#include <vector>

namespace dbservice {

/// The whole program on its arguments, the program's own name left out. They are UTF-8, except that on POSIX they
/// may be any bytes. Gives the exit code: 0 done, 1 something failed or was lost, 2 wrong usage.
int run(const std::vector<std::string>& arguments);

} // namespace dbservice
