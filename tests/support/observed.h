#pragma once

#include "databaseservice/databaseoperationbase.h"
#include "databaseservice/driverdbprovider.h"
#include "support/sqlitefile.h"

#include <deque>
#include <functional>
#include <list>
#include <sqlite3.h>
#include <string>
#include <utility>
#include <vector>

namespace testsupport {

/// The statements that connections run, each with the number of its connection: "1:COMMIT;".
class StatementTrace {
public:
    void attach(sqlite3* db)
    {
        Source& source = m_sources.emplace_back(Source{this, std::to_string(m_sources.size()) + ':'});
        sqlite3_trace_v2(db, SQLITE_TRACE_STMT, &StatementTrace::add, &source);
    }

    /// The statements since the last look.
    std::vector<std::string> take() { return std::exchange(m_statements, {}); }

private:
    struct Source {
        StatementTrace* trace;
        std::string number;
    };

    static int add(unsigned, void* context, void*, void* text)
    {
        const Source& source = *static_cast<Source*>(context);
        source.trace->m_statements.push_back(source.number + static_cast<const char*>(text));
        return 0;
    }

    std::deque<Source> m_sources;
    std::vector<std::string> m_statements;
};

/// A provider whose protected operations are open, and whose connections can be counted, traced and prepared.
template <class Base> class Observed : public Base {
public:
    template <class... Arguments>
    explicit Observed(Arguments&&... arguments) : Base(std::forward<Arguments>(arguments)...)
    {
    }

    using Base::CloseDatabase;
    using Base::Execute;
    using Base::FinalizeStatment;
    using Base::FreeQueryResult;
    using Base::FreeTable;
    using Base::GetDbConnection;
    using Base::PrepareSql;
    using Base::Query;

    int opened = 0;
    int closed = 0;
    std::function<void(sqlite3*)> onOpen;
    StatementTrace trace;

protected:
    void AfterOpen(sqlite3* db) override
    {
        Base::AfterOpen(db);
        ++opened;
        sqlite3_exec(db, "PRAGMA synchronous=OFF", nullptr, nullptr, nullptr); // for speed alone
        trace.attach(db);
        if (onOpen) {
            onOpen(db);
        }
    }

    void BeforeClose(sqlite3* db) override
    {
        Base::BeforeClose(db);
        ++closed;
    }
};

/// The engine with nothing on top.
class PlainStore : public Observed<DatabaseService::DatabaseOperationBase> {
public:
    explicit PlainStore(const std::wstring& name = L"engine.dat") : Observed(name) { }
    bool InitDatabase() override { return true; }
};

/// The facade, and so the base behind it.
using ObservedDrive = Observed<DatabaseService::DriverDBProvider>;

/// The rows as `SqliteFile` would show them, and back with the list.
template <class Store> Rows takeRows(Store& store, std::list<DatabaseService::DatabaseQueryResult*>* list)
{
    Rows rows;
    for (DatabaseService::DatabaseQueryResult* result : *list) {
        auto& row = rows.emplace_back();
        while (result->HasNext()) {
            row.push_back(result->IsInt() ? result->GetString() : textCell(result->GetString()));
        }
    }
    store.FreeQueryResult(list);
    return rows;
}

} // namespace testsupport
