#pragma once

#include "clientservices/export.h"

#include <memory>
#include <string>

/// The client's log, and what listens to it.
namespace Logger {

class LogSink;

/// The client's log, by its one entry point `Output`.
///
/// Threads: any. A sink is called by the thread that logs, one line at a time. It must not add or remove sinks, and
/// what it logs itself while it writes is dropped.
/// Ownership: the one instance belongs to the process and outlives static destruction; sinks are shared with
/// whoever added them.
/// Failure: logging never fails for its caller; what a sink throws is dropped.
///
/// Without a sink every line is dropped. Sinks belong to this default implementation; a client with a log of its
/// own links its own library in place of this one and gives `GetInstance` and `Output` only.
class CLIENTSERVICES_EXPORT CloudLogger {
public:
    /// The process has one.
    static CloudLogger* GetInstance();

    CloudLogger(const CloudLogger&) = delete;
    CloudLogger& operator=(const CloudLogger&) = delete;

    ///@{
    /// Severity 5 with `flag` true marks a failure, severity 2 a start line, severity 1 the line of an open.
    /// `function` is a qualified function name; null stands for an empty one. The narrow message is UTF-8.
    void Output(int module, int severity, int line, const char* function, const std::string& message, bool flag);
    void Output(int module, int severity, int line, const char* function, const std::wstring& message, bool flag);
    ///@}

    /// Adds nothing when `sink` is null or there already.
    void AddSink(std::shared_ptr<LogSink> sink);
    /// When it returns, the sink is no longer called.
    void RemoveSink(const std::shared_ptr<LogSink>& sink);

private:
    CloudLogger() = default;
    ~CloudLogger() = default;
};

} // namespace Logger
