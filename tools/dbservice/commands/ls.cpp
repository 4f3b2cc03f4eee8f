#include "command.h"
#include "drive/drivetree.h"
#include "drive/listpage.h"
#include "stores/session.h"

#include <vector>

namespace dbservice {

namespace {

struct LsOptions {
    std::string path = "/";
    PageOptions page;
    bool all = false;
};

int ls(Session& session, const LsOptions& options)
{
    const DriveTree::Place place = DriveTree(session.readDrive()).place(options.path);
    if (!place.isFolder()) {
        warnOfStrays(session, {place.row});
        showRows(session, {place.row}, TimeColumn::Modified, options.all ? Beside::Hidden : Beside::Nothing);
        return 0;
    }
    const std::string id = idForLists(place.id);
    DatabaseService::CloudDriverDb& lists = session.readLists();
    const std::int64_t folders = lists.GetSubFolderNumber(id);
    const std::int64_t files = lists.GetSubFileNumber(id);
    const Page page = options.all ? wholeFolderPage(session, id, folders + files, options.page)
                                  : childPage(lists, id, folders, files, options.page);
    warnOfStrays(session, place.row.Empty() ? page.rows : std::vector{place.row});
    showPage(session, page, options.page, TimeColumn::Modified, options.all ? Beside::Hidden : Beside::Nothing);
    return 0;
}

} // namespace

Command lsCommand()
{
    return {
        .name = "ls",
        .group = group::showDrive,
        .summary = "List a folder of the drive tree, page by page",
        .arguments = {argument<&LsOptions::path>("PATH", "Such as /Photos/2024 or id:ID; / is the root",
                                                 {.showsDefault = true}),
                      argument<&LsOptions::all>("--all", "Show the rows that the client's lists hide, too, and why"),
                      within<&LsOptions::page>(pageOptions())},
        .details = "Folders come ahead of files, each in the order asked for, as one list with one --offset. Rows are "
                   "left out that the client's lists "
                   "hide:\nin the bin, on their way there or to another folder, or not to be displayed.\n"
                   "Times are UTC, sizes in units of 1024 bytes.\nWith --json each line is a row with its stored "
                   "columns: sizes in bytes, times as they are stored. With --all it has the reasons as hidden.",
        .example = "dbservice ls /Photos/2024 --sort -size --count 20",
        .run = ls,
    };
}

} // namespace dbservice
