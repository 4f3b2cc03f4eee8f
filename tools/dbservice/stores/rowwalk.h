#pragma once

#include "databaseservice/driverdbprovider.h"

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

struct sqlite3_stmt;

namespace dbservice {

/// Goes through the rows of a query on a store's file with no record in between, for what looks at few columns of all
/// rows. Failures are what the library logs.
class RowWalk : private DatabaseService::DriverDBProvider {
public:
    RowWalk() = default; ///< over the drive store
    explicit RowWalk(const std::filesystem::path& fileName);

    using OnRow = std::function<void(sqlite3_stmt*)>;

    /// False when not all rows came.
    bool run(const std::string& query, const OnRow& onRow);
};

/// A cell's text, empty for NULL; good until the next row.
std::string_view textAt(sqlite3_stmt* row, int column);

} // namespace dbservice
