#pragma once

#include "stores/storekind.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace dbservice {

class Database;

struct ColumnShape {
    std::string name;
    std::string type; ///< as it is declared
    bool notNull;
    bool hasDefault;
    int key; ///< its place in the primary key from 1 on, 0 where it is none of it
};

struct TableShape {
    std::string name;
    std::string sql;
    std::vector<ColumnShape> columns;

    const ColumnShape* column(std::string_view wanted) const;
};

struct IndexShape {
    std::string name;
    std::string table;
    std::string sql;
};

/// What is in a database file, without SQLite's own. Names are looked up without regard to case, as SQLite does.
struct StoreShape {
    std::vector<TableShape> tables;
    std::vector<IndexShape> indexes; ///< those that a statement has made

    const TableShape* table(std::string_view name) const;
    const IndexShape* index(std::string_view name) const;
};

StoreShape shapeOf(Database& database);

/// What the library lays down where there is nothing. Throws a `Failure` where that cannot be seen.
const StoreShape& shapeOfLibrary(const StoreKind& kind);

/// The kind of which a file holds most, by its tables and their columns, whatever it is called. Null for a file that
/// holds no table of the library's: one counts that has at least half of the columns.
const StoreKind* kindOf(const StoreShape& shape);

/// What a file has otherwise than the library lays it down.
struct ShapeDifference {
    enum class Of { MissingTable, MissingColumn, OtherColumn, MissingIndex, OtherIndex, AddedTable, AddedColumn };

    Of of;
    std::string table;
    std::string name; ///< of the column or index
    std::string text; ///< as a person reads it: "FastAccess lacks the column Tip"
};

std::vector<ShapeDifference> differences(const StoreShape& shape, const StoreKind& kind);

/// What the library's tables in a store's file lack of the columns that the library gives them, as "FastAccess lacks
/// the column Tip"; empty if they lack nothing. Tables that are missing do not count.
std::string missingColumns(const std::filesystem::path& file);

} // namespace dbservice
