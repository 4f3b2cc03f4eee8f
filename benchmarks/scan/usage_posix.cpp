#include "usage.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <fstream>
#include <stdexcept>

namespace benchmarks {

namespace {

double seconds(const timeval& time)
{
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

// By this process and all that it has waited for.
std::int64_t writtenSoFar()
{
    std::ifstream counts("/proc/self/io");
    std::string key;
    for (std::int64_t value = 0; counts >> key >> value;) {
        if (key == "write_bytes:") {
            return value;
        }
    }
    return 0;
}

} // namespace

Usage usageOf(std::vector<std::string> commandLine)
{
    std::vector<char*> arguments;
    arguments.reserve(commandLine.size() + 1);
    for (std::string& argument : commandLine) {
        arguments.push_back(argument.data());
    }
    arguments.push_back(nullptr);

    const std::int64_t before = writtenSoFar();
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    const int failed = ::posix_spawn(&child, arguments[0], &actions, nullptr, arguments.data(), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    int status = 0;
    rusage used{};
    if (failed != 0 || ::wait4(child, &status, 0, &used) != child || !WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        throw std::runtime_error("this failed: " + commandLine[0] + ' ' + commandLine.back());
    }
    constexpr std::int64_t kilobyte = 1024;
    return {seconds(used.ru_utime) + seconds(used.ru_stime), writtenSoFar() - before, used.ru_maxrss * kilobyte};
}

} // namespace benchmarks
