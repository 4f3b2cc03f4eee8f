#pragma once

#include <string>
#include <vector>

namespace testsupport {

/// Runs a program to its end and gives its exit code, 0 for success; what it writes goes where this program's output
/// goes. Arguments may hold blanks but no quotes.
int runProgram(const std::string& program, const std::vector<std::string>& arguments);

} // namespace testsupport
