#pragma once

#include "databaseservice/integers.h"
#include "platform/text.h"
#include "support/lists.h"
#include "support/sqlitefile.h"

#include <functional>
#include <regex>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

namespace testsupport {

template <class Value> Value fromText(const std::string& text)
{
    if constexpr (std::is_same_v<Value, std::wstring>) {
        return platform::toWide(text);
    } else if constexpr (std::is_arithmetic_v<Value>) {
        return static_cast<Value>(std::stoll(text));
    } else {
        return text;
    }
}

template <class Value> std::string toText(const Value& value)
{
    if constexpr (std::is_same_v<Value, std::wstring>) {
        return platform::toUtf8(value);
    } else {
        return (std::ostringstream() << value).str();
    }
}

/// A column and the member behind it, as text.
template <class Record> struct RecordField {
    std::string column;
    bool text;
    int bits; ///< of a number
    std::function<void(Record&, const std::string&)> set;
    std::function<std::string(const Record&)> get;

    /// A public member, which may be of a base of the record.
    template <class Value, class Owner>
    RecordField(const std::string& name, Value Owner::*member)
        : column(name),
          text(!std::is_arithmetic_v<Value>),
          bits(8 * sizeof(Value)),
          set([member](Record& record, const std::string& value) { record.*member = fromText<Value>(value); }),
          get([member](const Record& record) { return toText(record.*member); })
    {
    }

    /// A member behind accessors.
    template <class Set, class Get>
    RecordField(const std::string& name, void (Record::*write)(Set), Get (Record::*read)() const)
        : column(name),
          text(!std::is_arithmetic_v<Get>),
          bits(8 * sizeof(Get)),
          set([write](Record& record, const std::string& value) {
              (record.*write)(fromText<std::decay_t<Get>>(value));
          }),
          get([read](const Record& record) { return toText((record.*read)()); })
    {
        static_assert(std::is_same_v<std::decay_t<Set>, std::decay_t<Get>>);
    }

    /// The member as `SqliteFile` shows the cell.
    std::string cell(const Record& record) const { return text ? textCell(get(record)) : get(record); }
};

template <class Record, class... Members>
std::vector<RecordField<Record>> fieldsOf(const std::string& members, Members... member)
{
    static const std::regex name("::(\\w+)");
    std::sregex_token_iterator at(members.begin(), members.end(), name, 1);
    return {RecordField<Record>(*at++, member)...};
}

/// Columns that have the names of their members: FIELDS(Record, &Record::id, &Record::name).
#define FIELDS(Record, ...) fieldsOf<Record>(#__VA_ARGS__, __VA_ARGS__)

/// A table's columns in the order of a full read.
template <class Record> struct RecordFields {
    std::string table;
    std::vector<RecordField<Record>> all;

    /// A record whose every member tells its column and `seed`; flags differ from the next seed's.
    Record filled(int seed) const
    {
        Record record{};
        DatabaseService::int64 number = DatabaseService::int64{1001} * seed;
        for (const auto& field : all) {
            ++number;
            // 64-bit numbers reach beyond 32 bits, 32-bit ones below zero.
            const auto value = field.bits == 64 ? (number << 40) + number : field.bits == 8 ? number % 2 : -number;
            field.set(record,
                      field.text ? field.column + " \xE5\x90\x8D '" + std::to_string(number) : std::to_string(value));
        }
        return record;
    }

    std::vector<std::string> cells(const Record& record) const
    {
        return mapped(all, [&](const auto& field) { return field.cell(record); });
    }

    Rows cells(const std::vector<Record>& records) const
    {
        return mapped(records, [&](const Record& record) { return cells(record); });
    }

    /// The table's rows by their first column.
    Rows rows(SqliteFile& file) const
    {
        return file.query("SELECT " + joined(mapped(all, &RecordField<Record>::column)) + " FROM " + table +
                          " ORDER BY 1");
    }
};

/// Each column's name, type, whether it takes no NULL, default, and whether it is the key.
inline Rows schemaOf(SqliteFile& file, const std::string& table)
{
    return file.query("SELECT name, type, \"notnull\", dflt_value, pk FROM pragma_table_info('" + table + "')");
}

} // namespace testsupport
