#pragma once

#include <filesystem>
#include <memory>
#include <sqlite3.h>
#include <string>
#include <vector>

namespace testsupport {

/// Cells as SQL writes them, so that the storage class can be told: NULL, 7, 1.5, 'text'. A blob shows its bytes.
using Rows = std::vector<std::vector<std::string>>;

std::string textCell(const std::string& text);

/// A database file, looked at and made with SQLite alone. Errors throw with SQLite's message.
class SqliteFile {
public:
    enum class Collation { None, NameCompare };

    /// Creates a missing file.
    explicit SqliteFile(const std::filesystem::path& file, Collation collation = Collation::None);
    sqlite3* handle() const { return m_db.get(); }

    /// Any number of statements.
    void exec(const std::string& sql) const;
    Rows query(const std::string& sql) const;
    /// The one cell of the one row.
    std::string value(const std::string& sql) const;
    /// A line for each row, with its cells between bars.
    std::string text(const std::string& sql) const;

    /// So many rows into every table, whatever its columns: numbers, and texts that end in them.
    void fill(int rows) const;

    /// The names of the tables, with commas between them; SQLite's own are left out.
    std::string tables() const;
    /// A table's columns in runs of one kind, a line for each: "TEXT NOT NULL: a b".
    std::string columns(const std::string& table) const;

private:
    std::unique_ptr<sqlite3, int (*)(sqlite3*)> m_db{nullptr, &sqlite3_close};
};

} // namespace testsupport
