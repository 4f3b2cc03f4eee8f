#include "command.h"
#include "commands/commands.h"
#include "drive/drivefields.h"
#include "drive/drivetree.h"
#include "drive/listpage.h"
#include "stores/session.h"
#include "terminal/displaytext.h"
#include "terminal/failure.h"
#include "terminal/table.h"

#include <iostream>

namespace dbservice {

namespace {

struct StatOptions {
    std::string path;
    bool all = false;
};

struct Subtree {
    std::int64_t rows = 0;
    std::int64_t bytes = 0;
};

/// The rows that the library counts as a folder's, and their bytes, in one walk.
Subtree subtreeOf(Session& session, const std::string& id)
{
    Subtree subtree;
    session.driveAsItIs().run(
        "WITH RECURSIVE items(fileId, recycled, size) AS (SELECT fileId, recycled, size FROM DriveDataTable "
        "WHERE fileId = ?1 UNION ALL SELECT child.fileId, child.recycled, child.size FROM DriveDataTable AS child "
        "JOIN items ON child.parentId = items.fileId) SELECT count(*), sum(size) FROM items WHERE recycled = 0",
        {id}, [&](const Database::Row& row) {
            subtree = {row.number(0), row.number(1)};
        });
    return subtree;
}

int stat(Session& session, const StatOptions& options)
{
    DatabaseService::DriverDBProvider& drive = session.readDrive();
    DriveTree tree(drive);
    const DatabaseService::DriveDataTable row = tree.find(options.path);
    const std::string id = row.GetFileid();
    if (tree.isItsOwnAncestor(id)) {
        throw Failure("cannot count what is below " + id + ": the row is its own ancestor");
    }
    warnOfStrays(session, {row});
    const auto [rows, bytes] = subtreeOf(session, id);
    if (session.json()) {
        Json json = toJson(row);
        json["subtree"] = rows;
        json["subtreeBytes"] = bytes;
        std::cout << toLine(json) << '\n';
        return 0;
    }
    Table table = toTable(row, options.all);
    table.add({"subtree",
               counted(rows, "row", "rows") + ", " + counted(bytes, "byte", "bytes") + " (" + humanSize(bytes) + ")"});
    table.print(std::cout, Session::outputWidth());
    return 0;
}

} // namespace

Command statCommand()
{
    return {
        .name = "stat",
        .group = group::showDrive,
        .summary = "Show one row of the drive tree and the size of its subtree",
        .arguments = {argument<&StatOptions::path>("PATH", "Such as /Photos/2024 or id:ID; / is the root",
                                                   {.required = true}),
                      argument<&StatOptions::all>("--all", "Show the fields that are empty or 0 too")},
        .details = "The subtree counts the row itself and everything below it that is not in the bin.\n"
                   "With --json the keys are the stored columns, subtree and subtreeBytes.",
        .example = "dbservice stat /Photos/2024",
        .run = stat,
    };
}

} // namespace dbservice
