#pragma once

#include "databaseservice/drivedatatable.h"
#include "recordfields.h"

#include <functional>
#include <string>

namespace dbservice {

/// The record with its stored columns as keys, in the order of the table.
nlohmann::ordered_json toJson(const DatabaseService::DriveDataTable& row);

/// Calls `visit` for each stored column with the value as a person reads it, empty for a value that is 0 or empty.
void forEachField(const DatabaseService::DriveDataTable& row,
                  const std::function<void(const std::string& name, const std::string& value)>& visit);

} // namespace dbservice
