#include "support/process.h"

#include <csignal>
#include <cstdlib>
#include <iterator>
#include <sched.h>
#include <spawn.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <utility>

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

template <class Resource> bool setLimit(Resource resource, std::int64_t value)
{
    rlimit limit{};
    ::getrlimit(resource, &limit);
    limit.rlim_cur = value < 0 ? limit.rlim_max : static_cast<rlim_t>(value);
    return ::setrlimit(resource, &limit) == 0;
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

RunningProgram::RunningProgram(std::vector<std::string> commandLine)
{
    std::vector<char*> arguments;
    for (std::string& argument : commandLine) {
        arguments.push_back(argument.data());
    }
    arguments.push_back(nullptr);
    pid_t started = 0;
    if (const int code = ::posix_spawn(&started, arguments[0], nullptr, nullptr, arguments.data(), environ);
        code != 0) {
        throw std::system_error(code, std::generic_category(), "cannot run " + commandLine[0]);
    }
    m_process = started;
}

void RunningProgram::kill() const
{
    if (m_process != 0) {
        ::kill(static_cast<pid_t>(m_process), SIGKILL);
    }
}

int RunningProgram::wait()
{
    int status = 0;
    if (m_process != 0) {
        ::waitpid(static_cast<pid_t>(std::exchange(m_process, 0)), &status, 0);
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

bool limitFileSize(std::int64_t bytes)
{
    std::signal(SIGXFSZ, SIG_IGN); // the write fails instead
    return setLimit(RLIMIT_FSIZE, bytes);
}

bool limitOpenFiles(std::int64_t count)
{
    return setLimit(RLIMIT_NOFILE, count);
}

int openFiles()
{
    std::error_code unknown;
    const std::filesystem::directory_iterator files("/proc/self/fd", unknown);
    return unknown ? -1 : static_cast<int>(std::distance(begin(files), end(files))) - 1; // less the look itself
}

SmallDisk::SmallDisk(std::filesystem::path folder) : m_folder(std::move(folder)) { }

SmallDisk::~SmallDisk()
{
    if (m_mounted) {
        ::umount2(m_folder.c_str(), MNT_DETACH);
    }
}

bool SmallDisk::limit(const std::string& what, std::int64_t most)
{
    static const bool alone =
        ::unshare(CLONE_NEWNS) == 0 && ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
    const std::string options = what + '=' + std::to_string(most < 0 ? 1 << 20 : most);
    const unsigned long change = m_mounted ? MS_REMOUNT : 0;
    const bool done = alone && ::mount("tmpfs", m_folder.c_str(), "tmpfs", change, options.c_str()) == 0;
    m_mounted = m_mounted || done;
    return done;
}

void setEnvironmentVariable(const std::string& name, const std::string& value)
{
    if (value.empty()) {
        ::unsetenv(name.c_str());
    } else {
        ::setenv(name.c_str(), value.c_str(), 1);
    }
}

} // namespace testsupport
