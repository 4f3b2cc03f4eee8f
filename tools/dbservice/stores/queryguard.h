#pragma once

#include "stores/statement.h"

#include <chrono>
#include <string>
#include <string_view>

struct sqlite3;

namespace dbservice {

/// Holds a connection to statements that read, and to a time for them. As long as it stands, nothing that it accepts
/// writes: not to the file, not beside it, not to another one, and no code is loaded.
///
/// Threads: that of the connection, which has to outlive the guard; statements end before it.
class QueryGuard {
public:
    QueryGuard(sqlite3* db, std::chrono::milliseconds limit);
    QueryGuard(const QueryGuard&) = delete;
    QueryGuard& operator=(const QueryGuard&) = delete;
    ~QueryGuard();

    /// Empty if the text is not accepted.
    Statement::Handle prepare(std::string_view text);
    /// Why the text was not accepted, as the end of a sentence: "it is more than one statement". Empty where SQLite's
    /// own reason tells, such as "no such table: x".
    const std::string& refusal() const { return m_refusal; }
    /// The limit counts from `prepare` on.
    bool ranOutOfTime() const { return m_ranOutOfTime; }

private:
    bool isAllowed(int action, const char* first, const char* second);
    bool mayGoOn();

    sqlite3* m_db;
    std::chrono::milliseconds m_limit;
    std::chrono::steady_clock::time_point m_end;
    std::string m_refusal;
    bool m_ranOutOfTime = false;
};

} // namespace dbservice
