#include "stores/storediff.h"

#include "stores/statement.h"
#include "stores/storefile.h"
#include "terminal/failure.h"

#include <algorithm>
#include <sqlite3.h>

namespace dbservice {

namespace {

bool holds(const std::vector<std::string>& names, const std::string& name)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

std::vector<std::string> without(const std::vector<std::string>& names, const std::vector<std::string>& others)
{
    std::vector<std::string> rest;
    std::copy_if(names.begin(), names.end(), std::back_inserter(rest),
                 [&](const std::string& name) { return !holds(others, name); });
    return rest;
}

/// Columns whose values tell the rows of a table apart; none if there are no such.
std::vector<std::string> keyOf(Database& database, const std::string& table)
{
    std::vector<std::string> key =
        database.texts("SELECT name FROM pragma_table_info(?) WHERE pk > 0 ORDER BY pk", {table});
    if (!key.empty()) {
        return key;
    }
    // A NULL may stand in a unique index more than once.
    const std::vector<std::string> index = database.texts(
        "SELECT name FROM pragma_index_list(?1) AS list WHERE \"unique\" = 1 AND partial = 0 AND NOT EXISTS "
        "(SELECT 1 FROM pragma_index_info(list.name) AS info LEFT JOIN pragma_table_info(?1) AS known "
        "ON known.name = info.name WHERE known.\"notnull\" IS NOT 1) ORDER BY seq DESC LIMIT 1",
        {table});
    return index.empty() ? index
                         : database.texts("SELECT name FROM pragma_index_info(?) ORDER BY seqno", {index.front()});
}

/// By the bytes, whatever order the columns have.
std::string inKeyOrder(const TableDiff& diff)
{
    std::string order;
    for (const std::string& column : diff.key) {
        order += (order.empty() ? "" : ", ") + inQuotes(column, '"') + " COLLATE BINARY";
    }
    return "SELECT " + Database::list(diff.columns) + " FROM " + inQuotes(diff.table, '"') + " ORDER BY " + order;
}

/// SQLite's order of the kinds of values.
int rank(int type)
{
    switch (type) {
    case SQLITE_NULL:
        return 0;
    case SQLITE_INTEGER:
    case SQLITE_FLOAT:
        return 1;
    case SQLITE_TEXT:
        return 2;
    default:
        return 3;
    }
}

template <class Value> int order(const Value& left, const Value& right)
{
    return (left > right ? 1 : 0) - (left < right ? 1 : 0);
}

/// As SQLite compares them by their bytes.
int compareCells(const Database::Row& left, const Database::Row& right, int column)
{
    const int leftType = left.type(column);
    const int rightType = right.type(column);
    if (const int byType = order(rank(leftType), rank(rightType)); byType != 0) {
        return byType;
    }
    if (rank(leftType) != 1) {
        return leftType == SQLITE_NULL ? 0 : left.text(column).compare(right.text(column));
    }
    if (leftType == SQLITE_INTEGER && rightType == SQLITE_INTEGER) {
        return order(left.number(column), right.number(column));
    }
    return order(left.real(column), right.real(column));
}

int compareKeys(const Database::Row& left, const Database::Row& right, std::size_t columns)
{
    int result = 0;
    for (int i = 0; i < static_cast<int>(columns) && result == 0; ++i) {
        result = compareCells(left, right, i);
    }
    return result;
}

std::vector<int> changedColumns(const Database::Row& before, const Database::Row& after)
{
    std::vector<int> changed;
    for (int i = 0; i < before.size(); ++i) {
        if (before.type(i) != after.type(i) || compareCells(before, after, i) != 0) {
            changed.push_back(i);
        }
    }
    return changed;
}

void compareRows(Database& before, Database& after, TableDiff& diff, const OnRowDiff& onRow)
{
    Statement left(before, inKeyOrder(diff));
    Statement right(after, inKeyOrder(diff));
    const Database::Row leftRow = left.row();
    const Database::Row rightRow = right.row();
    bool hasLeft = left.step();
    bool hasRight = right.step();
    while (hasLeft || hasRight) {
        const int side = !hasLeft ? 1 : !hasRight ? -1 : compareKeys(leftRow, rightRow, diff.key.size());
        RowDiff row{side <= 0 ? &leftRow : nullptr, side >= 0 ? &rightRow : nullptr, {}};
        if (side == 0) {
            row.changed = changedColumns(leftRow, rightRow);
        }
        ++(side < 0 ? diff.went : side > 0 ? diff.came : row.changed.empty() ? diff.same : diff.changed);
        if (side != 0 || !row.changed.empty()) {
            onRow(diff, row);
        }
        hasLeft = side <= 0 ? left.step() : hasLeft;
        hasRight = side >= 0 ? right.step() : hasRight;
    }
}

TableDiff compareTables(Database& before, Database& after, const std::string& table, const OnRowDiff& onRow)
{
    TableDiff diff{.table = table};
    const std::vector<std::string> left = before.columns(table);
    const std::vector<std::string> right = after.columns(table);
    diff.columnsWent = without(left, right);
    diff.columnsCame = without(right, left);
    diff.key = keyOf(before, table);
    if (diff.key.empty() || !without(diff.key, right).empty()) {
        diff.key = {"rowid"};
    }
    diff.columns = diff.key;
    for (const std::string& column : without(without(left, diff.columnsWent), diff.key)) {
        diff.columns.push_back(column);
    }
    compareRows(before, after, diff, onRow);
    return diff;
}

std::int64_t countRows(Database& database, const std::string& table)
{
    return database.number("SELECT count(*) FROM " + inQuotes(table, '"'));
}

/// From here on the database stays as it is, as far as this connection sees it.
void beginReading(Database& database)
{
    database.run("BEGIN");
    if (const std::vector<std::string> encoding = database.texts("PRAGMA encoding");
        encoding != std::vector<std::string>{"UTF-8"}) {
        throw Failure("cannot compare " + database.called() + ": its texts are not UTF-8, as a store's are");
    }
}

} // namespace

std::vector<TableDiff> compareStores(Database& before, Database& after, const OnRowDiff& onRow)
{
    beginReading(before);
    beginReading(after);
    const std::vector<std::string> left = before.tables();
    const std::vector<std::string> right = after.tables();
    std::vector<TableDiff> found;
    for (const std::string& table : left) {
        if (holds(right, table)) {
            found.push_back(compareTables(before, after, table, onRow));
        } else {
            found.push_back({.table = table, .isThereAfter = false, .went = countRows(before, table)});
        }
    }
    for (const std::string& table : without(right, left)) {
        found.push_back({.table = table, .isThereBefore = false, .came = countRows(after, table)});
    }
    return found;
}

} // namespace dbservice
