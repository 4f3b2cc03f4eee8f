#pragma once

#include "databaseservice/integers.h"
#include "platform/text.h"
#include "support/lists.h"
#include "support/sqlitefile.h"

#include <functional>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

namespace testsupport {

/// A column and the public member behind it.
template <class Record> struct RecordField {
    std::string column;
    bool text;
    std::function<void(Record&, DatabaseService::int64)> set;
    std::function<std::string(const Record&)> cell; ///< as `SqliteFile` shows it

    /// The member may be of a base of the record.
    template <class Value, class Owner>
    RecordField(const char* name, Value Owner::*member) : column(name),
                                                          text(!std::is_arithmetic_v<Value>)
    {
        set = [label = column, member](Record& record, DatabaseService::int64 number) {
            if constexpr (std::is_same_v<Value, bool>) {
                record.*member = number % 2 != 0;
            } else if constexpr (std::is_integral_v<Value>) {
                // 64-bit numbers reach beyond 32 bits, 32-bit ones below zero.
                record.*member = static_cast<Value>(sizeof(Value) == 8 ? (number << 40) + number : -number);
            } else if constexpr (std::is_floating_point_v<Value>) {
                record.*member = static_cast<Value>(number) + Value{0.5};
            } else if constexpr (std::is_same_v<Value, std::wstring>) {
                record.*member = platform::toWide(label + " \xE5\x90\x8D '" + std::to_string(number));
            } else {
                record.*member = label + " \xE5\x90\x8D '" + std::to_string(number);
            }
        };
        cell = [member](const Record& record) {
            if constexpr (std::is_arithmetic_v<Value>) {
                return (std::ostringstream() << record.*member).str();
            } else if constexpr (std::is_same_v<Value, std::wstring>) {
                return textCell(platform::toUtf8(record.*member));
            } else {
                return textCell(record.*member);
            }
        };
    }
};

/// The column and the member have one name.
#define FIELD(Record, member) RecordField<Record>(#member, &Record::member)

/// A table's columns in the order of a full read.
template <class Record> struct RecordFields {
    std::string table;
    std::vector<RecordField<Record>> all;

    /// A record whose every member tells its column and `seed`; flags differ from the next seed's.
    Record filled(int seed) const
    {
        Record record{};
        DatabaseService::int64 number = 1001 * seed;
        for (const auto& field : all) {
            field.set(record, ++number);
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

} // namespace testsupport
