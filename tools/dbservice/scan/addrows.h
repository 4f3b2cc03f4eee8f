#pragma once

#include "databaseservice/driverdbprovider.h"

#include <vector>

namespace dbservice {

class Session;

/// Adds rows to the drive store in one transaction. Throws a `Failure` as soon as the library has logged one.
void addRows(Session& session, DatabaseService::DriverDBProvider& drive,
             const std::vector<DatabaseService::DriveDataTable>& rows);

} // namespace dbservice
