#include "command.h"
#include "drive/driveedit.h"
#include "drive/drivemarkers.h"
#include "stores/session.h"

#include <string>

namespace dbservice {

using DatabaseService::DriveDataTable;
using DatabaseService::DriverDBProvider;

namespace {

DriveDataTable rowToRestore(DriveEdit& edit, const std::string& path)
{
    DriveDataTable row = edit.tree().find(path, DriveTree::Among::Deleted);
    if (!isDeleted(row)) {
        edit.refuse(path, "it is neither in the bin nor waiting for its deletion");
    }
    if (row.GetRestoreBatchId() != 0) {
        edit.refuse(path, "it waits for its return from the bin already");
    }
    if (isInBin(row) && row.GetDirectlyRecycled() == 0) {
        edit.refuse(path, "it went into the bin with a folder above it; restore that one");
    }
    edit.requireNothingAboveDeleted(row, path);
    if (isInBin(row) || row.GetSoftDelBatchId() != 0) {
        edit.requireFreeName(folderToBe(row), row.GetName(), path);
    }
    return row;
}

int restore(Session& session, const std::string& path)
{
    DriveEdit edit(session, "restore");
    DriveDataTable row = rowToRestore(edit, path);
    if (row.GetSoftDelBatchId() != 0 || row.GetHardDelBatchId() != 0) {
        takeDeletionBack(row);
        edit.write(&DriverDBProvider::UpdateDriveOperData, {row});
    }
    if (!isInBin(row)) {
        edit.show("the pending deletion is taken back: lists show the row again as they did before");
        return 0;
    }
    row.SetLocalRestore(1);
    row.SetRestoreBatchId(edit.batchId());
    row.SetRestoreTime(edit.time());
    edit.write(&DriverDBProvider::RestoreDriveDataById, {row});
    edit.show("the bin no longer shows the row; its folder does once the client has synchronised");
    return 0;
}

} // namespace

Command restoreCommand()
{
    return {
        .name = "restore",
        .group = group::changeDrive,
        .summary = "Bring back a file or folder of the drive tree that was deleted",
        .arguments = {argument<std::string>("PATH", "Where it was, such as /Photos/2024, or id:ID",
                                            {.required = true})},
        .details = "A deletion that still waits for the client's synchronisation, final or not, is taken back: the row "
                   "is in its\nlists again at once. A row in the bin leaves the bin's list at once and is in its "
                   "folder's list once the client\nhas synchronised. What went into the bin along with a folder "
                   "comes back with that folder only.\nPrints the operation as `pending` does.",
        .example = "dbservice restore /Photos/2024",
        .run = restore,
    };
}

} // namespace dbservice
