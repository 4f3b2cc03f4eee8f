#include "stores/storelog.h"

#include "terminal/reporter.h"

namespace dbservice {

namespace {

/// Lines in printf style carry no flag. The library writes them at this one level, and only when something failed.
bool isPrintfFailure(const Logger::LogEntry& entry)
{
    constexpr int storeModule = 31;
    constexpr int failureLevel = 0x40001;
    return entry.module == storeModule && entry.severity == failureLevel;
}

} // namespace

void StoreLog::Write(const Logger::LogEntry& entry)
{
    if (!entry.IsFailure() && !isPrintfFailure(entry)) {
        return;
    }
    const std::optional<StoreWatch::Fault> fault = StoreWatch::instance().fault();
    if (fault && fault->isLock) {
        ++m_failures;
        return;
    }
    constexpr int shown = 20;
    const int number = ++m_failures;
    if (number == 1) {
        const std::lock_guard lock(m_mutex);
        m_firstReason = StoreWatch::lastComplaint();
    }
    if (number <= shown) {
        m_reporter.warning(m_store + ": " + StoreWatch::explained(entry.message));
    } else if (number == shown + 1) {
        m_reporter.warning(m_store + ": and more of the same; --log FILE keeps all of it");
    }
}

StoreWatch::Fault StoreLog::firstReason() const
{
    const std::lock_guard lock(m_mutex);
    return m_firstReason;
}

} // namespace dbservice
