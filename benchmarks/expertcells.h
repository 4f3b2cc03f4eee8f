#pragma once

#include "platform/text.h"

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <sqlite3.h>
#include <string>
#include <tuple>
#include <type_traits>

namespace benchmarks {

/// How an expert binds a record's members in place and puts cells straight into them. He trusts that cells are of the
/// declared kind and text is well formed.

inline bool bindCell(sqlite3_stmt* stmt, int index, const std::string& value)
{
    return sqlite3_bind_text(stmt, index, value.data(), static_cast<int>(value.size()), SQLITE_STATIC) == SQLITE_OK;
}

/// Wide text changes into the store's UTF-8 on its way, by the converter that the library uses, too.
inline bool bindCell(sqlite3_stmt* stmt, int index, const std::wstring& value)
{
    const std::string utf8 = platform::toUtf8(value);
    return sqlite3_bind_text(stmt, index, utf8.data(), static_cast<int>(utf8.size()), SQLITE_TRANSIENT) == SQLITE_OK;
}

template <std::integral Number> bool bindCell(sqlite3_stmt* stmt, int index, Number value)
{
    return sqlite3_bind_int64(stmt, index, value) == SQLITE_OK;
}

/// Cut, as the library stores it.
inline bool bindCell(sqlite3_stmt* stmt, int index, double value)
{
    return sqlite3_bind_int64(stmt, index, static_cast<std::int64_t>(value)) == SQLITE_OK;
}

inline void readCell(sqlite3_stmt* stmt, int column, std::string& value)
{
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(stmt, column));
    if (text == nullptr) {
        value.clear();
    } else {
        value.assign(text, static_cast<std::size_t>(sqlite3_column_bytes(stmt, column)));
    }
}

inline void readCell(sqlite3_stmt* stmt, int column, std::wstring& value)
{
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(stmt, column));
    const auto size = static_cast<std::size_t>(sqlite3_column_bytes(stmt, column));
    value = text == nullptr ? std::wstring() : platform::toWide({text, size});
}

inline void readCell(sqlite3_stmt* stmt, int column, std::int64_t& value)
{
    value = sqlite3_column_int64(stmt, column);
}

inline void readCell(sqlite3_stmt* stmt, int column, std::int32_t& value)
{
    value = sqlite3_column_int(stmt, column);
}

inline void readCell(sqlite3_stmt* stmt, int column, bool& value)
{
    value = sqlite3_column_int(stmt, column) != 0;
}

inline void readCell(sqlite3_stmt* stmt, int column, double& value)
{
    value = sqlite3_column_double(stmt, column);
}

/// What ties a record's members in the order of its columns: `static auto of(auto& record)`.
template <class Record> struct Members;

template <class Record> auto membersOf(Record& record)
{
    return Members<std::remove_const_t<Record>>::of(record);
}

/// All members of a record, tied in the order of the parameters.
template <class... Members> bool bindAll(sqlite3_stmt* stmt, const std::tuple<Members&...>& members)
{
    return std::apply(
        [stmt](const auto&... each) {
            int index = 0;
            return (bindCell(stmt, ++index, each) && ...);
        },
        members);
}

/// Without the key that a store makes itself.
template <class First, class... Others> auto withoutFirst(const std::tuple<First&, Others&...>& members)
{
    return std::apply([](auto& /*first*/, auto&... others) { return std::tie(others...); }, members);
}

/// The same in the order of the columns.
template <class... Members> void readAll(sqlite3_stmt* stmt, const std::tuple<Members&...>& members)
{
    std::apply(
        [stmt](auto&... each) {
            int column = 0;
            (readCell(stmt, column++, each), ...);
        },
        members);
}

} // namespace benchmarks
