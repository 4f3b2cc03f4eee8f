#pragma once

#include "databaseservice/drivedatatable.h"
#include "drive/drivemarkers.h"

#include <vector>

namespace dbservice {

class DriveTree;
class Session;

struct PendingOperation {
    DatabaseService::DriveDataTable row;
    Marker marker;
};

/// Prints operations with the path of the row and, for a rename or a move, where it leads.
void showPending(const Session& session, DriveTree& tree, const std::vector<PendingOperation>& operations);

} // namespace dbservice
