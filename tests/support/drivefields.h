#pragma once

#include "databaseservice/drivedatatable.h"
#include "support/recordfields.h"

#include <string>
#include <vector>

namespace testsupport {

using DriveField = RecordField<DatabaseService::DriveDataTable>;

/// All 53, in the order of a full read.
const std::vector<DriveField>& driveFields();

/// A record whose every stored member tells its column and `seed`; numbers need all their bits.
DatabaseService::DriveDataTable filledRecord(const std::string& fileId, int seed);

/// A record of little more than its place in the tree.
DatabaseService::DriveDataTable treeRecord(const std::string& fileId, const std::string& parentId, bool folder = false);

/// The row of cells that a full read of the record's row gives.
std::vector<std::string> cellsOf(const DatabaseService::DriveDataTable& record);
Rows cellsOf(const std::vector<DatabaseService::DriveDataTable>& records);

/// The 53 column names.
std::vector<std::string> driveColumns();

/// The parameters of a statement, in the order in which its text names them.
std::vector<std::string> parametersIn(const std::string& sql);

} // namespace testsupport
