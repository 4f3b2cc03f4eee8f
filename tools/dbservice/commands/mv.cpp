#include "command.h"
#include "drive/driveedit.h"
#include "drive/drivemarkers.h"
#include "stores/session.h"

#include <algorithm>
#include <string>

namespace dbservice {

using DatabaseService::DriveDataTable;
using DatabaseService::DriverDBProvider;

namespace {

struct MvOptions {
    std::string path;
    std::string folder;
};

int move(Session& session, const MvOptions& options)
{
    DriveEdit edit(session, "move");
    DriveDataTable row = edit.rowToChange(options.path);
    const DriveTree::Place target = edit.folderToFill(options.folder, options.path);
    const std::vector<DriveDataTable> above = edit.tree().foldersToBe(target.row);
    if (target.id == row.GetFileid() || std::any_of(above.begin(), above.end(), [&](const DriveDataTable& folder) {
            return folder.GetFileid() == row.GetFileid();
        })) {
        edit.refuse(options.path, options.folder + " is the folder itself or below it, now or after a pending move");
    }
    if (target.id == folderToBe(row)) {
        edit.refuse(options.path, "it is in " + options.folder + " already, or waits to be moved there");
    }
    edit.requireFreeName(target.id, row.GetName(), options.path);

    if (target.id == row.GetParentId()) {
        takeMoveBack(row);
        edit.write(&DriverDBProvider::UpdateDriveOperData, {row});
        edit.show("the pending move is taken back: the row is in its folder's list again");
        return 0;
    }
    row.SetMoveParentId(target.id);
    row.SetMoveBatchId(edit.batchId());
    row.SetMoveTime(edit.time());
    edit.write(&DriverDBProvider::MoveDriveDataToParent, {row});
    edit.show("no folder lists the row from now on; the new one does once the client has synchronised");
    return 0;
}

} // namespace

Command mvCommand()
{
    return {
        .name = "mv",
        .group = group::changeDrive,
        .summary = "Move a file or folder of the drive tree to another folder",
        .arguments = {argument<&MvOptions::path>("PATH", "Such as /Photos/2024 or id:ID", {.required = true}),
                      argument<&MvOptions::folder>("FOLDER", "The folder that takes it in; / is the root",
                                                   {.required = true})},
        .details = "The row leaves its folder's list and count at once. The new folder lists it once the client has "
                   "synchronised;\nuntil then no folder does, while `view` and the totals of `count` still show it, "
                   "and its path stays the old one.\nMoving it back to the folder that it comes from takes the "
                   "pending move back. Nothing is moved on disk.\nPrints the operation as `pending` does.",
        .example = "dbservice mv /Photos/2024 /Archive",
        .run = move,
    };
}

} // namespace dbservice
