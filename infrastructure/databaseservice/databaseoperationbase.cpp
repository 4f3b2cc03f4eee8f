#include "databaseservice/databaseoperationbase.h"

#include "clientservices/cloudlogger.h"
#include "clientservices/globalparamwrapper.h"
#include "databaseservice/engine/cellreader.h"
#include "databaseservice/engine/firstcell.h"
#include "databaseservice/engine/keepconnection.h"
#include "databaseservice/engine/parameterlistsource.h"
#include "databaseservice/engine/parameterwriter.h"
#include "databaseservice/engine/rowsink.h"
#include "platform/paths.h"
#include "platform/scopeexit.h"
#include "platform/text.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <memory>
#include <sqlite3.h>
#include <thread>
#include <utility>

namespace DatabaseService {

namespace {

// SQLITE_OPEN_CREATE and the bit that SQLite's header calls SQLITE_OPEN_WAL. The second is part of the mask by
// contract; it does not switch the journal mode.
constexpr int openMask = 0x80004;

constexpr const char* executeFunction = "DatabaseOperationBase::Execute";
constexpr const char* openFunction = "DatabaseOperationBase::OpenDatabase";

template <class Text> void logFailure(int line, const char* function, const Text& message)
{
    Logger::CloudLogger::GetInstance()->Output(0, 5, line, function, message, true);
}

std::wstring errorText(sqlite3* db)
{
    return platform::toWide(sqlite3_errmsg(db));
}

// The rows of a query as their public form: each cell by its kind.
class ResultListSink final : public RowSink {
public:
    explicit ResultListSink(std::list<DatabaseQueryResult*>& rows) : m_rows(rows) { }

    void Row(CellReader& cells) override
    {
        auto row = std::make_unique<DatabaseQueryResult>();
        for (auto kind = cells.next(); kind != CellReader::Kind::None; kind = cells.next()) {
            if (kind == CellReader::Kind::Integer) {
                row->Insert(cells.integer());
            } else {
                row->Insert(platform::toWide(cells.text()));
            }
        }
        m_rows.push_back(row.get());
        static_cast<void>(row.release());
    }

private:
    std::list<DatabaseQueryResult*>& m_rows;
};

} // namespace

DatabaseOperationBase::DatabaseOperationBase(const std::wstring& name) : m_databaseName(name) { }

bool DatabaseOperationBase::SetDatabasePath(const std::wstring& name)
{
    // Not written when it is the same, so that it may be given again beside calls of other threads.
    if (m_databaseName != name) {
        m_databaseName = name;
    }
    return true;
}

void DatabaseOperationBase::AfterOpen(sqlite3* /*db*/) { }

void DatabaseOperationBase::BeforeClose(sqlite3* /*db*/) { }

sqlite3* DatabaseOperationBase::GetDbConnection()
{
    sqlite3* db = nullptr;
    OpenDatabase(db, SQLITE_OPEN_READWRITE);
    return db;
}

// Leaves `db` null unless it is open.
DatabaseOperationBase::Opened DatabaseOperationBase::OpenDatabase(sqlite3*& db, int flags)
{
    const std::wstring path = GlobalParamWrapper::GetInstance()->GetUserDataBaseFolder() + L"/" + m_databaseName;
    const std::string utf8Path = platform::toUtf8(path);
    Logger::CloudLogger::GetInstance()->Output(0, 1, __LINE__, openFunction, "OpenDataBase:" + utf8Path, true);

    sqlite3* handle = nullptr;
    db = nullptr;
    if (sqlite3_open_v2(utf8Path.c_str(), &handle, flags | openMask, nullptr) != SQLITE_OK) {
        logFailure(__LINE__, openFunction,
                   L"OpenDatabasesqlite3_open_v2 failed, and database name is " + m_databaseName);
        logFailure(__LINE__, openFunction, m_databaseName + (platform::exists(path) ? L"exist." : L"does not exist."));
        const bool allocated = handle != nullptr;
        CloseDatabase(handle);
        return allocated ? Opened::Failed : Opened::NoHandle;
    }
    if (sqlite3_busy_handler(handle, BusyHandler, nullptr) != SQLITE_OK) {
        const std::wstring message = errorText(handle);
        CloseDatabase(handle);
        logFailure(__LINE__, openFunction,
                   L"OpenDatabase sqlite3_busy_handler failed, and database name is " + m_databaseName +
                       L"; error message = " + message);
        return Opened::Failed;
    }
    platform::ScopeExit closeUnlessTaken([&] { CloseDatabase(handle); });
    AfterOpen(handle);
    db = std::exchange(handle, nullptr);
    return Opened::Yes;
}

int DatabaseOperationBase::BusyHandler(void* /*data*/, int /*count*/)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
    return 1;
}

bool DatabaseOperationBase::CloseDatabase(sqlite3* db)
{
    if (db == nullptr) {
        return true;
    }
    BeforeClose(db);
    if (sqlite3_close(db) == SQLITE_OK) {
        return true;
    }
    logFailure(__LINE__, "DatabaseOperationBase::CloseDatabase",
               L"CloseDatabase failed, and database name is " + m_databaseName + L",Error message = " + errorText(db));
    return false;
}

sqlite3_stmt* DatabaseOperationBase::PrepareSql(sqlite3* db, std::string sql)
{
    // What is longer than SQLite's own limit is refused by SQLite, whatever the length says beyond it.
    constexpr std::size_t longest = std::numeric_limits<int>::max();
    const int length = static_cast<int>(std::min(sql.size(), longest));
    sqlite3_stmt* stmt = nullptr;
    if (sqlite3_prepare(db, sql.data(), length, &stmt, nullptr) != SQLITE_OK) {
        logFailure(__LINE__, "DatabaseOperationBase::PrepareSql",
                   L"sqlite3_prepare failed, and database name is " + m_databaseName);
    }
    return stmt;
}

bool DatabaseOperationBase::FinalizeStatment(sqlite3_stmt* stmt)
{
    if (sqlite3_finalize(stmt) == SQLITE_OK) {
        return true;
    }
    logFailure(__LINE__, "DatabaseOperationBase::FinalizeStatment",
               L"sqlite3_finalize failed, and database name is " + m_databaseName);
    return false;
}

bool DatabaseOperationBase::FreeQueryResult(std::list<DatabaseQueryResult*>* rows)
{
    if (rows != nullptr) {
        for (DatabaseQueryResult* row : *rows) {
            delete row;
        }
        delete rows;
    }
    return false;
}

bool DatabaseOperationBase::FreeTable(std::list<DatabaseQueryResult*>* rows)
{
    return FreeQueryResult(rows);
}

bool DatabaseOperationBase::ExecuteSql(sqlite3* db, const std::string& sql)
{
    if (sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK) {
        return true;
    }
    logFailure(__LINE__, "DatabaseOperationBase::ExecuteSql",
               L"sqlite3_exec failed, and database name is " + m_databaseName + L",Error message is " + errorText(db));
    return false;
}

bool DatabaseOperationBase::BeginReadTransaction(sqlite3* db)
{
    if (ExecuteSql(db, "BEGIN DEFERRED")) {
        return true;
    }
    logFailure(__LINE__, "DatabaseOperationBase::BeginReadTransaction",
               L"Begin transaction failed,Error msg is" + errorText(db));
    return false;
}

bool DatabaseOperationBase::BeginReadWriteTransaction(sqlite3* db)
{
    return ExecuteSql(db, "BEGIN IMMEDIATE;");
}

bool DatabaseOperationBase::CommitTransaction(sqlite3* db)
{
    return ExecuteSql(db, "COMMIT;");
}

bool DatabaseOperationBase::ResetStatment(sqlite3_stmt* stmt)
{
    return sqlite3_reset(stmt) == SQLITE_OK;
}

int DatabaseOperationBase::StepStatment(sqlite3_stmt* stmt)
{
    return sqlite3_step(stmt);
}

// A statement whose previous step failed reports that once more at the reset; the element is bound all the same.
bool DatabaseOperationBase::BindParameter(sqlite3* db, ElementSource& element, sqlite3_stmt* stmt, bool ownStatement)
{
    constexpr const char* function = "DatabaseOperationBase::BindParameter";
    if (!ResetStatment(stmt)) {
        logFailure(__LINE__, function, L"Error msg is " + errorText(db));
    }
    ParameterWriter parameters(stmt, ownStatement ? ParameterWriter::Text::Referenced : ParameterWriter::Text::Copied);
    if (element.Bind(parameters)) {
        return true;
    }
    // Text that is refused is reported in the same words as an integer; the log's readers search for them.
    logFailure(__LINE__, function,
               L"BindParameter sqlite3_bind_int64 failed, and database name is " + m_databaseName + L",Index is " +
                   std::to_wstring(parameters.refused().index) + L" and value is " + parameters.refused().value);
    logFailure(__LINE__, function, L"Error msg is " + errorText(db));
    return false;
}

void DatabaseOperationBase::GetQueryResult(sqlite3_stmt* stmt, RowSink& rows, int code)
{
    CellReader cells(stmt);
    for (; code == SQLITE_ROW; code = StepStatment(stmt)) {
        cells.rewind();
        rows.Row(cells);
    }
}

bool DatabaseOperationBase::Execute(sqlite3* db, sqlite3_stmt* stmt, const std::string& sql, ElementSource* elements,
                                    RowSink* rows)
{
    sqlite3* ownDb = nullptr;
    sqlite3_stmt* ownStmt = nullptr;
    const auto closeOwn = [&] {
        if (sqlite3* const closing = std::exchange(ownDb, nullptr); !CloseDatabase(closing)) {
            keepConnection(closing, m_databaseName, "could not be closed");
        }
    };
    platform::ScopeExit unwind([&] {
        sqlite3_finalize(ownStmt);
        closeOwn();
    });
    const auto logErrorText = [&] { logFailure(__LINE__, executeFunction, L"Error message is " + errorText(db)); };
    const auto giveUp = [&] {
        closeOwn();
        logFailure(__LINE__, executeFunction, L"SQL is " + platform::toWide(sql));
        return false;
    };

    if (db == nullptr) {
        const Opened opened = OpenDatabase(ownDb, SQLITE_OPEN_READWRITE);
        if (opened == Opened::NoHandle) {
            logFailure(__LINE__, executeFunction, L"GetDbConnection failed, and database name is " + m_databaseName);
        }
        if (opened != Opened::Yes) {
            return false;
        }
        db = ownDb;
    }
    if (stmt == nullptr) {
        ownStmt = PrepareSql(db, sql);
        if (ownStmt == nullptr) {
            return false;
        }
        stmt = ownStmt;
    }
    const bool ownStatement = ownStmt != nullptr;

    if (rows != nullptr && !BeginReadTransaction(db)) {
        logFailure(__LINE__, executeFunction, L"BeginReadTransaction failed, and database name is " + m_databaseName);
        if (ownStatement && !FinalizeStatment(std::exchange(ownStmt, nullptr))) {
            logErrorText();
        }
        return giveUp();
    }
    if (rows == nullptr && !BeginReadWriteTransaction(db)) {
        logFailure(__LINE__, executeFunction,
                   L"BeginReadWriteTransaction failed, and database name is " + m_databaseName);
        if (ownStatement) {
            // Here the error text follows whatever the finalize says, unlike for a read: known to the log's readers.
            FinalizeStatment(std::exchange(ownStmt, nullptr));
            logErrorText();
        }
        return giveUp();
    }

    int code = 0x7FFFFFFF;
    const auto step = [&] {
        code = StepStatment(stmt);
        if (code != SQLITE_OK && code != SQLITE_ROW && code != SQLITE_DONE) {
            logFailure(__LINE__, executeFunction, L"Step failed, and error msg is " + errorText(db));
        }
    };
    if (elements == nullptr) {
        step();
    } else {
        while (elements->Advance()) {
            if (!BindParameter(db, *elements, stmt, ownStatement)) {
                if (ownStatement) {
                    FinalizeStatment(std::exchange(ownStmt, nullptr));
                    logErrorText();
                }
                return giveUp();
            }
            step();
        }
    }
    if (rows != nullptr) {
        GetQueryResult(stmt, *rows, code);
    }

    if (ownStatement && !FinalizeStatment(std::exchange(ownStmt, nullptr))) {
        logFailure(__LINE__, executeFunction, L"Finalize failed, and error msg is " + errorText(db));
    }
    if (!CommitTransaction(db)) {
        logFailure(__LINE__, executeFunction, L"CommitTransaction failed, and database name is " + m_databaseName);
        if (ownDb != nullptr) {
            keepConnection(std::exchange(ownDb, nullptr), m_databaseName, "its transaction could not be committed");
        }
        return false;
    }
    return true;
}

bool DatabaseOperationBase::Execute(const std::string& sql)
{
    return Execute(nullptr, nullptr, sql, nullptr, nullptr);
}

bool DatabaseOperationBase::Execute(const std::string& sql, std::list<DatabaseBindParameter>& binds)
{
    ParameterListSource elements(binds);
    return Execute(nullptr, nullptr, sql, &elements, nullptr);
}

bool DatabaseOperationBase::Execute(const std::string& sql, DatabaseBindParameter& bind)
{
    std::list<DatabaseBindParameter> copy{bind};
    return Execute(sql, copy);
}

bool DatabaseOperationBase::Execute(sqlite3_stmt* stmt)
{
    return Execute(nullptr, stmt);
}

bool DatabaseOperationBase::Execute(sqlite3_stmt* stmt, std::list<DatabaseBindParameter>& binds)
{
    return Execute(nullptr, stmt, binds);
}

bool DatabaseOperationBase::Execute(sqlite3* db, const std::string& sql)
{
    return Execute(db, nullptr, sql, nullptr, nullptr);
}

bool DatabaseOperationBase::Execute(sqlite3* db, const std::string& sql, std::list<DatabaseBindParameter>& binds)
{
    ParameterListSource elements(binds);
    return Execute(db, nullptr, sql, &elements, nullptr);
}

bool DatabaseOperationBase::Execute(sqlite3* db, sqlite3_stmt* stmt)
{
    return Execute(db, stmt, {}, nullptr, nullptr);
}

bool DatabaseOperationBase::Execute(sqlite3* db, sqlite3_stmt* stmt, std::list<DatabaseBindParameter>& binds)
{
    ParameterListSource elements(binds);
    return Execute(db, stmt, {}, &elements, nullptr);
}

bool DatabaseOperationBase::QueryRows(sqlite3* db, sqlite3_stmt* stmt, const std::string& sql,
                                      const DatabaseBindParameter* bind, std::list<DatabaseQueryResult*>*& rows)
{
    rows = new std::list<DatabaseQueryResult*>;
    ResultListSink sink(*rows);
    if (bind == nullptr) {
        return Execute(db, stmt, sql, nullptr, &sink);
    }
    std::list<DatabaseBindParameter> copy{*bind};
    ParameterListSource elements(copy);
    return Execute(db, stmt, sql, &elements, &sink);
}

bool DatabaseOperationBase::Query(const std::string& sql, std::list<DatabaseQueryResult*>*& rows)
{
    return QueryRows(nullptr, nullptr, sql, nullptr, rows);
}

bool DatabaseOperationBase::Query(const std::string& sql, DatabaseBindParameter& bind,
                                  std::list<DatabaseQueryResult*>*& rows)
{
    return QueryRows(nullptr, nullptr, sql, &bind, rows);
}

bool DatabaseOperationBase::Query(sqlite3_stmt* stmt, std::list<DatabaseQueryResult*>*& rows)
{
    return QueryRows(nullptr, stmt, {}, nullptr, rows);
}

bool DatabaseOperationBase::Query(sqlite3_stmt* stmt, DatabaseBindParameter& bind,
                                  std::list<DatabaseQueryResult*>*& rows)
{
    return QueryRows(nullptr, stmt, {}, &bind, rows);
}

bool DatabaseOperationBase::Query(sqlite3* db, const std::string& sql, std::list<DatabaseQueryResult*>*& rows)
{
    return QueryRows(db, nullptr, sql, nullptr, rows);
}

bool DatabaseOperationBase::Query(sqlite3* db, const std::string& sql, DatabaseBindParameter& bind,
                                  std::list<DatabaseQueryResult*>*& rows)
{
    return QueryRows(db, nullptr, sql, &bind, rows);
}

bool DatabaseOperationBase::Query(sqlite3* db, sqlite3_stmt* stmt, std::list<DatabaseQueryResult*>*& rows)
{
    return QueryRows(db, stmt, {}, nullptr, rows);
}

bool DatabaseOperationBase::Query(sqlite3* db, sqlite3_stmt* stmt, DatabaseBindParameter& bind,
                                  std::list<DatabaseQueryResult*>*& rows)
{
    return QueryRows(db, stmt, {}, &bind, rows);
}

int64 DatabaseOperationBase::ReadNumber(const std::string& sql, ElementSource* elements)
{
    FirstCell cell;
    Execute(nullptr, nullptr, sql, elements, &cell);
    return cell.number();
}

} // namespace DatabaseService
