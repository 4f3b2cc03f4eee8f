#include "command.h"
#include "drive/driveedit.h"
#include "drive/drivemarkers.h"
#include "stores/session.h"

#include <string>

namespace dbservice {

namespace {

struct RenameOptions {
    std::string path;
    std::string name;
};

int rename(Session& session, const RenameOptions& options)
{
    DriveEdit edit(session, "rename");
    if (!isName(options.name)) {
        edit.refuse(options.path,
                    "\"" + options.name + "\" is no name; it takes some UTF-8 text without a slash, not . or ..");
    }
    DatabaseService::DriveDataTable row = edit.rowToChange(options.path);
    edit.requireFreeName(folderToBe(row), options.name, options.path);
    row.SetName(options.name); // lists show this one
    row.SetRenameName(options.name);
    row.SetRenameBatchId(edit.batchId());
    row.SetRenameTime(edit.time());
    edit.write(&DatabaseService::DriverDBProvider::RenameDriveDataById, {row});
    edit.show("lists show the new name from now on");
    return 0;
}

} // namespace

Command renameCommand()
{
    return {
        .name = "rename",
        .group = group::changeDrive,
        .summary = "Give a file or folder of the drive tree another name",
        .arguments = {argument<&RenameOptions::path>("PATH", "Such as /Photos/2024 or id:ID", {.required = true}),
                      argument<&RenameOptions::name>("NEWNAME", "A name only; `mv` takes to another folder",
                                                     {.required = true})},
        .details = "Lists show and sort by the new name at once, and paths go by it; the cloud has the old one until "
                   "the client\nhas synchronised. Class and type stay what they are. Nothing is renamed on disk, and "
                   "a scan keeps the new name.\nPrints the operation as `pending` does.",
        .example = "dbservice rename /Photos/2024 Holidays",
        .run = rename,
    };
}

} // namespace dbservice
