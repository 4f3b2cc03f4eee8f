#include "command.h"
#include "databaseservice/databasebindparameter.h"
#include "drive/drivetree.h"
#include "drive/listpage.h"
#include "drive/pendinglist.h"
#include "stores/session.h"
#include "terminal/displaytext.h"

#include <algorithm>
#include <array>
#include <iostream>
#include <string_view>
#include <tuple>

namespace dbservice {

using DatabaseService::DriveDataTable;

namespace {

constexpr const char* anyMarker = "newBatchId <> 0 OR uploadBatchId <> 0 OR renameBatchId <> 0 OR moveBatchId <> 0 OR "
                                  "softDelBatchId <> 0 OR hardDelBatchId <> 0 OR restoreBatchId <> 0";

constexpr std::array<std::string_view, 7> order{"new", "upload", "rename", "move", "bin", "final", "restore"};

/// By operation, then by the number that ties the rows of one action together, then by name.
bool comesFirst(const PendingOperation& left, const PendingOperation& right)
{
    const auto key = [](const PendingOperation& operation) {
        const auto place = std::find(order.begin(), order.end(), operation.marker.operation);
        return std::tuple(place, operation.marker.batchId, operation.row.GetName());
    };
    return key(left) < key(right);
}

int pending(Session& session)
{
    DatabaseService::DriverDBProvider& drive = session.readDrive();
    DatabaseService::DatabaseBindParameter none;
    std::vector<PendingOperation> operations;
    const std::vector<DriveDataTable> rows = drive.GetDriveDataByWhereSql(anyMarker, none);
    for (const DriveDataTable& row : rows) {
        for (const Marker& marker : markersOf(row)) {
            operations.push_back({row, marker});
        }
    }
    std::stable_sort(operations.begin(), operations.end(), comesFirst);
    warnOfStrays(session, rows);
    DriveTree tree(drive);
    showPending(session, tree, operations);
    if (!session.json()) {
        std::cout << counted(static_cast<std::int64_t>(operations.size()), "operation", "operations") << " on "
                  << counted(static_cast<std::int64_t>(rows.size()), "row", "rows") << '\n';
    }
    return 0;
}

} // namespace

Command pendingCommand()
{
    return {
        .name = "pending",
        .group = group::showDrive,
        .summary = "List what the client has yet to carry to the cloud",
        .details =
            "new: a folder to be made; upload: a file; rename; move; bin: into the recycle bin; final: deletion "
            "for good;\nrestore: out of the bin. A row is listed once for each operation that waits for it. Rows "
            "of one action of the\nuser's have one batch. Moved rows have the path that they leave.\n"
            "With --json each line is the row with its stored columns, and operation, path, batchId, time and "
            "target:\nthe new name, or the folder that a move leads to. Times are taken for seconds since 1970 "
            "UTC, as this tool\nwrites them; what another client has written may be in another unit.",
        .example = "dbservice --json pending",
        .run = pending,
    };
}

} // namespace dbservice
