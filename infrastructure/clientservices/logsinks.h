#pragma once

#include "clientservices/export.h"

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace Logger {

/// One line of the log as its writer gave it.
struct LogEntry {
    int module = 0;       ///< the writer's number
    int severity = 0;     ///< see `CloudLogger::Output`
    int line = 0;         ///< in the source file
    std::string function; ///< with its namespaces and its class
    std::string message;  ///< UTF-8, whichever form it came in
    bool flag = false;    ///< with severity 5, tells a failure
    std::string tag;      ///< of a printf-style line, else empty
    std::string file;     ///< of a printf-style line, else empty

    /// A failure by the rule of `CloudLogger::Output`.
    bool IsFailure() const { return severity == 5 && flag; }
};

/// Takes log lines, one at a time; see `CloudLogger` for the threads.
class CLIENTSERVICES_EXPORT LogSink {
public:
    LogSink() = default;
    LogSink(const LogSink&) = delete;
    LogSink& operator=(const LogSink&) = delete;
    virtual ~LogSink();

    /// Takes a line. The entry is good for the length of the call.
    virtual void Write(const LogEntry& entry) = 0;
};

/// Keeps every line in memory, for tests. Any thread may read while others log.
class CLIENTSERVICES_EXPORT CaptureSink : public LogSink {
public:
    CaptureSink();
    ~CaptureSink() override;

    /// Keeps a copy.
    void Write(const LogEntry& entry) override;
    /// All lines so far, in the order in which they came.
    std::vector<LogEntry> Entries() const;
    /// Forgets the lines so far.
    void Clear();

private:
    struct Lines;
    std::unique_ptr<Lines> m_lines;
};

/// Writes to `file`; when it would grow past `maxBytes` the file is renamed with a number and a new one begun,
/// and `maxFiles` old ones are kept. Each entry is one line, with the local time in front and control characters
/// written as escapes, and is handed to the system at once. Throws `std::runtime_error` when the file cannot be opened.
CLIENTSERVICES_EXPORT std::shared_ptr<LogSink> MakeRotatingFileSink(const std::filesystem::path& file,
                                                                    std::size_t maxBytes, std::size_t maxFiles);

/// Writes the same lines to standard error.
CLIENTSERVICES_EXPORT std::shared_ptr<LogSink> MakeConsoleSink();

} // namespace Logger
