#include "command.h"
#include "drive/drivefields.h"
#include "drive/drivetree.h"
#include "drive/fileclass.h"
#include "drive/listpage.h"
#include "stores/session.h"
#include "terminal/displaytext.h"
#include "terminal/failure.h"
#include "terminal/table.h"

#include <iostream>

namespace dbservice {

using DatabaseService::CloudDriverDb;
using DatabaseService::int64;

namespace {

/// Lines of a table, and the same numbers under their keys.
class Counts {
public:
    void add(const char* key, const std::string& text, int64 rows) { add(m_json[key], text, rows); }
    void add(const char* group, const std::string& key, const std::string& text, int64 rows)
    {
        add(m_json[group][key], "  " + text, rows);
    }

    void show(const Session& session) const
    {
        if (session.json()) {
            std::cout << toLine(m_json) << '\n';
        } else {
            m_table.print(std::cout, Session::outputWidth());
        }
    }

private:
    void add(Json& place, const std::string& text, int64 rows)
    {
        place = rows;
        m_table.add({text, grouped(rows)});
    }

    Table m_table{{{"What"}, {"Rows", Table::Align::Right}}};
    Json m_json;
};

void countAll(Session& session, Counts& counts)
{
    const int rows = session.readDrive().CountDriverData();
    CloudDriverDb& lists = session.readLists();
    const int64 total = lists.GetTotalNumber();
    const int64 folders = lists.GetTotalFolderNumber();
    if (total > rows || folders > total) {
        session.examineStore("count the rows");
    }
    counts.add("rows", "in the store", rows);
    counts.add("total", "outside the bin", total);
    counts.add("folders", "  folders", folders);
    counts.add("files", "  files", total - folders);
    for (const KnownClass& known : fileClasses) {
        const std::string number = std::to_string(static_cast<int>(known.number));
        counts.add("classIndex", number, "  class " + number + ", " + known.name, lists.GetTypeTotalNumber(known.view));
    }
    counts.add("recycled", "marked as recycled", lists.GetRecycleTotalNumber());
    counts.add("recycledFolders", "  folders", lists.GetRecycleFolderNumber());
    int64 binFolders = 0;
    int64 binFiles = 0;
    lists.GetRecycleChildNumber(binFolders, binFiles);
    counts.add("bin", "put into the bin by the user", lists.GetTypeTotalNumber(DatabaseService::CLOUD_DB_VIEW_RECYCLE));
    counts.add("binFolders", "  folders, expired ones too", binFolders);
    counts.add("binFiles", "  files, not expired", binFiles);
}

void countFolder(const std::string& id, CloudDriverDb& lists, Counts& counts)
{
    counts.add("all", "directly in the folder", lists.GetSubAllNumber(id));
    counts.add("folders", "  folders in its list", lists.GetSubFolderNumber(id));
    counts.add("files", "  files in its list", lists.GetSubFileNumber(id));
    int64 folders = 0;
    int64 files = 0;
    lists.GetFolderChildNumber(id, folders, files);
    counts.add("listed", "  in its list", folders + files);
}

int count(Session& session, const std::string& path)
{
    Counts counts;
    if (path.empty()) {
        countAll(session, counts);
    } else {
        const DriveTree::Place place = DriveTree(session.readDrive()).place(path);
        if (!place.isFolder()) {
            throw Failure("cannot count what is in " + path + ": it is not a folder");
        }
        countFolder(idForLists(place.id), session.readLists(), counts);
    }
    counts.show(session);
    return 0;
}

} // namespace

Command countCommand()
{
    return {
        .name = "count",
        .group = group::showDrive,
        .summary = "Show how many rows the drive store or one folder holds",
        .arguments = {argument<std::string>("PATH",
                                            "Count what is directly in this folder, such as /Photos/2024 or id:ID")},
        .details = "Outside the bin are rows that are neither in it nor on their way there. Classes count files that "
                   "lists show:\n2 pictures, 4 videos, 8 audio, 16 documents, 32 everything else.",
        .example = "dbservice count /Photos/2024",
        .run = count,
    };
}

} // namespace dbservice
