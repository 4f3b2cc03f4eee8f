#pragma once

#include "stores/database.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace dbservice {

/// A table in two copies of a store.
struct TableDiff {
    std::string table;
    std::vector<std::string> key = {};     ///< the primary key, else a unique index, else the row's number
    std::vector<std::string> columns = {}; ///< those of both copies, the key first
    std::vector<std::string> columnsCame = {};
    std::vector<std::string> columnsWent = {};
    bool isThereBefore = true;
    bool isThereAfter = true;
    std::int64_t came = 0;
    std::int64_t went = 0;
    std::int64_t changed = 0;
    std::int64_t same = 0;
};

/// A row that is in one copy only, or in both with other values. The cells stand in the order of the table's columns.
struct RowDiff {
    const Database::Row* before; ///< null for one that came
    const Database::Row* after;  ///< null for one that went
    std::vector<int> changed;    ///< places of the columns whose values differ
};

using OnRowDiff = std::function<void(const TableDiff&, const RowDiff&)>;

/// Compares two copies of a store, all that is in them. Both are read in the order of their keys, side by side, so that
/// two rows at a time are looked at. A table that only one of them has is told by its number of rows.
///
/// Failure: a `Failure` of a `Database`.
std::vector<TableDiff> compareStores(Database& before, Database& after, const OnRowDiff& onRow);

} // namespace dbservice
