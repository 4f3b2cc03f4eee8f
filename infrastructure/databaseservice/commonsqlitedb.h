#pragma once

#include "databaseservice/export.h"
#include "databaseservice/integers.h"

#include <functional>
#include <list>
#include <memory>
#include <string>

struct sqlite3;
struct sqlite3_stmt;

namespace DatabaseService {

/// One open connection and plain SQL text on it, beside the engine and independent of it.
///
/// The text is run as it stands: values that somebody else chose do not belong in it.
///
/// Threads: one at a time; there is no lock. A locked file is waited for as long as the busy timeout says.
/// Ownership: the object closes its connection. Copies share the connection; the first of them that closes it, or is
/// destroyed, closes it for all. One that statements keep from closing, or that is assigned over, may outlive its
/// objects: `ListKeptConnections` names it.
/// Failure: a result of false and a line in the client's printf-style log. Only an empty callback throws, and what a
/// callback throws passes through with the statement ended.
class DATABASESERVICE_EXPORT CommonSqliteDb {
public:
    CommonSqliteDb();
    /// The busy timeout in milliseconds; 30000 stands in for 0 and less.
    explicit CommonSqliteDb(int timeout);
    CommonSqliteDb(const CommonSqliteDb&) = default;
    CommonSqliteDb& operator=(const CommonSqliteDb&) = default;
    virtual ~CommonSqliteDb();

    /// Opens the file, which is created when it is missing. What was open before is closed first, also for null,
    /// which then gives false. After a failed open the handle stays, so that `IsOpen` is true, and every statement
    /// on it fails.
    bool OpenUtf8Path(const char* path);
    /// Null gives false and changes nothing.
    bool OpenUnicodePath(const wchar_t* path);
    /// In the system's code page, which is UTF-8 except on Windows. Null gives false and changes nothing.
    bool OpenAnsiPath(const char* path);
    /// Whether there is a handle, be it of a failed open.
    bool IsOpen() const;
    /// Does nothing without a handle.
    void Close();

    /// In milliseconds and taken as it is; 0 and less do not wait. Holds for an open connection at once.
    void setBusyTimeout(int timeout);

    /// Runs one statement and lets its rows go. The name is spelled so on purpose.
    bool ExcuteSql(const char* sql) const;
    /// All in one transaction. A statement that fails is left out and logged; the others are committed, and the
    /// result is true.
    bool ExcuteMultiSql(std::list<std::string> statements);
    /// Calls `onRow` for each row, with `context` handed through. True also when a step failed on the way.
    bool QuerySqlResult(const char* sql, std::function<void(sqlite3_stmt*&, int64)> onRow, int64 context);
    /// Column 0 of the last row, or `value` without a row.
    int64 QueryTotalCount(const char* sql, int64 value);

protected:
    /// Called after each successful open.
    virtual void OpenAfter(sqlite3* db);
    /// Called before each close, but for the one of the destructor.
    virtual void CloseBefore(sqlite3* db);

private:
    struct DATABASESERVICE_NO_EXPORT Connection;

    DATABASESERVICE_NO_EXPORT sqlite3* handle() const;
    DATABASESERVICE_NO_EXPORT sqlite3_stmt* PreCompile(const char* sql);
    DATABASESERVICE_NO_EXPORT void GetQueryResult(sqlite3_stmt*& statement, int64 context);
    DATABASESERVICE_NO_EXPORT void LogoutDbError(const char* title, int code) const;

    std::shared_ptr<Connection> m_connection;
    int m_busyTimeout;
};

} // namespace DatabaseService
