#pragma once

#include "databaseservice/driverdbprovider.h"
#include "drive/drivemarkers.h"

#include <vector>

namespace dbservice {

class DriveTree;
class Session;

struct PendingOperation {
    DatabaseService::DriveDataTable row;
    Marker marker;
};

/// What is pending in the drive store: by operation, then by the number that ties the rows of one action together, then
/// by name.
std::vector<PendingOperation> pendingOperations(DatabaseService::DriverDBProvider& drive);

/// Prints operations with the path of the row and, for a rename or a move, where it leads.
void showPending(const Session& session, DriveTree& tree, const std::vector<PendingOperation>& operations);

} // namespace dbservice
