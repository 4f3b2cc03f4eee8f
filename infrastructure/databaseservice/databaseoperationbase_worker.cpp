#include "clientservices/cloudlogger.h"
#include "clientservices/globalparamwrapper.h"
#include "databaseservice/databaseoperationbase.h"
#include "databaseservice/engine/calltimer.h"
#include "databaseservice/engine/cellreader.h"
#include "databaseservice/engine/connectionhold.h"
#include "databaseservice/engine/elementsource.h"
#include "databaseservice/engine/failurelog.h"
#include "databaseservice/engine/keepconnection.h"
#include "databaseservice/engine/openconnection.h"
#include "databaseservice/engine/parameterwriter.h"
#include "databaseservice/engine/rowsink.h"
#include "databaseservice/engine/unitofwork.h"
#include "platform/paths.h"
#include "platform/scopeexit.h"
#include "platform/text.h"

#include <algorithm>
#include <limits>
#include <sqlite3.h>
#include <string>
#include <string_view>
#include <utility>

namespace DatabaseService {

namespace {

constexpr const char* executeFunction = "DatabaseOperationBase::Execute";
constexpr const char* openFunction = "DatabaseOperationBase::OpenDatabase";

} // namespace

/// The one worker behind every operation of a store.
class DatabaseOperationBase::Worker {
public:
    enum class Opened { Yes, Failed, NoHandle };

    explicit Worker(DatabaseOperationBase& store) : m_store(store) { }

    /// Leaves `db` null unless it is open.
    Opened OpenDatabase(sqlite3*& db);
    sqlite3_stmt* Prepare(sqlite3* db, std::string_view sql);
    bool Execute(const UnitOfWork& work);

private:
    bool BeginReadTransaction(sqlite3* db);
    bool BeginReadWriteTransaction(sqlite3* db);
    bool CommitTransaction(sqlite3* db);
    bool ExecuteSql(sqlite3* db, const char* sql);
    bool BindParameter(sqlite3* db, ElementSource& element, sqlite3_stmt* stmt, ParameterWriter& parameters);
    static void GetQueryResult(sqlite3_stmt* stmt, RowSink& rows, int code, CallTimer& timer);

    const std::wstring& name() const { return m_store.m_databaseName; }

    DatabaseOperationBase& m_store;
};

DatabaseOperationBase::Worker::Opened DatabaseOperationBase::Worker::OpenDatabase(sqlite3*& db)
{
    const std::wstring path = GlobalParamWrapper::GetInstance()->GetUserDataBaseFolder() + L"/" + name();
    const std::string utf8Path = platform::toUtf8(path);
    Logger::CloudLogger::GetInstance()->Output(0, 1, __LINE__, openFunction, "OpenDataBase:" + utf8Path, true);

    sqlite3* handle = nullptr;
    db = nullptr;
    switch (openConnection(utf8Path, BusyHandler, handle)) {
    case Opening::NoFile: {
        logFailure(__LINE__, openFunction, L"OpenDatabasesqlite3_open_v2 failed, and database name is " + name());
        logFailure(__LINE__, openFunction, name() + (platform::exists(path) ? L"exist." : L"does not exist."));
        const bool allocated = handle != nullptr;
        m_store.CloseDatabase(handle);
        return allocated ? Opened::Failed : Opened::NoHandle;
    }
    case Opening::NoBusyHandler: {
        const std::wstring message = errorText(handle);
        m_store.CloseDatabase(handle);
        logFailure(__LINE__, openFunction,
                   L"OpenDatabase sqlite3_busy_handler failed, and database name is " + name() + L"; error message = " +
                       message);
        return Opened::Failed;
    }
    case Opening::Done:
        break;
    }
    const platform::ScopeExit closeUnlessTaken([&] { m_store.CloseDatabase(handle); });
    m_store.AfterOpen(handle);
    db = std::exchange(handle, nullptr);
    return Opened::Yes;
}

sqlite3_stmt* DatabaseOperationBase::Worker::Prepare(sqlite3* db, std::string_view sql)
{
    // What is longer than SQLite's own limit is refused by SQLite, whatever the length says beyond it.
    constexpr std::size_t longest = std::numeric_limits<int>::max();
    const int length = static_cast<int>(std::min(sql.size(), longest));
    sqlite3_stmt* stmt = nullptr;
    if (sqlite3_prepare(db, sql.data(), length, &stmt, nullptr) != SQLITE_OK) {
        logFailure(__LINE__, "DatabaseOperationBase::PrepareSql",
                   L"sqlite3_prepare failed, and database name is " + name());
    }
    return stmt;
}

bool DatabaseOperationBase::Worker::ExecuteSql(sqlite3* db, const char* sql)
{
    if (sqlite3_exec(db, sql, nullptr, nullptr, nullptr) == SQLITE_OK) {
        return true;
    }
    logFailure(__LINE__, "DatabaseOperationBase::ExecuteSql",
               L"sqlite3_exec failed, and database name is " + name() + L",Error message is " + errorText(db));
    return false;
}

bool DatabaseOperationBase::Worker::BeginReadTransaction(sqlite3* db)
{
    if (ExecuteSql(db, "BEGIN DEFERRED")) {
        return true;
    }
    logFailure(__LINE__, "DatabaseOperationBase::BeginReadTransaction",
               L"Begin transaction failed,Error msg is" + errorText(db));
    return false;
}

bool DatabaseOperationBase::Worker::BeginReadWriteTransaction(sqlite3* db)
{
    return ExecuteSql(db, "BEGIN IMMEDIATE;");
}

bool DatabaseOperationBase::Worker::CommitTransaction(sqlite3* db)
{
    return ExecuteSql(db, "COMMIT;");
}

// A statement whose previous step failed reports that once more at the reset; the element is bound all the same.
bool DatabaseOperationBase::Worker::BindParameter(sqlite3* db, ElementSource& element, sqlite3_stmt* stmt,
                                                  ParameterWriter& parameters)
{
    constexpr const char* function = "DatabaseOperationBase::BindParameter";
    if (sqlite3_reset(stmt) != SQLITE_OK) {
        logFailure(__LINE__, function, L"Error msg is " + errorText(db));
    }
    if (element.Bind(parameters)) {
        return true;
    }
    // Text that is refused is reported in the same words as an integer; the log's readers search for them.
    logFailure(__LINE__, function,
               L"BindParameter sqlite3_bind_int64 failed, and database name is " + name() + L",Index is " +
                   std::to_wstring(parameters.refused().index) + L" and value is " + parameters.refused().value);
    logFailure(__LINE__, function, L"Error msg is " + errorText(db));
    return false;
}

void DatabaseOperationBase::Worker::GetQueryResult(sqlite3_stmt* stmt, RowSink& rows, int code, CallTimer& timer)
{
    CellReader cells(stmt);
    for (; code == SQLITE_ROW; code = sqlite3_step(stmt)) {
        cells.rewind();
        rows.Row(cells);
        timer.rowOut();
    }
}

bool DatabaseOperationBase::Worker::Execute(const UnitOfWork& work)
{
    const char* const prepared = work.stmt != nullptr ? sqlite3_sql(work.stmt) : nullptr;
    CallTimer timer(name(), prepared != nullptr ? prepared : work.sql); // goes last
    sqlite3* db = work.db;
    sqlite3_stmt* stmt = work.stmt;
    sqlite3* ownDb = nullptr;
    sqlite3_stmt* ownStmt = nullptr;
    ConnectionHold ownHold; // a caller's connection is his to hold
    const auto closeOwn = [&] {
        ownHold.letGo();
        if (sqlite3* const closing = std::exchange(ownDb, nullptr); !m_store.CloseDatabase(closing)) {
            keepConnection(closing, name(), "could not be closed");
        }
    };
    const platform::ScopeExit unwind([&] {
        sqlite3_finalize(ownStmt);
        closeOwn();
    });
    const auto finalizeOwn = [&] { return m_store.FinalizeStatment(std::exchange(ownStmt, nullptr)); };
    const auto logErrorText = [&] { logFailure(__LINE__, executeFunction, L"Error message is " + errorText(db)); };
    const auto giveUp = [&] {
        closeOwn();
        logFailure(__LINE__, executeFunction, L"SQL is " + platform::toWide(work.sql));
        return false;
    };

    if (db == nullptr) {
        const Opened opened = OpenDatabase(ownDb);
        if (opened == Opened::NoHandle) {
            logFailure(__LINE__, executeFunction, L"GetDbConnection failed, and database name is " + name());
        }
        if (opened != Opened::Yes) {
            return false;
        }
        ownHold.take(ownDb);
        db = ownDb;
    }
    if (stmt == nullptr) {
        ownStmt = Prepare(db, work.sql);
        if (ownStmt == nullptr) {
            return false;
        }
        stmt = ownStmt;
    }
    const bool ownStatement = ownStmt != nullptr;
    timer.opened();

    if (work.rows != nullptr && !BeginReadTransaction(db)) {
        logFailure(__LINE__, executeFunction, L"BeginReadTransaction failed, and database name is " + name());
        if (ownStatement && !finalizeOwn()) {
            logErrorText();
        }
        return giveUp();
    }
    if (work.rows == nullptr && !BeginReadWriteTransaction(db)) {
        logFailure(__LINE__, executeFunction, L"BeginReadWriteTransaction failed, and database name is " + name());
        if (ownStatement) {
            // Here the error text follows whatever the finalize says, unlike for a read: known to the log's readers.
            finalizeOwn();
            logErrorText();
        }
        return giveUp();
    }

    int code = 0x7FFFFFFF;
    const auto step = [&] {
        code = sqlite3_step(stmt);
        if (code != SQLITE_OK && code != SQLITE_ROW && code != SQLITE_DONE) {
            logFailure(__LINE__, executeFunction, L"Step failed, and error msg is " + errorText(db));
        }
    };
    if (work.elements == nullptr) {
        step();
    } else {
        ParameterWriter parameters(stmt,
                                   ownStatement ? ParameterWriter::Text::Referenced : ParameterWriter::Text::Copied);
        while (work.elements->Advance()) {
            if (!BindParameter(db, *work.elements, stmt, parameters)) {
                if (ownStatement) {
                    finalizeOwn();
                    logErrorText();
                }
                return giveUp();
            }
            step();
            timer.rowIn();
        }
    }
    if (work.rows != nullptr) {
        GetQueryResult(stmt, *work.rows, code, timer);
    }

    if (ownStatement && !finalizeOwn()) {
        logFailure(__LINE__, executeFunction, L"Finalize failed, and error msg is " + errorText(db));
    }
    timer.worked();
    const bool committed = CommitTransaction(db);
    timer.committed();
    if (!committed) {
        logFailure(__LINE__, executeFunction, L"CommitTransaction failed, and database name is " + name());
        if (ownDb != nullptr) {
            ownHold.letGo();
            keepConnection(std::exchange(ownDb, nullptr), name(), "its transaction could not be committed");
        }
        return false;
    }
    return timer.ended(true);
}

sqlite3* DatabaseOperationBase::GetDbConnection()
{
    sqlite3* db = nullptr;
    Worker(*this).OpenDatabase(db);
    return db;
}

sqlite3_stmt* DatabaseOperationBase::PrepareSql(sqlite3* db, std::string sql)
{
    return Worker(*this).Prepare(db, sql);
}

bool run(DatabaseOperationBase& store, const UnitOfWork& work)
{
    return DatabaseOperationBase::Worker(store).Execute(work);
}

} // namespace DatabaseService
