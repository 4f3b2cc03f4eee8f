#include "support/process.h"

#include "platform/environment.h"

#include <sys/wait.h>

#include <cstdlib>

namespace testsupport {

namespace {

std::string quoted(const std::string& text)
{
    std::string result = "'";
    for (const char letter : text) {
        result += letter == '\'' ? std::string("'\\''") : std::string(1, letter);
    }
    return result + '\'';
}

void setVariable(const std::string& name, const std::string& value)
{
    if (value.empty()) {
        ::unsetenv(name.c_str());
    } else {
        ::setenv(name.c_str(), value.c_str(), 1);
    }
}

} // namespace

int runProgram(const std::vector<std::string>& commandLine, const std::filesystem::path& output,
               const std::filesystem::path& errors)
{
    std::string command;
    for (const std::string& argument : commandLine) {
        command += quoted(argument) + ' ';
    }
    command += "< /dev/null ";
    if (!output.empty()) {
        command += "> " + quoted(output) + ' ';
    }
    if (!errors.empty()) {
        command += "2> " + quoted(errors);
    }
    const int status = std::system(command.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

EnvironmentVariable::EnvironmentVariable(const std::string& name, const std::string& value)
    : m_name(name),
      m_before(platform::environmentVariable(name))
{
    setVariable(name, value);
}

EnvironmentVariable::~EnvironmentVariable()
{
    setVariable(m_name, m_before);
}

} // namespace testsupport
