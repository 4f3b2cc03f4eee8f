#include "statementtrace.h"

#include <sqlite3.h>

namespace benchmarks {

namespace {

std::vector<std::string>* noted = nullptr;

int noteStatement(unsigned /*event*/, void* /*context*/, void* stmt, void* /*text*/)
{
    std::string sql;
    for (const char* c = sqlite3_sql(static_cast<sqlite3_stmt*>(stmt)); *c != '\0'; ++c) {
        if (*c != ' ') {
            sql += *c;
        }
    }
    noted->push_back(sql);
    return 0;
}

int noteOpen(sqlite3* db, const char** /*error*/, const sqlite3_api_routines* /*api*/)
{
    noted->emplace_back("open");
    return sqlite3_trace_v2(db, SQLITE_TRACE_STMT, noteStatement, nullptr);
}

auto entryPoint()
{
    return reinterpret_cast<void (*)()>(&noteOpen);
}

} // namespace

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
