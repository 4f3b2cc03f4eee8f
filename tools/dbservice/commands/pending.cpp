#include "command.h"
#include "drive/drivetree.h"
#include "drive/listpage.h"
#include "drive/pendinglist.h"
#include "stores/session.h"
#include "terminal/displaytext.h"

#include <iostream>
#include <set>

namespace dbservice {

using DatabaseService::DriveDataTable;

namespace {

int pending(Session& session)
{
    DatabaseService::DriverDBProvider& drive = session.readDrive();
    const std::vector<PendingOperation> operations = pendingOperations(drive);
    std::vector<DriveDataTable> rows;
    std::set<std::string> ids;
    for (const PendingOperation& operation : operations) {
        if (ids.insert(operation.row.GetFileid()).second) {
            rows.push_back(operation.row);
        }
    }
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
