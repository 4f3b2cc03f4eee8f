#include "databaseservice/maindbsqlprovider.h"

#include "clientservices/cloudlogger.h"
#include "databaseservice/engine/keepconnection.h"
#include "databaseservice/tables/maincolumns.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <exception>
#include <sqlite3.h>
#include <string_view>
#include <thread>
#include <utility>

namespace DatabaseService {

namespace {

// A line that cannot be written is dropped, as no exception may leave.
void logFailure(int line, const char* function, const char* what, int code, const char* reason) noexcept
{
    try {
        std::string message = what + (",error code is " + std::to_string(code));
        if (reason != nullptr) {
            message += ",reason:";
            message += reason;
        }
        Logger::CloudLogger::GetInstance()->Output(0, 5, line, function, message, true);
    } catch (...) {
    }
}

int execute(sqlite3* db, const char* sql)
{
    return sqlite3_exec(db, sql, nullptr, nullptr, nullptr);
}

int waitWhileBusy(void* /*db*/, int count)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    return count < 3 ? 1 : 0;
}

/// The first `Count` columns of a table in their older shape: no brackets, no AUTOINCREMENT.
template <std::size_t Count, class Record, std::size_t N>
constexpr std::array<Column<Record>, Count> olderColumns(const std::array<Column<Record>, N>& table)
{
    std::array<Column<Record>, Count> columns;
    std::copy_n(table.begin(), Count, columns.begin());
    for (Column<Record>& column : columns) {
        column.name = withoutBrackets(column.name);
        if (column.declaration == "INTEGER PRIMARY KEY AUTOINCREMENT NOT NULL") {
            column.declaration = "INTEGER PRIMARY KEY NOT NULL";
        }
    }
    return columns;
}

std::vector<std::string> olderTables()
{
    static_assert(CloudFileColumns::table.back().name == "imageRotate");
    constexpr auto cloudFiles = olderColumns<25>(CloudFileColumns::table);
    constexpr auto notepad = olderColumns<2>(CardColumns<T_NotepadCard>::table);
    constexpr auto waiting = olderColumns<2>(CardColumns<T_WaitHandleCardItem>::table);
    constexpr auto log = olderColumns<25>(UserLogColumns::table);
    auto properties = olderColumns<2>(UserPropertiesColumns::table);
    properties.back().declaration = "TEXT NOT NULL";
    return {
        createTable("CREATE TABLE IF NOT EXISTS T_CloudFileTable (", cloudFiles),
        createTable("CREATE TABLE IF NOT EXISTS T_NotepadCard (", notepad),
        createTable("CREATE TABLE IF NOT EXISTS T_WaitHandleCardItem (", waiting),
        createTable("CREATE TABLE IF NOT EXISTS UBAUserLog (", log),
        createTable("CREATE TABLE IF NOT EXISTS UserLogTable (", log),
        createTable("CREATE TABLE IF NOT EXISTS UserProperties (", properties),
    };
}

} // namespace

MainDBSQLProvider& MainDBSQLProvider::GetInstance()
{
    static MainDBSQLProvider instance;
    return instance;
}

bool MainDBSQLProvider::CreateTables(std::string& path)
{
    try {
        m_path = path;
        return ExecuteMulitNoQuerySQL(olderTables());
    } catch (const std::exception& error) {
        logFailure(__LINE__, "MainDBSQLProvider::CreateTables", "Create tables failed", SQLITE_NOMEM, error.what());
        return false;
    }
}

bool MainDBSQLProvider::ExecuteMulitNoQuerySQL(const std::vector<std::string>& statements)
{
    // After a failed open the statements run on the handle that it left: SQLite refuses each, a line in the log for
    // each.
    // From here to the close nothing throws, not even for want of memory: the file would stay locked.
    ConnectDb();
    BeginTransaction();
    bool result = true;
    for (const std::string& sql : statements) {
        if (const int code = execute(m_db, sql.c_str()); code != SQLITE_OK) {
            const char* const reason = sqlite3_errmsg(m_db);
            const bool isThereAlready =
                code == SQLITE_CONSTRAINT && std::string_view(reason).find("UNIQUE") != std::string_view::npos;
            result = result && isThereAlready; // what is there already is logged, and yet no failure to callers
            logFailure(__LINE__, "MainDBSQLProvider::ExecuteMulitNoQuerySQL", "ExecuteNonQueryTransaction failed", code,
                       reason);
        }
    }
    CommitTransaction();
    CloseDb();
    return result;
}

bool MainDBSQLProvider::ConnectDb()
{
    constexpr const char* function = "MainDBSQLProvider::ConnectDb";
    if (const int code = sqlite3_open_v2(m_path.c_str(), &m_db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
        code != SQLITE_OK) {
        logFailure(__LINE__, function, "Open database failed", code, sqlite3_errmsg(m_db));
        return false;
    }
    if (const int code = sqlite3_busy_handler(m_db, waitWhileBusy, m_db); code != SQLITE_OK) {
        logFailure(__LINE__, function, "Set busy handler error", code, sqlite3_errmsg(m_db));
    }
    return true;
}

// Not logged when it fails: the statements and the commit tell.
bool MainDBSQLProvider::BeginTransaction()
{
    return m_db != nullptr && execute(m_db, "begin transaction;") == SQLITE_OK;
}

bool MainDBSQLProvider::CommitTransaction()
{
    if (m_db == nullptr) {
        return false;
    }
    const int code = execute(m_db, "commit transaction;");
    if (code != SQLITE_OK) {
        logFailure(__LINE__, "MainDBSQLProvider::CommitTransaction", "Commit transaction failed", code,
                   sqlite3_errmsg(m_db));
    }
    return code == SQLITE_OK;
}

// Also closes what a failed open left behind.
bool MainDBSQLProvider::CloseDb()
{
    sqlite3* const db = std::exchange(m_db, nullptr);
    if (db == nullptr) {
        return true;
    }
    const int code = sqlite3_close_v2(db);
    if (code != SQLITE_OK) {
        logFailure(__LINE__, "MainDBSQLProvider::CloseDb", "Close database failed", code, nullptr);
        keepConnection(db, m_path, "could not be closed");
    }
    return code == SQLITE_OK;
}

// Nobody calls these two; they are part of what the library exports.

int MainDBSQLProvider::ExecuteNoQuerySqlCmd(const std::string& sql)
{
    return execute(m_db, sql.c_str());
}

std::wstring MainDBSQLProvider::GetDBPath(const std::string& /*path*/)
{
    return {};
}

} // namespace DatabaseService
