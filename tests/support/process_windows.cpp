#include "support/process.h"

#include "platform/paths.h"
#include "platform/text.h"

#include <windows.h>

#include <memory>
#include <system_error>
#include <utility>

namespace testsupport {

namespace {

/// Quoted so that the program sees one argument as it stands. Backslashes count only where a quote follows.
std::string quoted(const std::string& text)
{
    std::string result = "\"";
    std::size_t backslashes = 0;
    for (const char letter : text) {
        if (letter == '"') {
            result.append(backslashes + 1, '\\');
        }
        backslashes = letter == '\\' ? backslashes + 1 : 0;
        result += letter;
    }
    return result.append(backslashes, '\\') + '"';
}

struct Close {
    void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using Handle = std::unique_ptr<void, Close>;

/// What the system says of the call before.
std::system_error systemError(const std::string& what)
{
    return {static_cast<int>(GetLastError()), std::system_category(), what};
}

Handle openForOutput(const std::filesystem::path& file)
{
    if (file.empty()) {
        return nullptr;
    }
    SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    const HANDLE opened = CreateFileW(file.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS,
                                      FILE_ATTRIBUTE_NORMAL, nullptr);
    if (opened == INVALID_HANDLE_VALUE) {
        throw systemError("cannot write " + platform::toUtf8(file));
    }
    return Handle(opened);
}

Handle start(const std::vector<std::string>& commandLine, const std::filesystem::path& output,
             const std::filesystem::path& errors)
{
    std::string line;
    for (const std::string& argument : commandLine) {
        line += quoted(argument) + ' ';
    }
    std::wstring wideLine = platform::toWide(line);
    const Handle outputFile = openForOutput(output);
    const Handle errorFile = openForOutput(errors);
    STARTUPINFOW information{};
    information.cb = sizeof information;
    information.dwFlags = STARTF_USESTDHANDLES;
    information.hStdOutput = output.empty() ? GetStdHandle(STD_OUTPUT_HANDLE) : outputFile.get();
    information.hStdError = errors.empty() ? GetStdHandle(STD_ERROR_HANDLE) : errorFile.get();
    PROCESS_INFORMATION started{};
    if (CreateProcessW(nullptr, wideLine.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &information, &started) ==
        0) {
        throw systemError("cannot run " + line);
    }
    const Handle thread(started.hThread);
    return Handle(started.hProcess);
}

int exitCodeOf(HANDLE process)
{
    DWORD code = 0;
    WaitForSingleObject(process, INFINITE);
    GetExitCodeProcess(process, &code);
    return static_cast<int>(code);
}

} // namespace

int runProgram(const std::vector<std::string>& commandLine, const std::filesystem::path& output,
               const std::filesystem::path& errors)
{
    const Handle process = start(commandLine, output, errors);
    return exitCodeOf(process.get());
}

RunningProgram::RunningProgram(std::vector<std::string> commandLine)
    : m_process(reinterpret_cast<std::intptr_t>(start(commandLine, {}, {}).release()))
{
}

void RunningProgram::kill() const
{
    if (m_process != 0) {
        TerminateProcess(reinterpret_cast<HANDLE>(m_process), 255);
    }
}

int RunningProgram::wait()
{
    const Handle process(reinterpret_cast<HANDLE>(std::exchange(m_process, 0)));
    return process != nullptr ? exitCodeOf(process.get()) : 0;
}

bool limitFileSize(std::int64_t /*bytes*/)
{
    return false;
}

bool limitOpenFiles(std::int64_t /*count*/)
{
    return false;
}

int openFiles()
{
    return -1;
}

SmallDisk::SmallDisk(std::filesystem::path folder) : m_folder(std::move(folder)) { }

SmallDisk::~SmallDisk() = default;

bool SmallDisk::limit(const std::string& /*what*/, std::int64_t /*most*/)
{
    return false;
}

void setEnvironmentVariable(const std::string& name, const std::string& value)
{
    const std::wstring wide = platform::toWide(value);
    SetEnvironmentVariableW(platform::toWide(name).c_str(), wide.empty() ? nullptr : wide.c_str());
}

} // namespace testsupport
