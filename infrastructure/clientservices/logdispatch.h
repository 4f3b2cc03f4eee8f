#pragma once

#include "clientservices/logsinks.h"

#include <atomic>
#include <memory>

namespace Logger {

/// The one way from the log functions to the sinks.
///
/// Threads: any. `send` calls the sinks under a lock, so one line is written at a time. A line that a sink logs
/// while it writes is dropped, as it would wait for itself.
/// Failure: what a sink throws is dropped, and the next sink gets the line all the same.
class LogDispatch {
public:
    /// Whether anybody listens. To be asked before a line is put together.
    static bool wanted() noexcept { return s_wanted.load(std::memory_order_relaxed); }

    static void send(const LogEntry& entry) noexcept;
    static void add(std::shared_ptr<LogSink> sink);
    static void remove(const std::shared_ptr<LogSink>& sink);

private:
    static inline constinit std::atomic<bool> s_wanted{false};
};

} // namespace Logger
