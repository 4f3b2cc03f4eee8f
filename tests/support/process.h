#pragma once

#include "platform/environment.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace testsupport {

/// Runs a program to its end, with nothing on its standard input, and gives its exit code. The command line, the
/// program first, is UTF-8; on POSIX it may be any bytes. What the program writes goes into `output` and `errors` or,
/// where these are empty, where this program's goes.
int runProgram(const std::vector<std::string>& commandLine, const std::filesystem::path& output = {},
               const std::filesystem::path& errors = {});

/// A program that runs beside this one and can be killed. Its output goes where this program's goes.
class RunningProgram {
public:
    explicit RunningProgram(std::vector<std::string> commandLine);
    RunningProgram(const RunningProgram&) = delete;
    RunningProgram& operator=(const RunningProgram&) = delete;
    ~RunningProgram()
    {
        kill();
        wait();
    }

    /// Ends it on the spot, without a word to it.
    void kill() const;
    /// Waits for its end and gives its exit code; another number for one that was killed.
    int wait();

private:
    std::intptr_t m_process = 0; ///< the system's; 0 once it was waited for
};

/// Limits of this process; without an argument there is none. False where the system has no such thing.
bool limitFileSize(std::int64_t bytes = -1);
bool limitOpenFiles(std::int64_t count = -1);
/// How many files it has open; -1 where the system does not tell.
int openFiles();

/// A disk in memory over a folder, from the first limit on until the object goes. Only the thread that makes it sees
/// it.
class SmallDisk {
public:
    explicit SmallDisk(std::filesystem::path folder);
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;
    ~SmallDisk();

    /// Of "size", in bytes, or of "nr_inodes", its files and the folder itself; -1 for plenty. False where the system
    /// does not let this process mount, or where more is there already.
    bool limit(const std::string& what, std::int64_t most);

private:
    const std::filesystem::path m_folder;
    bool m_mounted = false;
};

/// Of this process, and inherited by programs that it runs. An empty value stands for none.
void setEnvironmentVariable(const std::string& name, const std::string& value);

/// A variable of the environment for as long as the object lives.
class EnvironmentVariable {
public:
    EnvironmentVariable(const std::string& name, const std::string& value) : m_name(name)
    {
        setEnvironmentVariable(name, value);
    }
    EnvironmentVariable(const EnvironmentVariable&) = delete;
    EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;
    ~EnvironmentVariable() { setEnvironmentVariable(m_name, m_before); }

private:
    const std::string m_name;
    const std::string m_before = platform::environmentVariable(m_name);
};

} // namespace testsupport
