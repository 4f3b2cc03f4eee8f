#pragma once

#include "databaseservice/commonsqlitedb.h"
#include "databaseservice/integers.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

struct sqlite3_stmt;

namespace migration {

using DatabaseService::int64;

/// A database file to look at beside its own readers. Nothing is written through it. A file that is missing has no
/// tables, and is not created.
class FileLook {
public:
    explicit FileLook(const std::filesystem::path& file);

    /// False when it is no database, damaged at its front, cut short, or locked for long.
    bool isReadable() { return !m_exists || number("SELECT COUNT(*) FROM sqlite_master").has_value(); }
    bool hasTable(std::string_view name);
    bool hasColumn(std::string_view table, std::string_view column);
    /// 0 for a missing table; nothing when it cannot be counted.
    std::optional<int64> countRows(std::string_view table);
    /// Nothing when there is no row, or on failure.
    std::optional<int64> number(const std::string& query);

    using OnRow = std::function<void(sqlite3_stmt*)>;
    /// Gives `columns` of each row, from column 1 on. False when not all rows came.
    bool scan(const std::string& columns, const std::string& from, const OnRow& onRow);

private:
    bool m_exists;
    DatabaseService::CommonSqliteDb m_db;
};

} // namespace migration
