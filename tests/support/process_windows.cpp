#include "support/process.h"

#include <cstdlib>

namespace testsupport {

int runProgram(const std::string& program, const std::vector<std::string>& arguments)
{
    // The command interpreter takes off the outermost quotes.
    std::string command = "\"\"" + program + '"';
    for (const std::string& argument : arguments) {
        command += " \"" + argument + '"';
    }
    return std::system((command + '"').c_str());
}

} // namespace testsupport
