#include "stores/tablelist.h"

#include "stores/cellvalue.h"
#include "stores/session.h"
#include "stores/storefile.h"
#include "terminal/displaytext.h"
#include "terminal/failure.h"
#include "terminal/table.h"

#include <algorithm>
#include <iostream>
#include <sqlite3.h>

namespace dbservice {

namespace {

std::string shownCell(const Database::Row& row, int column, Shown shown)
{
    // Some columns of whole numbers are REAL.
    const bool isNumber = row.type(column) == SQLITE_INTEGER || row.type(column) == SQLITE_FLOAT;
    if (isNumber && shown != Shown::Plain) {
        return readable(row.number(column), shown);
    }
    return cellText(row, column);
}

std::vector<int> placesOf(const ListedTable& table, const std::vector<std::string>& columns)
{
    std::vector<int> places;
    for (const ListedTable::Column& column : table.columns) {
        const auto found = std::find(columns.begin(), columns.end(), column.name);
        places.push_back(found == columns.end() ? -1 : static_cast<int>(found - columns.begin()));
    }
    return places;
}

void listTable(Session& session, Database& database, const ListedTable& table, const TablePage& page)
{
    const std::vector<std::string> columns = database.columns(table.name);
    const std::vector<int> places = placesOf(table, columns);
    std::vector<Table::Column> titles;
    for (const ListedTable::Column& column : table.columns) {
        titles.push_back({column.name});
    }
    Table list(std::move(titles));
    std::int64_t rows = 0;
    database.run("SELECT " + Database::list(columns) + " FROM " + inQuotes(table.name, '"') + " ORDER BY " +
                     table.order + " LIMIT ?, ?",
                 {std::int64_t{page.offset}, std::int64_t{page.count}}, [&](const Database::Row& row) {
                     ++rows;
                     if (session.json()) {
                         Json json{{"table", table.name}};
                         for (int i = 0; i < row.size(); ++i) {
                             json[row.name(i)] = cellJson(row, i);
                         }
                         std::cout << toLine(json) << '\n';
                         return;
                     }
                     std::vector<std::string> cells;
                     for (std::size_t i = 0; i < places.size(); ++i) {
                         cells.push_back(places[i] < 0 ? "" : shownCell(row, places[i], table.columns[i].shown));
                     }
                     list.add(std::move(cells));
                 });
    const std::int64_t total = database.number("SELECT count(*) FROM " + inQuotes(table.name, '"'));
    if (!session.json()) {
        if (rows > 0) {
            list.print(std::cout, Session::outputWidth());
        }
        std::cout << table.name << ": " << pageNumbers(page.offset, rows, total) << '\n';
    }
    if (rows > 0 && page.offset + rows < total) {
        session.reporter().note(std::string("more of ") + table.name + " follows with --offset " +
                                std::to_string(page.offset + rows));
    }
}

} // namespace

Arguments tablePageOptions()
{
    return {
        argument<&TablePage::offset>("--offset", "How many rows of a table to leave out first", {.showsDefault = true}),
        argument<&TablePage::count>("--count", "How many rows of a table to show", {.showsDefault = true})};
}

void listTables(Session& session, Database& database, const std::vector<ListedTable>& tables, const TablePage& page)
{
    const std::vector<std::string> present = database.tables();
    if (std::none_of(tables.begin(), tables.end(), [&](const ListedTable& table) {
            return std::find(present.begin(), present.end(), table.name) != present.end();
        })) {
        throw Failure("cannot list " + std::string(tables.front().name) + ": " + database.called() +
                      " has no such table; `dbservice init` lays down what is missing");
    }
    for (const ListedTable& table : tables) {
        if (std::find(present.begin(), present.end(), table.name) != present.end()) {
            listTable(session, database, table, page);
        } else if (!session.json()) {
            std::cout << table.name << ": no table\n";
        }
    }
}

} // namespace dbservice
