#include "storelog.h"

#include "reporter.h"

namespace dbservice {

void StoreLog::Write(const Logger::LogEntry& entry)
{
    if (!entry.IsFailure()) {
        return;
    }
    constexpr int shown = 20;
    const int number = ++m_failures;
    if (number <= shown) {
        m_reporter.warning(m_store + ": " + entry.message);
    } else if (number == shown + 1) {
        m_reporter.warning(m_store + ": and more of the same; --log FILE keeps all of it");
    }
}

} // namespace dbservice
