#pragma once

#include "databaseservice/driverdbproviderbase.h"
#include "support/drivefields.h"

#include <string>
#include <vector>

namespace testsupport {

/// Inserts `batches` times `rows` rows, each batch in a transaction of its own; their ids begin with `prefix`.
inline void writeBatches(DatabaseService::DriverDBProviderBase& drive, const std::string& prefix, int batches, int rows)
{
    for (int batch = 0; batch < batches; ++batch) {
        std::vector<DatabaseService::DriveDataTable> records;
        for (int row = 0; row < rows; ++row) {
            records.push_back(treeRecord(prefix + std::to_string(batch) + '-' + std::to_string(row), "root"));
        }
        drive.InsertDriveDataBatch(records);
    }
}

} // namespace testsupport
