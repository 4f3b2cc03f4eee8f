#include "stores/cellvalue.h"

#include "stores/storefile.h"

#include <sqlite3.h>
#include <string_view>

namespace dbservice {

namespace {

std::string literal(std::string_view bytes)
{
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text = "X'";
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        text += digits[value >> 4U];
        text += digits[value & 0xFU];
    }
    return text + "'";
}

} // namespace

Json cellJson(const Database::Row& row, int column)
{
    switch (row.type(column)) {
    case SQLITE_NULL:
        return {};
    case SQLITE_INTEGER:
        return row.number(column);
    case SQLITE_FLOAT:
        return row.real(column);
    case SQLITE_BLOB:
        return literal(row.text(column));
    default:
        return row.text(column);
    }
}

std::string cellText(const Database::Row& row, int column)
{
    switch (row.type(column)) {
    case SQLITE_NULL:
        return "NULL";
    case SQLITE_BLOB:
        return literal(row.text(column));
    default:
        return std::string(row.text(column));
    }
}

std::string cellLiteral(const Database::Row& row, int column)
{
    return row.type(column) == SQLITE_TEXT ? inQuotes(row.text(column), '\'') : cellText(row, column);
}

} // namespace dbservice
