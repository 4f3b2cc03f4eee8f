#include "support/sqlitefile.h"

#include "databaseservice/driverdbproviderbase.h"
#include "platform/paths.h"
#include "support/lists.h"

#include <stdexcept>

namespace testsupport {

namespace {

std::string cellText(sqlite3_stmt* stmt, int column)
{
    const int type = sqlite3_column_type(stmt, column); // before the cell becomes a text
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(stmt, column));
    if (text == nullptr) {
        return "NULL";
    }
    const std::string bytes(text, static_cast<std::size_t>(sqlite3_column_bytes(stmt, column)));
    return type == SQLITE_TEXT ? textCell(bytes) : bytes;
}

} // namespace

std::string textCell(const std::string& text)
{
    return '\'' + text + '\'';
}

SqliteFile::SqliteFile(const std::filesystem::path& file, Collation collation)
{
    sqlite3* db = nullptr;
    std::string error;
    if (sqlite3_open(platform::toUtf8(file).c_str(), &db) != SQLITE_OK) {
        error = sqlite3_errmsg(db);
    } else if (collation == Collation::NameCompare) {
        DatabaseService::DriverDBProviderBase::BindNameCompare(db, error);
    }
    m_db.reset(db);
    if (!error.empty()) {
        throw std::runtime_error(error);
    }
    sqlite3_busy_timeout(db, 60'000);
    sqlite3_exec(db, "PRAGMA synchronous=OFF", nullptr, nullptr, nullptr); // for speed alone
}

void SqliteFile::exec(const std::string& sql) const
{
    if (sqlite3_exec(handle(), sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
        throw std::runtime_error(sqlite3_errmsg(handle()));
    }
}

Rows SqliteFile::query(const std::string& sql) const
{
    sqlite3_stmt* prepared = nullptr;
    sqlite3_prepare_v2(handle(), sql.c_str(), -1, &prepared, nullptr);
    const std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)> stmt(prepared, &sqlite3_finalize);
    Rows rows;
    int code = SQLITE_ERROR;
    while (prepared != nullptr && (code = sqlite3_step(prepared)) == SQLITE_ROW) {
        auto& row = rows.emplace_back();
        for (int column = 0; column < sqlite3_column_count(prepared); ++column) {
            row.push_back(cellText(prepared, column));
        }
    }
    if (code != SQLITE_DONE) {
        throw std::runtime_error(sqlite3_errmsg(handle()));
    }
    return rows;
}

std::string SqliteFile::value(const std::string& sql) const
{
    return query(sql).at(0).at(0);
}

std::string SqliteFile::text(const std::string& sql) const
{
    return joined(mapped(query(sql), [](const auto& row) { return joined(row, "|"); }), "\n");
}

void SqliteFile::fill(int rows) const
{
    for (const auto& table : query("SELECT name FROM sqlite_master WHERE type = 'table' AND name NOT LIKE 'sqlite%'")) {
        const std::string values =
            value("SELECT group_concat(CASE WHEN type LIKE 'INT%' OR type LIKE 'RE%' OR type LIKE 'DOU%' THEN 'value' "
                  "ELSE '''id-'' || value' END) FROM pragma_table_info(" +
                  table[0] + ")");
        exec("INSERT INTO " + table[0] +
             " WITH RECURSIVE n(value) AS (SELECT 1 UNION ALL SELECT value + 1 FROM n WHERE value < " +
             std::to_string(rows) + ") SELECT " + values.substr(1, values.size() - 2) + " FROM n");
    }
}

std::string SqliteFile::tables() const
{
    const std::string names = value("SELECT group_concat(name) FROM (SELECT name FROM sqlite_master WHERE type = "
                                    "'table' AND name NOT LIKE 'sqlite%' ORDER BY name)");
    return names == "NULL" ? "" : names.substr(1, names.size() - 2);
}

std::string SqliteFile::columns(const std::string& table) const
{
    std::string text;
    std::string kind;
    for (const auto& row : query("SELECT name, type || iif(\"notnull\", ' NOT NULL', '') || iif(pk, ' KEY', '') || "
                                 "ifnull(' DEFAULT ' || dflt_value, '') FROM pragma_table_info('" +
                                 table + "')")) {
        if (row[1] != kind) {
            kind = row[1];
            text += (text.empty() ? "" : "\n") + kind.substr(1, kind.size() - 2) + ':';
        }
        text += ' ' + row[0].substr(1, row[0].size() - 2);
    }
    return text;
}

} // namespace testsupport
