#pragma once

#include "clientservices/logsinks.h"
#include "stores/storewatch.h"

#include <atomic>
#include <mutex>
#include <string>

namespace dbservice {

class Reporter;

/// Brings what the library logs as failures to the person, as warnings with the store's name. After a while it only
/// counts, since a failed batch logs a line or more for every row, and so it does once the cause is a lock, which the
/// lines call a disk error.
class StoreLog : public Logger::LogSink {
public:
    explicit StoreLog(Reporter& reporter) : m_reporter(reporter) { }

    /// The store that the command works on from here on.
    void setStore(const std::string& name) { m_store = name; }

    void Write(const Logger::LogEntry& entry) override;
    int failures() const { return m_failures; }
    /// What SQLite had said when the first of them came; empty if it had said nothing.
    StoreWatch::Fault firstReason() const;

private:
    Reporter& m_reporter;
    std::string m_store;
    std::atomic<int> m_failures{0};
    mutable std::mutex m_mutex;
    StoreWatch::Fault m_firstReason;
};

} // namespace dbservice
