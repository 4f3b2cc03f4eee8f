#include "drive/listpage.h"

#include "databaseservice/databasebindparameter.h"
#include "databaseservice/version.h"
#include "drive/drivefields.h"
#include "drive/drivetree.h"
#include "drive/hiddenrows.h"
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

namespace {

/// As the library orders its lists.
std::string orderOf(CLOUD_DB_SORT_TYPE sort)
{
    std::string name = "name COLLATE NameCompare";
    switch (sort) {
    case CLOUD_DB_SORT_MODIFIED_ASC:
        return "modifiedTime, " + name;
    case CLOUD_DB_SORT_MODIFIED_DESC:
        return "modifiedTime DESC, " + name;
    case CLOUD_DB_SORT_SIZE_ASC:
        return "size, " + name;
    case CLOUD_DB_SORT_SIZE_DESC:
        return "size DESC, " + name;
    case CLOUD_DB_SORT_NAME_DESC:
        return name + " DESC";
    case CLOUD_DB_SORT_NAME_ASC:
        return name;
    case CLOUD_DB_SORT_EXT_ASC:
        return "fileExtSign, " + name;
    case CLOUD_DB_SORT_EXT_DESC:
        return "fileExtSign DESC, " + name;
    }
    return name;
}

std::string joined(const std::vector<std::string>& reasons)
{
    std::string all;
    for (const std::string& reason : reasons) {
        all += (all.empty() ? "" : "; ") + reason;
    }
    return all;
}

} // namespace

Page wholeFolderPage(Session& session, const std::string& parentId, std::int64_t listed, const PageOptions& options)
{
    Page page;
    page.total = session.readLists().GetSubAllNumber(parentId);
    page.summary = grouped(listed) + " in its list, " + grouped(page.total - listed) + " hidden";
    DatabaseBindParameter bind;
    bind.Bind(parentId, ":parentId");
    page.rows = session.readDrive().GetDriveDataByWhereSql(
        "parentId = :parentId ORDER BY mimeType IS NOT '" + std::string(DriveDataTable::folderMimeType) + "', " +
            orderOf(options.sort) + " LIMIT " + std::to_string(options.offset) + ", " + std::to_string(options.count),
        bind);
    return page;
}

void showRows(Session& session, const std::vector<DriveDataTable>& rows, TimeColumn time, Beside beside)
{
    const bool hasPaths = beside == Beside::Paths || beside == Beside::PathsAndHidden;
    const bool hasHidden = beside == Beside::Hidden || beside == Beside::PathsAndHidden;
    const bool modified = time == TimeColumn::Modified;
    const std::vector<std::string> paths =
        hasPaths ? DriveTree(session.readDrive()).pathsOf(rows) : std::vector<std::string>();
    std::vector<std::string> ids;
    ids.reserve(rows.size());
    for (const DriveDataTable& row : rows) {
        ids.push_back(row.GetFileid());
    }
    HiddenRows hidden = hasHidden ? hiddenRows(session, ids) : HiddenRows();
    std::vector<Table::Column> columns{
        {"Size", Table::Align::Right}, {modified ? "Modified (UTC)" : "Recycled (UTC)"}, {hasPaths ? "Path" : "Name"}};
    if (hasHidden) {
        columns.push_back({"Hidden, since it"});
    }
    Table table(std::move(columns));
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const DriveDataTable& row = rows[i];
        if (session.json()) {
            Json json = toJson(row);
            if (hasPaths) {
                json["path"] = paths[i];
            }
            if (hasHidden) {
                json["hidden"] = hidden[ids[i]];
            }
            std::cout << toLine(json) << '\n';
            continue;
        }
        std::string name = hasPaths ? paths[i] : row.GetName();
        name += row.IsFolder() && !name.ends_with('/') ? "/" : "";
        table.add({row.IsFolder() ? "-" : humanSize(row.GetSize()),
                   humanTime(modified ? row.GetModifiedTime() : row.GetRecycledTime()), std::move(name),
                   hasHidden ? joined(hidden[ids[i]]) : ""});
    }
    if (!session.json()) {
        table.print(std::cout, Session::outputWidth());
    }
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

void showPage(Session& session, const Page& page, const PageOptions& options, TimeColumn time, Beside beside)
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
    showRows(session, page.rows, time, beside);
    if (!session.json()) {
        std::cout << pageNumbers(options.offset, shown, page.total) << ": " << page.summary << '\n';
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
