#pragma once

#include "databaseservice/integers.h"

#include <optional>
#include <sqlite3.h>
#include <string>
#include <string_view>
#include <vector>

namespace DatabaseService {

/// Walks the cells of the row on which a statement stands. Cells are not columns: a blob, and a NULL whose declared
/// type is not one of the known ones, yields no cell, and the next cell takes its place.
///
/// Columns are read through `sqlite3_column_value`, one locked call per cell instead of two or three; that asks for
/// the connection to stay on one thread, which every call of the engine does.
class CellReader {
public:
    enum class Kind { None, Integer, Text };

    explicit CellReader(sqlite3_stmt* stmt) : m_stmt(stmt), m_columns(sqlite3_column_count(stmt)) { }

    /// To the front of the row on which the statement stands now.
    void rewind() { m_column = 0; }

    /// Moves to the next cell and tells its kind; `None` behind the last.
    Kind next();

    /// The current cell, of kind `Integer`.
    int64 integer() const { return sqlite3_value_int64(m_value); }

    /// The current cell, of kind `Text`, up to its first NUL, repaired where it is not valid UTF-8. Good until the
    /// next call.
    std::string_view text();
    std::wstring wideText() const;

    /// The next cell as a number, whatever its kind; 0 without a cell.
    int64 nextInteger();

    /// The next cell as text, whatever its kind; empty without a cell.
    void nextText(std::string& out);
    void nextText(std::wstring& out);

private:
    std::string_view storedText() const;
    Kind kindOfNull();
    Kind kindOfDeclaration() const;

    sqlite3_stmt* m_stmt;
    int m_columns;
    int m_column = 0;
    sqlite3_value* m_value = nullptr;
    std::vector<std::optional<Kind>> m_nullKinds; // of columns that had a NULL; empty before the first
    std::string m_repaired;
};

} // namespace DatabaseService
