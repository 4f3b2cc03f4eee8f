#include "statementtrace.h"

#include <sqlite3.h>

namespace benchmarks {

namespace {

std::vector<StatementTrace::Step>* noted = nullptr;

int noteStatement(unsigned /*event*/, void* /*context*/, void* stmt, void* /*text*/)
{
    noted->push_back({false, sqlite3_sql(static_cast<sqlite3_stmt*>(stmt))});
    return 0;
}

int noteOpen(sqlite3* db, const char** /*error*/, const sqlite3_api_routines* /*api*/)
{
    noted->push_back({true, sqlite3_db_filename(db, "main")});
    return sqlite3_trace_v2(db, SQLITE_TRACE_STMT, noteStatement, nullptr);
}

auto entryPoint()
{
    return reinterpret_cast<void (*)()>(&noteOpen);
}

} // namespace

bool operator==(const StatementTrace::Step& one, const StatementTrace::Step& other)
{
    const auto withoutBlanks = [](std::string text) {
        std::erase(text, ' ');
        return text;
    };
    return one.isOpen == other.isOpen && withoutBlanks(one.text) == withoutBlanks(other.text);
}

StatementTrace::StatementTrace()
{
    noted = &m_steps;
    sqlite3_auto_extension(entryPoint());
}

StatementTrace::~StatementTrace()
{
    sqlite3_cancel_auto_extension(entryPoint());
    noted = nullptr;
}

} // namespace benchmarks
