#include "drive/listpage.h"

#include "databaseservice/version.h"
#include "drive/drivefields.h"
#include "drive/drivetree.h"
#include "stores/nameindex.h"
#include "stores/session.h"
#include "terminal/displaytext.h"
#include "terminal/failure.h"
#include "terminal/table.h"

#include <algorithm>
#include <iostream>
#include <map>
#include <string_view>

namespace dbservice {

using namespace DatabaseService;

namespace {

const std::map<std::string, CLOUD_DB_SORT_TYPE> sorts{
    {"name", CLOUD_DB_SORT_NAME_ASC},         {"-name", CLOUD_DB_SORT_NAME_DESC},
    {"size", CLOUD_DB_SORT_SIZE_ASC},         {"-size", CLOUD_DB_SORT_SIZE_DESC},
    {"modified", CLOUD_DB_SORT_MODIFIED_ASC}, {"-modified", CLOUD_DB_SORT_MODIFIED_DESC},
    {"ext", CLOUD_DB_SORT_EXT_ASC},           {"-ext", CLOUD_DB_SORT_EXT_DESC},
};

} // namespace

Arguments pageOptions()
{
    return {argument<&PageOptions::offset>("--offset", "How many rows to leave out first", {.showsDefault = true}),
            argument<&PageOptions::count>("--count", "How many rows to show", {.showsDefault = true}),
            choice<&PageOptions::sort>(sortOption, sorts,
                                       "name, size, modified or ext (like kinds together), -name and so on for the "
                                       "reverse; equal rows come by name",
                                       {.showsDefault = true, .type = "ORDER"})};
}

Page childPage(CloudDriverDb& lists, const std::string& parentId, std::int64_t folders, std::int64_t files,
               const PageOptions& options)
{
    Page page{{}, folders + files, counted(folders, "folder", "folders") + ", " + counted(files, "file", "files")};
    // The library takes the numbers' bits as unsigned ones.
    if (options.offset < folders) {
        lists.QueryChildFolder(parentId, static_cast<int>(options.offset), static_cast<int>(options.count),
                               options.sort, page.rows);
    }
    if (page.rows.size() < options.count) {
        const std::int64_t offset = std::max<std::int64_t>(0, options.offset - folders);
        lists.QueryChildFile(parentId, static_cast<int>(offset),
                             static_cast<int>(options.count - static_cast<unsigned>(page.rows.size())), options.sort,
                             page.rows);
    }
    return page;
}

void showRows(const Session& session, const std::vector<DriveDataTable>& rows, TimeColumn time)
{
    if (session.json()) {
        for (const DriveDataTable& row : rows) {
            std::cout << toLine(toJson(row)) << '\n';
        }
        return;
    }
    const bool modified = time == TimeColumn::Modified;
    Table table({{"Size", Table::Align::Right}, {modified ? "Modified (UTC)" : "Recycled (UTC)"}, {"Name"}});
    for (const DriveDataTable& row : rows) {
        table.add({row.IsFolder() ? "-" : humanSize(row.GetSize()),
                   humanTime(modified ? row.GetModifiedTime() : row.GetRecycledTime()),
                   row.GetName() + (row.IsFolder() ? "/" : "")});
    }
    table.print(std::cout, Session::outputWidth());
}

namespace {

void warnOfNameOrder(Session& session)
{
    session.readDrive();
    if (examineNameIndex() == NameIndex::Disagrees) {
        session.reporter().warning(
            "rows may come in the wrong order, on the wrong page or not at all: the store's index of "
            "names is in another order than this build's (" +
            NameOrderVersion() + "); `dbservice reindex` brings it into this order");
    }
}

} // namespace

void warnOfStrays(Session& session, const std::vector<DriveDataTable>& rows)
{
    constexpr std::size_t told = 5;
    const std::vector<std::string> strays = DriveTree(session.readDrive()).strayFolders(rows);
    for (std::size_t i = 0; i < std::min(told, strays.size()); ++i) {
        session.reporter().warning(strays[i] + ", so that no path leads to what is in it");
    }
    if (strays.size() > told) {
        session.reporter().warning(
            counted(static_cast<std::int64_t>(strays.size() - told), "more folder is", "more folders are") +
            " like that");
    }
}

void showPage(Session& session, const Page& page, const PageOptions& options, TimeColumn time)
{
    warnOfNameOrder(session);
    const auto shown = static_cast<std::int64_t>(page.rows.size());
    const std::int64_t following = std::max<std::int64_t>(0, page.total - options.offset);
    if (shown != std::min<std::int64_t>(following, options.count)) {
        session.examineStore("list everything");
        throw Failure("cannot list everything: " + counted(shown, "row", "rows") + " came in place of " +
                      grouped(std::min<std::int64_t>(following, options.count)) +
                      "; another program writes to the store");
    }
    showRows(session, page.rows, time);
    if (!session.json()) {
        const std::string first = shown > 0 ? grouped(options.offset + std::int64_t{1}) + "-" : "";
        const std::string last = shown > 0 ? grouped(options.offset + shown) : "none";
        std::cout << first << last << " of " << grouped(page.total) << ": " << page.summary << '\n';
    }
    if (shown > 0 && shown < following) {
        session.reporter().note("more follows with --offset " + std::to_string(options.offset + shown));
    }
}

std::string idForLists(const std::string& id)
{
    constexpr std::string_view unfit{"'\0", 2};
    if (id.empty()) {
        throw Failure("cannot list a folder with an empty id");
    }
    if (id.find_first_of(unfit) != std::string::npos) {
        throw Failure("cannot list the folder id:" + id +
                      ": the id holds a quote or a zero byte, which the store's lists cannot ask for");
    }
    return id;
}

} // namespace dbservice
