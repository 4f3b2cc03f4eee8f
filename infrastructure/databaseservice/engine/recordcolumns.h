#pragma once

#include "databaseservice/engine/cellreader.h"
#include "databaseservice/engine/parameterwriter.h"
#include "databaseservice/integers.h"
#include "platform/leadinginteger.h"
#include "platform/neverdestroyed.h"
#include "platform/text.h"
#include "platform/wholenumber.h"

#include <array>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

/// A table is described once, as one `constexpr` array of columns: SQL name, declared type, the record's member
/// behind it and the groups that it belongs to. Every statement's text, its parameters and the order of reading come
/// from there.
namespace DatabaseService {

using platform::neverDestroyed; // statements are built once and kept

template <class Record> using BindMember = bool (*)(const Record&, ParameterWriter&, int index);

template <class Record> using ReadMember = void (*)(Record&, CellReader&);

template <class Record> using AssignMember = void (*)(Record&, const std::string& text);

template <class Record> using LoadMember = void (*)(Record&, sqlite3_stmt*, int column);

/// The four functions are null for a column that no member stands for. Numbers with a fraction are only written, and
/// wide text is neither assigned nor loaded.
template <class Record> struct Column {
    std::string_view name;      ///< as statements write it: in brackets where SQL has a word of that name
    std::string_view parameter; ///< without its colon
    std::string_view declaration;
    unsigned groups = 0;
    BindMember<Record> bind = nullptr;
    ReadMember<Record> read = nullptr;
    AssignMember<Record> assign = nullptr;
    LoadMember<Record> load = nullptr;
};

template <auto Member> struct MemberTraits;

template <class R, class T, T R::*Member> struct MemberTraits<Member> {
    using Record = R;
    using Type = T;
};

template <class T> bool bindValue(const T& value, ParameterWriter& parameters, int index)
{
    if constexpr (std::is_floating_point_v<T>) {
        return parameters.bind(index, platform::wholeNumber(value));
    } else if constexpr (std::is_integral_v<T>) {
        return parameters.bind(index, static_cast<int64>(value));
    } else {
        return parameters.bind(index, value);
    }
}

template <auto Member>
bool bindMember(const typename MemberTraits<Member>::Record& record, ParameterWriter& parameters, int index)
{
    return bindValue(record.*Member, parameters, index);
}

/// Converts between kinds as the getters of `DatabaseQueryResult` do, and cuts numbers to the member last. A flag is
/// set by any number but 0, of all its 64 bits.
template <auto Member> void readMember(typename MemberTraits<Member>::Record& record, CellReader& cells)
{
    using Type = typename MemberTraits<Member>::Type;
    if constexpr (std::is_integral_v<Type>) {
        record.*Member = static_cast<Type>(cells.nextInteger());
    } else {
        cells.nextText(record.*Member);
    }
}

/// A cell of the other kind leaves the member as it is. Numbers are cut to the member last.
template <auto Member> void readMemberStrictly(typename MemberTraits<Member>::Record& record, CellReader& cells)
{
    using Type = typename MemberTraits<Member>::Type;
    const CellReader::Kind kind = cells.next();
    if constexpr (std::is_integral_v<Type>) {
        if (kind == CellReader::Kind::Integer) {
            record.*Member = static_cast<Type>(cells.integer());
        }
    } else if (kind == CellReader::Kind::Text) {
        if constexpr (std::is_same_v<Type, std::wstring>) {
            record.*Member = cells.wideText();
        } else {
            record.*Member = cells.text();
        }
    }
}

/// A number is the digits at the front of the text, cut to the member.
template <auto Member> void assignMember(typename MemberTraits<Member>::Record& record, const std::string& text)
{
    using Type = typename MemberTraits<Member>::Type;
    if constexpr (std::is_integral_v<Type>) {
        record.*Member = static_cast<Type>(platform::leadingInteger(std::string_view(text)));
    } else {
        record.*Member = text;
    }
}

/// Reads a column by its index, as SQLite itself converts it; NULL is an empty text. The rules of cells do not apply.
template <auto Member>
void loadMember(typename MemberTraits<Member>::Record& record, sqlite3_stmt* statement, int column)
{
    using Type = typename MemberTraits<Member>::Type;
    if constexpr (std::is_same_v<Type, int64> || std::is_same_v<Type, bool>) {
        record.*Member = static_cast<Type>(sqlite3_column_int64(statement, column));
    } else if constexpr (std::is_integral_v<Type>) {
        record.*Member = sqlite3_column_int(statement, column);
    } else if (const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, column))) {
        record.*Member = text;
    } else {
        (record.*Member).clear();
    }
}

constexpr std::string_view withoutBrackets(std::string_view name)
{
    return name.starts_with('[') ? name.substr(1, name.size() - 2) : name;
}

/// A column whose reader converts between kinds, with the parameter of its own name.
template <auto Member> constexpr auto column(std::string_view name, std::string_view declaration, unsigned groups)
{
    using Traits = MemberTraits<Member>;
    using Type = typename Traits::Type;
    Column<typename Traits::Record> column{name, withoutBrackets(name), declaration, groups, &bindMember<Member>};
    if constexpr (std::is_integral_v<Type> || std::is_same_v<Type, std::string>) {
        column.read = &readMember<Member>;
        column.assign = &assignMember<Member>;
        column.load = &loadMember<Member>;
    } else if constexpr (std::is_same_v<Type, std::wstring>) {
        column.read = &readMember<Member>;
    }
    return column;
}

/// A column whose reader passes over a cell of the wrong kind.
template <auto Member> constexpr auto strictColumn(std::string_view name, std::string_view declaration, unsigned groups)
{
    auto column = DatabaseService::column<Member>(name, declaration, groups);
    column.read = &readMemberStrictly<Member>;
    return column;
}

/// The column `name` as a statement sets or tests it from another member or through another parameter.
template <auto Member> constexpr auto columnFrom(std::string_view name, std::string_view parameter)
{
    auto column = DatabaseService::column<Member>(name, {}, 0);
    column.parameter = parameter;
    return column;
}

/// A column that the table has and no statement names.
template <class Record> constexpr Column<Record> unnamedColumn(std::string_view name, std::string_view declaration)
{
    return {name, withoutBrackets(name), declaration};
}

/// Columns in the order of a statement.
template <class Record> class ColumnList {
public:
    constexpr void append(const Column<Record>& column) { m_columns.at(m_size++) = &column; }
    constexpr std::size_t size() const { return m_size; }
    constexpr const Column<Record>* const* begin() const { return m_columns.data(); }
    constexpr const Column<Record>* const* end() const { return m_columns.data() + m_size; }

private:
    std::array<const Column<Record>*, 64> m_columns{};
    std::size_t m_size = 0;
};

/// Appends the columns that are in any of `groups`, in the order of the table.
template <class Record, std::size_t N>
constexpr void appendTo(ColumnList<Record>& list, const std::array<Column<Record>, N>& table, unsigned groups)
{
    for (const Column<Record>& column : table) {
        if ((column.groups & groups) != 0) {
            list.append(column);
        }
    }
}

/// Appends the one column of that name; an unknown name does not compile.
template <class Record, std::size_t N>
constexpr void appendTo(ColumnList<Record>& list, const std::array<Column<Record>, N>& table, std::string_view name)
{
    for (const Column<Record>& column : table) {
        if (column.name == name) {
            list.append(column);
            return;
        }
    }
    throw std::invalid_argument("no such column");
}

/// Appends a column that lives as long as the program.
template <class Record> constexpr void appendTo(ColumnList<Record>& list, const auto&, const Column<Record>& column)
{
    list.append(column);
}

template <class Record> constexpr void appendTo(ColumnList<Record>& list, const auto&, const ColumnList<Record>& other)
{
    for (const Column<Record>* column : other) {
        list.append(*column);
    }
}

/// A statement's columns, in its order: groups, names of single columns, columns from elsewhere and other lists.
template <class Record, std::size_t N, class... Items>
constexpr ColumnList<Record> pick(const std::array<Column<Record>, N>& table, const Items&... items)
{
    ColumnList<Record> list;
    (appendTo(list, table, items), ...);
    return list;
}

/// One named parameter and what it takes from a record.
template <class Record> struct Parameter {
    std::string name; ///< with its colon
    BindMember<Record> bind;
};

/// A statement's text and what its parameters take from a record. Build it once and keep it.
template <class Record> struct Statement {
    std::string sql;
    std::vector<Parameter<Record>> parameters;
};

/// A statement with one parameter that takes the whole value.
template <class Value> Statement<Value> statementOf(std::string sql, std::string parameter)
{
    return {std::move(sql), {{std::move(parameter), &bindValue<Value>}}};
}

/// A statement with two parameters that take the halves of a pair.
template <class First, class Second>
Statement<std::pair<First, Second>> statementOf(std::string sql, std::string first, std::string second)
{
    using Pair = std::pair<First, Second>;
    return {std::move(sql),
            {{std::move(first), &bindMember<&Pair::first>}, {std::move(second), &bindMember<&Pair::second>}}};
}

/// `head`, each column's text between commas, and `tail`. `append` adds the text of one column. Every start of the
/// stores makes many of them.
template <class Record, class Append>
std::string joined(std::string_view head, const ColumnList<Record>& columns, std::string_view tail, Append append)
{
    constexpr std::size_t usualLength = 32; // of a column
    std::string sql;
    sql.reserve(head.size() + columns.size() * usualLength + tail.size());
    sql = head;
    for (const Column<Record>* column : columns) {
        if (sql.size() != head.size()) {
            sql += ',';
        }
        append(sql, *column);
    }
    sql += tail;
    return sql;
}

template <class Record> std::string names(const ColumnList<Record>& columns)
{
    return joined({}, columns, {}, [](std::string& sql, const auto& column) { sql += column.name; });
}

template <class Record> std::vector<Parameter<Record>> parametersOf(const ColumnList<Record>& columns)
{
    std::vector<Parameter<Record>> parameters;
    for (const Column<Record>* column : columns) {
        parameters.push_back({':' + std::string(column->parameter), column->bind});
    }
    return parameters;
}

/// `head`, which ends in an opening bracket, and the columns with their declarations.
template <class Record> std::string createTable(std::string_view head, const ColumnList<Record>& columns)
{
    return joined(head, columns, ");", [](std::string& sql, const auto& column) {
        sql += column.name;
        sql += ' ';
        sql += column.declaration;
    });
}

/// All columns, those that no statement names among them.
template <class Record, std::size_t N>
std::string createTable(std::string_view head, const std::array<Column<Record>, N>& table)
{
    ColumnList<Record> columns;
    for (const Column<Record>& column : table) {
        columns.append(column);
    }
    return createTable(head, columns);
}

/// `head`, which ends in an opening bracket, then the columns and their parameters.
template <class Record> Statement<Record> insertStatement(std::string_view head, const ColumnList<Record>& columns)
{
    const std::string values = joined({}, columns, {}, [](std::string& sql, const auto& column) {
        sql += ':';
        sql += column.parameter;
    });
    return {std::string(head) + names(columns) + ") VALUES (" + values + ");", parametersOf(columns)};
}

/// `head`, the columns set from their parameters, and `tail`, whose parameters are those of `keys`.
template <class Record>
Statement<Record> updateStatement(std::string_view head, const ColumnList<Record>& columns, std::string_view tail,
                                  const ColumnList<Record>& keys)
{
    const std::string settings = joined({}, columns, {}, [](std::string& sql, const auto& column) {
        sql += column.name;
        sql += " = :";
        sql += column.parameter;
    });
    Statement<Record> statement{std::string(head) + " SET " + settings + ' ' + std::string(tail),
                                parametersOf(columns)};
    for (Parameter<Record>& key : parametersOf(keys)) {
        statement.parameters.push_back(std::move(key));
    }
    return statement;
}

template <class Record> std::string selectText(const ColumnList<Record>& columns, std::string_view tail)
{
    return "SELECT " + names(columns) + ' ' + std::string(tail);
}

} // namespace DatabaseService
