#include "databaseservice/databaseoperationbase.h"

#include "databaseservice/engine/calltimer.h"
#include "databaseservice/engine/cellreader.h"
#include "databaseservice/engine/failurelog.h"
#include "databaseservice/engine/parameterlistsource.h"
#include "databaseservice/engine/rowsink.h"
#include "databaseservice/engine/unitofwork.h"

#include <chrono>
#include <memory>
#include <sqlite3.h>
#include <thread>

namespace DatabaseService {

namespace {

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
                row->Insert(cells.wideText());
            }
        }
        m_rows.push_back(row.get());
        static_cast<void>(row.release());
    }

private:
    std::list<DatabaseQueryResult*>& m_rows;
};

// `work` with each element of `binds`, whose cursors move.
bool runEach(DatabaseOperationBase& store, UnitOfWork work, std::list<DatabaseBindParameter>& binds)
{
    ParameterListSource elements(binds);
    work.elements = &elements;
    return run(store, work);
}

// `work` with a copy of `bind`.
bool runOnce(DatabaseOperationBase& store, const UnitOfWork& work, const DatabaseBindParameter& bind)
{
    std::list<DatabaseBindParameter> copy{bind};
    return runEach(store, work, copy);
}

// The rows of `work` as a list that is there before anything else happens.
bool queryRows(DatabaseOperationBase& store, UnitOfWork work, const DatabaseBindParameter* bind,
               std::list<DatabaseQueryResult*>*& rows)
{
    rows = new std::list<DatabaseQueryResult*>;
    ResultListSink sink(*rows);
    work.rows = &sink;
    return bind == nullptr ? run(store, work) : runOnce(store, work, *bind);
}

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

int DatabaseOperationBase::BusyHandler(void* /*data*/, int /*count*/)
{
    const auto begin = std::chrono::steady_clock::now();
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
    CallTimer::waited(std::chrono::steady_clock::now() - begin);
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

bool DatabaseOperationBase::Execute(const std::string& sql)
{
    return run(*this, {.sql = sql});
}

bool DatabaseOperationBase::Execute(const std::string& sql, std::list<DatabaseBindParameter>& binds)
{
    return runEach(*this, {.sql = sql}, binds);
}

bool DatabaseOperationBase::Execute(const std::string& sql, DatabaseBindParameter& bind)
{
    return runOnce(*this, {.sql = sql}, bind);
}

bool DatabaseOperationBase::Execute(sqlite3_stmt* stmt)
{
    return run(*this, {.stmt = stmt});
}

bool DatabaseOperationBase::Execute(sqlite3_stmt* stmt, std::list<DatabaseBindParameter>& binds)
{
    return runEach(*this, {.stmt = stmt}, binds);
}

bool DatabaseOperationBase::Execute(sqlite3* db, const std::string& sql)
{
    return run(*this, {.db = db, .sql = sql});
}

bool DatabaseOperationBase::Execute(sqlite3* db, const std::string& sql, std::list<DatabaseBindParameter>& binds)
{
    return runEach(*this, {.db = db, .sql = sql}, binds);
}

bool DatabaseOperationBase::Execute(sqlite3* db, sqlite3_stmt* stmt)
{
    return run(*this, {.db = db, .stmt = stmt});
}

bool DatabaseOperationBase::Execute(sqlite3* db, sqlite3_stmt* stmt, std::list<DatabaseBindParameter>& binds)
{
    return runEach(*this, {.db = db, .stmt = stmt}, binds);
}

bool DatabaseOperationBase::Query(const std::string& sql, std::list<DatabaseQueryResult*>*& rows)
{
    return queryRows(*this, {.sql = sql}, nullptr, rows);
}

bool DatabaseOperationBase::Query(const std::string& sql, DatabaseBindParameter& bind,
                                  std::list<DatabaseQueryResult*>*& rows)
{
    return queryRows(*this, {.sql = sql}, &bind, rows);
}

bool DatabaseOperationBase::Query(sqlite3_stmt* stmt, std::list<DatabaseQueryResult*>*& rows)
{
    return queryRows(*this, {.stmt = stmt}, nullptr, rows);
}

bool DatabaseOperationBase::Query(sqlite3_stmt* stmt, DatabaseBindParameter& bind,
                                  std::list<DatabaseQueryResult*>*& rows)
{
    return queryRows(*this, {.stmt = stmt}, &bind, rows);
}

bool DatabaseOperationBase::Query(sqlite3* db, const std::string& sql, std::list<DatabaseQueryResult*>*& rows)
{
    return queryRows(*this, {.db = db, .sql = sql}, nullptr, rows);
}

bool DatabaseOperationBase::Query(sqlite3* db, const std::string& sql, DatabaseBindParameter& bind,
                                  std::list<DatabaseQueryResult*>*& rows)
{
    return queryRows(*this, {.db = db, .sql = sql}, &bind, rows);
}

bool DatabaseOperationBase::Query(sqlite3* db, sqlite3_stmt* stmt, std::list<DatabaseQueryResult*>*& rows)
{
    return queryRows(*this, {.db = db, .stmt = stmt}, nullptr, rows);
}

bool DatabaseOperationBase::Query(sqlite3* db, sqlite3_stmt* stmt, DatabaseBindParameter& bind,
                                  std::list<DatabaseQueryResult*>*& rows)
{
    return queryRows(*this, {.db = db, .stmt = stmt}, &bind, rows);
}

} // namespace DatabaseService
