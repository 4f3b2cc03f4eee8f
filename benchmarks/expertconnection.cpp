#include "expertconnection.h"

#include "platform/namecompare.h"
#include "platform/paths.h"

#include <chrono>
#include <stdexcept>
#include <thread>

namespace benchmarks {

namespace {

int wait(void* /*data*/, int /*count*/)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
    return 1;
}

int compare(void* /*user*/, int leftSize, const void* left, int rightSize, const void* right)
{
    return platform::compareNames({static_cast<const char*>(left), static_cast<std::size_t>(leftSize)},
                                  {static_cast<const char*>(right), static_cast<std::size_t>(rightSize)});
}

} // namespace

int addNameCompare(sqlite3* db)
{
    return sqlite3_create_collation(db, "NameCompare", SQLITE_UTF8, nullptr, compare);
}

ExpertConnection::ExpertConnection(Kind kind, AfterOpen afterOpen) : m_kind(kind), m_afterOpen(afterOpen) { }

ExpertConnection::~ExpertConnection()
{
    disconnect();
}

void ExpertConnection::open(const std::filesystem::path& file)
{
    m_path = platform::toUtf8(file);
    if (isKept()) {
        connect();
    }
}

void ExpertConnection::close()
{
    disconnect();
}

void ExpertConnection::connect()
{
    check(sqlite3_open_v2(m_path.c_str(), &m_db, 0x80006, nullptr));
    check(sqlite3_busy_handler(m_db, wait, nullptr));
    if (m_afterOpen != nullptr) {
        check(m_afterOpen(m_db));
    }
}

void ExpertConnection::disconnect()
{
    finalize();
    sqlite3_close(std::exchange(m_db, nullptr));
}

void ExpertConnection::finalize()
{
    for (const auto& [text, stmt] : std::exchange(m_statements, {})) {
        sqlite3_finalize(stmt);
    }
}

void ExpertConnection::execute(const char* sql)
{
    check(sqlite3_exec(m_db, sql, nullptr, nullptr, nullptr));
}

sqlite3_stmt* ExpertConnection::statement(const std::string& sql)
{
    sqlite3_stmt*& stmt = m_statements[&sql];
    if (stmt == nullptr) {
        check(sqlite3_prepare(m_db, sql.data(), static_cast<int>(sql.size()), &stmt, nullptr));
    }
    return stmt;
}

void ExpertConnection::require(bool good) const
{
    if (!good) {
        throw std::runtime_error(std::string("the C interface failed: ") + sqlite3_errmsg(m_db));
    }
}

} // namespace benchmarks
