#include "clientservices/globalparamwrapper.h"
#include "command.h"
#include "drive/listpage.h"
#include "stores/session.h"
#include "terminal/displaytext.h"

#include <string>

namespace dbservice {

namespace {

struct RecycleOptions {
    PageOptions page;
    bool expired = false;
};

/// Before this moment, in seconds since 1970 UTC, what was recycled has expired.
std::int64_t oldestKept()
{
    GlobalParamWrapper& client = *GlobalParamWrapper::GetInstance();
    return client.GetServerTime() - client.GetRecyFileAutoDelInterval() * std::int64_t{86400};
}

// The library counts expired folders among the bin's, and has no count of what has expired. Both numbers are its lists'
// own conditions.

constexpr const char* inBin = "SELECT COUNT(*) FROM DriveDataTable WHERE directlyRecycled = 1 AND restoreBatchId = 0 "
                              "AND hardDelBatchId = 0 AND recycledTime ";
constexpr const char* listedFolder = " AND mimeType = 'application/vnd.tessix-apps.folder' "
                                     "AND (needToDisplay = 0 OR needToDisplay = 1)";

int recycle(Session& session, const RecycleOptions& options)
{
    // The clock stands still from here on, so that all that follows is about the same moment.
    GlobalParamWrapper::GetInstance()->SetServerTime(GlobalParamWrapper::GetInstance()->GetServerTime());
    const std::int64_t time = oldestKept();
    const std::string border = std::to_string(time);
    std::string countExpired = inBin + ("<= " + border);
    std::string countFolders = inBin + ("> " + border + listedFolder);
    const int expired = session.readDrive().GetCountBySelectSQL(countExpired);
    const int folders = session.readDrive().GetCountBySelectSQL(countFolders);
    DatabaseService::CloudDriverDb& lists = session.readLists();

    Page page;
    if (options.expired) {
        page.total = expired;
        page.summary = "recycled at " + humanTime(time) + " UTC or before";
        lists.QueryRecycleExpiredFile(static_cast<int>(options.page.offset), static_cast<int>(options.page.count), time,
                                      page.rows);
    } else {
        DatabaseService::int64 ignoredFolders = 0;
        DatabaseService::int64 files = 0;
        lists.GetRecycleChildNumber(ignoredFolders, files);
        page = childPage(lists, {}, folders, files, options.page);
        page.summary += "; " + grouped(expired) + " more expired";
    }
    showPage(session, page, options.page, TimeColumn::Recycled, Beside::Paths);
    return 0;
}

} // namespace

Command recycleCommand()
{
    return {
        .name = "recycle",
        .group = group::showDrive,
        .summary = "List the recycle bin, page by page",
        .arguments = {within<&RecycleOptions::page>(pageOptions()),
                      argument<&RecycleOptions::expired>(
                          "--expired", "List what has been in it for longer than it is kept, unsorted",
                          {.excludes = sortOption})},
        .details =
            "Shows what the user put there, folders first, without what went along with a folder. Rows that wait "
            "for\na restore or a final deletion are left out. A row is kept for 30 days.\n"
            "With --json each line is a row with its stored columns, and its path.",
        .example = "dbservice recycle --offset 100",
        .run = recycle,
    };
}

} // namespace dbservice
