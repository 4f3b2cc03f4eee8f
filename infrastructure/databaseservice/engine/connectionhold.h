#pragma once

#include <sqlite3.h>
#include <utility>

namespace DatabaseService {

/// Holds a connection's own mutex over many calls, so that SQLite's locking costs each of them a counter instead of
/// two atomic operations. For a connection that only this thread has; it must let go before the connection is closed,
/// which destroys the mutex, or kept, since any thread may close it then.
///
/// A client's code that runs meanwhile, such as his log, does not have the connection and may do what it likes, also
/// with others. SQLite itself holds the mutex while it waits for a lock or calls a comparison.
///
/// SQLite without locking has null in place of a mutex, and takes that.
class ConnectionHold {
public:
    ConnectionHold() = default;
    explicit ConnectionHold(sqlite3* db) { take(db); }
    ConnectionHold(const ConnectionHold&) = delete;
    ConnectionHold& operator=(const ConnectionHold&) = delete;
    ~ConnectionHold() { letGo(); }

    /// Of a connection that is open. Nothing may be held yet.
    void take(sqlite3* db)
    {
        m_mutex = sqlite3_db_mutex(db);
        sqlite3_mutex_enter(m_mutex);
    }
    void letGo() { sqlite3_mutex_leave(std::exchange(m_mutex, nullptr)); }

private:
    sqlite3_mutex* m_mutex = nullptr;
};

} // namespace DatabaseService
