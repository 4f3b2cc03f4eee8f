#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace testsupport {

/// Runs a program to its end, with nothing on its standard input, and gives its exit code. The command line, the
/// program first, is UTF-8; on POSIX it may be any bytes. What the program writes goes into `output` and `errors` or,
/// where these are empty, where this program's goes.
int runProgram(const std::vector<std::string>& commandLine, const std::filesystem::path& output = {},
               const std::filesystem::path& errors = {});

/// A variable of this process's environment, which programs that it runs inherit, for as long as the object lives; an
/// empty value stands for none.
class EnvironmentVariable {
public:
    EnvironmentVariable(const std::string& name, const std::string& value);
    EnvironmentVariable(const EnvironmentVariable&) = delete;
    EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;
    ~EnvironmentVariable();

private:
    const std::string m_name;
    const std::string m_before;
};

} // namespace testsupport
