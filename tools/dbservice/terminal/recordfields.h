#pragma once

#include "databaseservice/integers.h"
#include "platform/text.h"
#include "terminal/json.h"
#include "terminal/table.h"

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <variant>

namespace dbservice {

/// How a person reads a column's value.
enum class Shown { Plain, Bytes, Time };

/// A stored column and where a record has it: members or getters.
template <class... Sources> struct Field {
    const char* name = "";
    std::variant<Sources...> source;
    Shown shown = Shown::Plain;
};

template <class Record>
using MemberField = Field<std::string Record::*, std::wstring Record::*, DatabaseService::int64 Record::*,
                          std::int32_t Record::*, bool Record::*>;

// A value as its column holds it.
template <class Value> const Value& stored(const Value& value)
{
    return value;
}
inline std::string stored(const std::wstring& value)
{
    return platform::toUtf8(value);
}
inline std::int32_t stored(bool value)
{
    return value ? 1 : 0;
}

/// The value as a person reads it, empty for 0.
std::string readable(const std::string& value, Shown shown);
std::string readable(std::int64_t value, Shown shown);

/// The record with its stored columns as keys, in the order of the fields.
template <class Fields, class Record> Json toJson(const Fields& fields, const Record& record)
{
    Json json;
    for (const auto& field : fields) {
        std::visit([&](auto source) { json[field.name] = stored(std::invoke(source, record)); }, field.source);
    }
    return json;
}

/// The stored columns of a record and their values, one below the other; those that are empty or 0 only with `all`.
template <class Fields, class Record> Table toTable(const Fields& fields, const Record& record, bool all)
{
    Table table({{"Field"}, {"Value"}});
    for (const auto& field : fields) {
        std::string value = std::visit(
            [&](auto source) { return readable(stored(std::invoke(source, record)), field.shown); }, field.source);
        if (all || !value.empty()) {
            table.add({field.name, std::move(value)});
        }
    }
    return table;
}

/// Seconds for JSON, cut to what their measuring is worth.
double toMilliseconds(double seconds);

} // namespace dbservice
