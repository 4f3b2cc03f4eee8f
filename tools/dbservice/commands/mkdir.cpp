#include "command.h"
#include "drive/driveedit.h"
#include "stores/session.h"

#include <random>
#include <string>

namespace dbservice {

namespace {

/// 32 hexadecimal digits, as long as the ids of a scan. The cloud gives the folder another id later.
std::string freshId()
{
    std::random_device random;
    std::string id;
    for (int i = 0; i < 32; ++i) {
        id += "0123456789abcdef"[random() % 16];
    }
    return id;
}

int makeFolder(Session& session, const std::string& path)
{
    DriveEdit edit(session, "make");
    const std::optional<SplitPath> split = splitPath(path);
    if (!split) {
        edit.refuse(path, "the path does not end in a name that a folder can have");
    }
    const DriveTree::Place parent = edit.folderToFill(split->folder, path);
    edit.requireFreeName(parent.id, split->name, path);

    DatabaseService::DriveDataTable row;
    row.SetFileid(freshId());
    row.SetName(split->name);
    row.SetParentId(parent.id);
    row.SetMimeType(DatabaseService::DriveDataTable::folderMimeType);
    row.SetCreatedTime(edit.time());
    row.SetModifiedTime(edit.time());
    row.SetNewBatchId(edit.batchId());
    row.SetCloudContentStatus(1);
    edit.write(&DatabaseService::DriverDBProvider::InsertDriveDataBatch, {row});
    edit.show("the folder is in its list from now on");
    return 0;
}

} // namespace

Command mkdirCommand()
{
    return {
        .name = "mkdir",
        .group = group::changeDrive,
        .summary = "Make a folder in the drive tree",
        .arguments = {argument<std::string>("PATH", "Such as /Photos/new or id:ID/new; the folder above must be there",
                                            {.required = true})},
        .details = "The folder is in its list at once, and waits to be made in the cloud. Nothing is made on disk.\n"
                   "Prints the operation as `pending` does.",
        .example = "dbservice mkdir /Photos/new",
        .run = makeFolder,
    };
}

} // namespace dbservice
