#pragma once

#include "databaseservice/calltrace.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace DatabaseService {

/// The stages of one call, for whoever traces calls. The trace is given when this object goes, which the call lets it
/// do last.
class CallTimer {
public:
    CallTimer(std::wstring_view store, std::string_view statement);
    CallTimer(const std::string& store, std::string_view statement);
    CallTimer(const CallTimer&) = delete;
    CallTimer& operator=(const CallTimer&) = delete;
    ~CallTimer();

    // Each ends a stage.
    void opened() { next(&CallTrace::working); }
    void worked() { next(&CallTrace::committing); }
    void committed() { next(nullptr); }

    void rowIn() { ++m_rowsIn; }
    void rowOut() { ++m_rowsOut; }

    /// Gives the result on.
    bool ended(bool succeeded)
    {
        m_succeeded = succeeded;
        return succeeded;
    }

    /// What a busy handler on this thread has slept.
    static void waited(std::chrono::nanoseconds time);

private:
    using Stage = std::chrono::nanoseconds CallTrace::*;
    struct Trace;

    void begin(std::string_view statement);
    void next(Stage stage);

    std::unique_ptr<Trace> m_trace; ///< null where nobody traces
    std::uint64_t m_rowsIn = 0;
    std::uint64_t m_rowsOut = 0;
    bool m_succeeded = false;
};

} // namespace DatabaseService
