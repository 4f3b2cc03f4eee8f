#pragma once

#include "databaseservice/integers.h"
#include "platform/leadinginteger.h"
#include "platform/text.h"

#include <cstring>
#include <sqlite3.h>
#include <string>
#include <string_view>

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
    Kind next()
    {
        while (m_column < m_columns) {
            m_value = sqlite3_column_value(m_stmt, m_column++);
            switch (sqlite3_value_type(m_value)) {
            case SQLITE_INTEGER:
                return Kind::Integer;
            case SQLITE_TEXT:
            case SQLITE_FLOAT:
                return Kind::Text;
            case SQLITE_NULL:
                if (const Kind kind = kindOfNull(); kind != Kind::None) {
                    return kind;
                }
                break;
            default:
                break;
            }
        }
        return Kind::None;
    }

    /// The current cell, of kind `Integer`.
    int64 integer() const { return sqlite3_value_int64(m_value); }

    /// The current cell, of kind `Text`, up to its first NUL, repaired where it is not valid UTF-8. Good until the
    /// next call.
    std::string_view text()
    {
        const auto* bytes = reinterpret_cast<const char*>(sqlite3_value_text(m_value));
        const std::string_view stored = bytes == nullptr ? std::string_view() : std::string_view(bytes);
        if (!platform::isUtf8(stored)) [[unlikely]] {
            return m_repaired = platform::repairUtf8(stored);
        }
        return stored;
    }

    /// The next cell as a number, whatever its kind; 0 without a cell.
    int64 nextInteger()
    {
        switch (next()) {
        case Kind::Integer:
            return integer();
        case Kind::Text:
            return platform::leadingInteger(text());
        case Kind::None:
            break;
        }
        return 0;
    }

    /// The next cell as text, whatever its kind; empty without a cell.
    void nextText(std::string& out)
    {
        switch (next()) {
        case Kind::Integer:
            out = std::to_string(integer());
            break;
        case Kind::Text:
            out.assign(text());
            break;
        case Kind::None:
            out.clear();
            break;
        }
    }

    void nextText(std::wstring& out)
    {
        std::string utf8;
        nextText(utf8);
        out = platform::toWide(utf8);
    }

private:
    /// The declared type is compared whole and with regard to case; an expression has none.
    Kind kindOfNull() const
    {
        const char* declared = sqlite3_column_decltype(m_stmt, m_column - 1);
        if (declared == nullptr || std::strcmp(declared, "INTEGER") == 0) {
            return Kind::Integer;
        }
        if (std::strcmp(declared, "TEXT") == 0 || std::strcmp(declared, "VARCHAR") == 0) {
            return Kind::Text;
        }
        return Kind::None;
    }

    sqlite3_stmt* m_stmt;
    int m_columns;
    int m_column = 0;
    sqlite3_value* m_value = nullptr;
    std::string m_repaired;
};

} // namespace DatabaseService
