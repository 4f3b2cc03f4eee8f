#pragma once

#include "databaseservice/drivedatatable.h"
#include "terminal/json.h"
#include "terminal/table.h"

namespace dbservice {

/// The record with its stored columns as keys, in the order of the table.
Json toJson(const DatabaseService::DriveDataTable& row);

/// The same for a person; columns that are empty or 0 only with `all`.
Table toTable(const DatabaseService::DriveDataTable& row, bool all);

} // namespace dbservice
