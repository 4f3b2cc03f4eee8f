#pragma once

#include "databaseservice/drivedatatable.h"

#include <string>
#include <vector>

namespace dbservice {

/// One operation on a row that the client's synchronisation has yet to carry to the cloud.
struct Marker {
    const char* operation; ///< new, upload, rename, move, bin, final or restore
    DatabaseService::int64 batchId;
    DatabaseService::int64 time; ///< 0 where the operation has none
    std::string newName;         ///< of a rename
    std::string newParentId;     ///< of a move
};

/// All that is pending on a row, in the order of the operations above.
std::vector<Marker> markersOf(const DatabaseService::DriveDataTable& row);

bool isPending(const DatabaseService::DriveDataTable& row);

/// In the bin.
bool isInBin(const DatabaseService::DriveDataTable& row);
/// In the bin, or waiting for the bin or for the final deletion.
bool isDeleted(const DatabaseService::DriveDataTable& row);

/// The folder that contains the row once a pending move is done.
std::string folderToBe(const DatabaseService::DriveDataTable& row);

void takeMoveBack(DatabaseService::DriveDataTable& row);
/// Both the way to the bin and the final deletion.
void takeDeletionBack(DatabaseService::DriveDataTable& row);

} // namespace dbservice
