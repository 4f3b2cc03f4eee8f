#pragma once

#include "databaseservice/drivedatatable.h"
#include "terminal/recordfields.h"

namespace dbservice {

/// The record with its stored columns as keys, in the order of the table.
nlohmann::ordered_json toJson(const DatabaseService::DriveDataTable& row);

/// The same for a person; columns that are empty or 0 only with `all`.
Table toTable(const DatabaseService::DriveDataTable& row, bool all);

} // namespace dbservice
