#include "stores/database.h"

#include "databaseservice/driverdbprovider.h"
#include "platform/paths.h"
#include "platform/scopeexit.h"
#include "platform/text.h"
#include "stores/storefile.h"
#include "terminal/failure.h"

#include <limits>
#include <sqlite3.h>

namespace dbservice {

namespace {

int openFlags(Database::Access access)
{
    switch (access) {
    case Database::Access::Read:
        return SQLITE_OPEN_READONLY;
    case Database::Access::Write:
        return SQLITE_OPEN_READWRITE;
    case Database::Access::Create:
        break;
    }
    return SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
}

struct Bind {
    sqlite3_stmt* statement;
    int place;

    int operator()(std::monostate /*null*/) const { return sqlite3_bind_null(statement, place); }
    int operator()(std::int64_t number) const { return sqlite3_bind_int64(statement, place, number); }
    int operator()(double number) const { return sqlite3_bind_double(statement, place, number); }
    int operator()(const std::string& text) const
    {
        return sqlite3_bind_text64(statement, place, text.data(), text.size(), SQLITE_STATIC, SQLITE_UTF8);
    }
};

} // namespace

int Database::Row::size() const
{
    return sqlite3_column_count(m_statement);
}

std::string Database::Row::name(int column) const
{
    return sqlite3_column_name(m_statement, column);
}

int Database::Row::type(int column) const
{
    return sqlite3_column_type(m_statement, column);
}

bool Database::Row::isNull(int column) const
{
    return type(column) == SQLITE_NULL;
}

std::int64_t Database::Row::number(int column) const
{
    return sqlite3_column_int64(m_statement, column);
}

double Database::Row::real(int column) const
{
    return sqlite3_column_double(m_statement, column);
}

std::string_view Database::Row::text(int column) const
{
    // A file may keep its texts as UTF-16; only a blob comes as it is.
    const auto* const bytes = type(column) == SQLITE_BLOB
        ? static_cast<const char*>(sqlite3_column_blob(m_statement, column))
        : reinterpret_cast<const char*>(sqlite3_column_text(m_statement, column));
    const int size = sqlite3_column_bytes(m_statement, column);
    return bytes == nullptr ? std::string_view() : std::string_view(bytes, static_cast<std::size_t>(size));
}

Database::Database(const std::filesystem::path& file, Access access, const std::string& called)
    : m_called(called.empty() ? platform::toUtf8(file) : called)
{
    const char* const verb = access == Access::Create ? "make" : "open";
    std::error_code error;
    if (access == Access::Create && std::filesystem::exists(std::filesystem::symlink_status(file, error))) {
        throw Failure("cannot make " + m_called + ": it is there already");
    }
    sqlite3* db = nullptr;
    const int code = sqlite3_open_v2(platform::toUtf8(file).c_str(), &db, openFlags(access), nullptr);
    m_db.reset(db);
    std::string ignored;
    if (code != SQLITE_OK || !DatabaseService::DriverDBProviderBase::BindNameCompare(db, ignored)) {
        fail(verb);
    }
    sqlite3_busy_timeout(db, std::numeric_limits<int>::max());
}

// NOLINTNEXTLINE(readability-make-member-function-const): a statement may write
void Database::run(std::string_view statement, const std::vector<Value>& values, const OnRow& onRow)
{
    sqlite3_stmt* prepared = nullptr;
    const int code =
        sqlite3_prepare_v2(handle(), statement.data(), static_cast<int>(statement.size()), &prepared, nullptr);
    const platform::ScopeExit finalize([&] { sqlite3_finalize(prepared); });
    if (code != SQLITE_OK) {
        fail("read");
    }
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (std::visit(Bind{prepared, static_cast<int>(i) + 1}, values[i]) != SQLITE_OK) {
            fail("read");
        }
    }
    int step = sqlite3_step(prepared);
    for (; step == SQLITE_ROW; step = sqlite3_step(prepared)) {
        if (onRow) {
            onRow(Row(prepared));
        }
    }
    if (step != SQLITE_DONE) {
        fail(sqlite3_stmt_readonly(prepared) != 0 ? "read" : "change");
    }
}

std::int64_t Database::number(std::string_view statement, const std::vector<Value>& values)
{
    std::int64_t first = 0;
    bool found = false;
    run(statement, values, [&](const Row& row) {
        first = found ? first : row.number(0);
        found = true;
    });
    return first;
}

std::vector<std::string> Database::texts(std::string_view statement, const std::vector<Value>& values)
{
    std::vector<std::string> found;
    run(statement, values, [&](const Row& row) { found.emplace_back(row.text(0)); });
    return found;
}

std::vector<std::string> Database::tables()
{
    return texts(namesOfTables);
}

std::vector<std::string> Database::columns(const std::string& table)
{
    return texts("SELECT name FROM pragma_table_info(?)", {table});
}

std::string Database::list(const std::vector<std::string>& columns)
{
    std::string all;
    for (const std::string& column : columns) {
        all += (all.empty() ? "" : ", ") + inQuotes(column, '"');
    }
    return all.empty() ? "*" : all; // SQLite then says why the table has none
}

void Database::fail(const char* verb) const
{
    throw Failure(std::string("cannot ") + verb + " " + m_called + ": " + sqlite3_errmsg(handle()));
}

void Database::Close::operator()(sqlite3* db) const
{
    sqlite3_close(db);
}

} // namespace dbservice
