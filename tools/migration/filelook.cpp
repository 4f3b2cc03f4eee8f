#include "filelook.h"

#include "platform/paths.h"

#include <sqlite3.h>

namespace migration {

namespace {

std::string quoted(std::string_view name)
{
    return '\'' + std::string(name) + '\'';
}

} // namespace

FileLook::FileLook(const std::filesystem::path& file)
{
    std::error_code ignored;
    m_exists = std::filesystem::exists(file, ignored);
    if (m_exists) {
        m_db.OpenUtf8Path(platform::toUtf8(file).c_str());
        m_db.ExcuteSql("PRAGMA query_only = 1");
    }
}

bool FileLook::hasTable(std::string_view name)
{
    return number("SELECT 1 FROM sqlite_master WHERE type = 'table' AND name = " + quoted(name)).has_value();
}

bool FileLook::hasColumn(std::string_view table, std::string_view column)
{
    return number("SELECT 1 FROM pragma_table_info(" + quoted(table) + ") WHERE name = " + quoted(column)).has_value();
}

std::optional<int64> FileLook::countRows(std::string_view table)
{
    if (!hasTable(table)) {
        return 0;
    }
    return number("SELECT COUNT(*) FROM " + std::string(table));
}

std::optional<int64> FileLook::number(const std::string& query)
{
    std::optional<int64> found;
    if (m_exists) {
        m_db.QuerySqlResult(
            query.c_str(), [&](sqlite3_stmt*& statement, int64) { found = sqlite3_column_int64(statement, 0); }, 0);
    }
    return found;
}

bool FileLook::scan(const std::string& columns, const std::string& from, const OnRow& onRow)
{
    // A step that fails looks like the end. A last row of our own tells the two apart.
    std::string last = "0";
    for (const char letter : columns) {
        last += letter == ',' ? ",0" : "";
    }
    bool ended = false;
    const std::string query = "SELECT 1," + columns + " FROM " + from + " UNION ALL SELECT 0," + last;
    m_db.QuerySqlResult(
        query.c_str(),
        [&](sqlite3_stmt*& statement, int64) {
            ended = sqlite3_column_int64(statement, 0) == 0;
            if (!ended) {
                onRow(statement);
            }
        },
        0);
    return ended;
}

} // namespace migration
