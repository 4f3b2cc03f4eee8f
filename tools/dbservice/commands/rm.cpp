#include "command.h"
#include "drive/driveedit.h"
#include "drive/drivemarkers.h"
#include "stores/session.h"

#include <algorithm>
#include <string>
#include <vector>

namespace dbservice {

using DatabaseService::DriveDataTable;
using DatabaseService::DriverDBProvider;

namespace {

struct RmOptions {
    std::vector<std::string> paths;
    bool final = false;
};

DriveDataTable markedForBin(DriveEdit& edit, const std::string& path)
{
    DriveDataTable row = edit.rowToChange(path);
    row.SetSoftDelete(1);
    row.SetSoftDeleteSrcPath(edit.tree().pathsOf({row}).front());
    row.SetSoftDelBatchId(edit.batchId());
    row.SetSoftDelTime(edit.time());
    return row;
}

/// Rows in the bin, or on their way there, may go for good as well.
DriveDataTable markedForDeletion(DriveEdit& edit, const std::string& path)
{
    DriveDataTable row = edit.tree().find(path, DriveTree::Among::All);
    if (row.GetParentId().empty()) {
        edit.refuse(path, "it is the root");
    }
    if (row.GetHardDelBatchId() != 0) {
        edit.refuse(path, "it waits for its final deletion already");
    }
    if (row.GetRestoreBatchId() != 0) {
        edit.refuse(path, "it waits for its return from the bin");
    }
    row.SetHardDelete(1);
    row.SetHardDelBatchId(edit.batchId());
    row.SetHardDelTime(edit.time());
    return row;
}

int rm(Session& session, const RmOptions& options)
{
    DriveEdit edit(session, "delete");
    std::vector<DriveDataTable> rows;
    for (const std::string& path : options.paths) {
        DriveDataTable row = options.final ? markedForDeletion(edit, path) : markedForBin(edit, path);
        if (std::none_of(rows.begin(), rows.end(),
                         [&](const DriveDataTable& other) { return other.GetFileid() == row.GetFileid(); })) {
            rows.push_back(std::move(row));
        }
    }
    edit.write(options.final ? &DriverDBProvider::HardDeleteDriveDataById : &DriverDBProvider::SoftDeleteDriveDataById,
               rows);
    edit.show(options.final ? "the bin no longer shows these rows; lists of folders show theirs until the client has "
                              "synchronised"
                            : "lists no longer show these rows; the bin does once the client has synchronised");
    return 0;
}

} // namespace

Command rmCommand()
{
    return {
        .name = "rm",
        .group = group::changeDrive,
        .summary = "Put files and folders of the drive tree into the recycle bin",
        .arguments = {argument<&RmOptions::paths>("PATH", "Such as /Photos/2024 or id:ID", {.required = true}),
                      argument<&RmOptions::final>("--final", "Delete them for good, what is in the bin already too")},
        .details = "The rows leave their lists, views and counts at once. The bin shows them once the client has "
                   "synchronised;\n`restore` takes the deletion back until then. What is below a folder keeps its "
                   "state and goes along with it: `view`\nand the totals of `count` show it until then.\n"
                   "With --final rows in the bin leave it at once. Other rows stay in their lists until the client has "
                   "synchronised.\nOf rows with one path it takes the one outside the bin. If one of several PATHs "
                   "is refused, none is changed.\nNothing is deleted on disk, and a scan leaves the rows alone. "
                   "Prints the operations as `pending` does.",
        .example = "dbservice rm /Photos/2023 /Photos/2024",
        .run = rm,
    };
}

} // namespace dbservice
