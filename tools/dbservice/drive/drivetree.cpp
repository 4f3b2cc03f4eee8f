#include "drive/drivetree.h"

#include "drive/drivemarkers.h"
#include "platform/text.h"
#include "terminal/failure.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <tuple>
#include <unordered_set>
#include <utility>

namespace dbservice {

using DatabaseService::DatabaseBindParameter;
using DatabaseService::DriveDataTable;

namespace {

constexpr std::string_view idPrefix = "id:";

/// The names between the slashes, with "." and ".." resolved.
std::vector<std::string> namesIn(const std::string& path)
{
    std::vector<std::string> names;
    for (std::size_t start = 0; start < path.size();) {
        const std::size_t end = std::min(path.find('/', start), path.size());
        const std::string name = path.substr(start, end - start);
        start = end + 1;
        if (name == "..") {
            if (!names.empty()) {
                names.pop_back();
            }
        } else if (!name.empty() && name != ".") {
            names.push_back(name);
        }
    }
    return names;
}

DriveDataTable theOne(std::vector<DriveDataTable> rows, const std::string& what)
{
    if (rows.empty()) {
        throw NotFound("cannot find " + what + " in the store");
    }
    if (rows.size() > 1) {
        std::string ids;
        for (const DriveDataTable& row : rows) {
            ids += " id:" + row.GetFileid();
        }
        throw Failure("cannot tell which row is meant by " + what + ", name one of these:" + ids);
    }
    return std::move(rows.front());
}

/// The lower, the sooner a path means this row.
int rank(const DriveDataTable& row)
{
    constexpr int listed = 0;
    constexpr int leaving = 1;
    constexpr int inBin = 2;
    if (isInBin(row)) {
        return inBin;
    }
    return row.GetSoftDelBatchId() != 0 || row.GetMoveBatchId() != 0 ? leaving : listed;
}

void keepLowestRank(std::vector<DriveDataTable>& rows)
{
    const auto lowest = std::min_element(rows.begin(), rows.end(),
                                         [](const auto& left, const auto& right) { return rank(left) < rank(right); });
    if (lowest != rows.end()) {
        std::erase_if(rows, [kept = rank(*lowest)](const DriveDataTable& row) { return rank(row) != kept; });
    }
}

} // namespace

DriveDataTable DriveTree::find(const std::string& path, Among among)
{
    Place found = walk(path, among);
    if (found.row.Empty()) {
        throw NotFound("cannot find a row with the id " + found.id + " in the store");
    }
    return std::move(found.row);
}

DriveTree::Place DriveTree::place(const std::string& path)
{
    return walk(path, Among::Kept);
}

DriveTree::Place DriveTree::walk(const std::string& path, Among among)
{
    Place place;
    std::string walked;
    std::vector<std::string> names;
    if (path.starts_with(idPrefix)) {
        const std::string id = path.substr(idPrefix.size());
        if (std::optional<Place> whole = placeOf(id)) {
            return std::move(*whole);
        }
        const std::string first = id.substr(0, id.find('/'));
        std::optional<Place> start = placeOf(first);
        if (!start) {
            throw NotFound("cannot find a row with the id " + id + " in the store");
        }
        place = std::move(*start);
        walked = "id:" + first;
        names = namesIn(id.substr(first.size()));
    } else {
        place.row = root();
        place.id = place.row.GetFileid();
        names = namesIn(path);
    }
    for (std::size_t i = 0; i < names.size(); ++i) {
        walked += "/" + names[i];
        const Among here = among == Among::Deleted && i + 1 < names.size() ? Among::All : among;
        place.row = child(place.id, names[i], here, walked);
        place.id = place.row.GetFileid();
    }
    return place;
}

DriveDataTable DriveTree::child(const std::string& folderId, const std::string& name, Among among,
                                const std::string& path)
{
    DatabaseBindParameter bind;
    bind.Bind(folderId, ":parentId");
    bind.Bind(name, ":name");
    std::vector<DriveDataTable> rows = m_drive.GetDriveDataByWhereSql("parentId = :parentId AND name = :name", bind);
    std::erase_if(rows, [among](const DriveDataTable& row) {
        return (among == Among::Kept && isInBin(row)) || (among == Among::Deleted && !isDeleted(row));
    });
    if (among != Among::Deleted) {
        keepLowestRank(rows);
    }
    return theOne(std::move(rows), path);
}

std::optional<DriveTree::Place> DriveTree::placeOf(const std::string& id)
{
    DriveDataTable row = m_drive.GetDriveDataById(id);
    if (!row.Empty()) {
        return Place{std::move(row), id};
    }
    DatabaseBindParameter bind;
    bind.Bind(id, ":parentId");
    const std::vector<DriveDataTable> child = m_drive.GetDriveDataByWhereSql("parentId = :parentId LIMIT 1", bind);
    return id.empty() || child.empty() ? std::nullopt : std::optional(Place{{}, child.front().GetParentId()});
}

std::vector<DriveDataTable> DriveTree::rowsById(const std::vector<std::string>& ids, const std::string& condition)
{
    return rowsWhere("fileId", ids, condition);
}

std::vector<DriveDataTable> DriveTree::childrenOf(const std::vector<std::string>& ids, const std::string& condition)
{
    return rowsWhere("parentId", ids, condition);
}

bool DriveTree::isItsOwnAncestor(const std::string& id)
{
    DatabaseBindParameter bind;
    bind.Bind(id, ":fileId");
    return !m_drive
                .GetDriveDataByWhereSql("fileId = :fileId AND fileId IN (WITH RECURSIVE above(id) AS ("
                                        "SELECT parentId FROM DriveDataTable WHERE fileId = :fileId "
                                        "UNION SELECT DriveDataTable.parentId FROM DriveDataTable JOIN above "
                                        "ON DriveDataTable.fileId = above.id) SELECT id FROM above)",
                                        bind)
                .empty();
}

std::vector<DriveDataTable> DriveTree::rowsWhere(const std::string& column, const std::vector<std::string>& values,
                                                 const std::string& condition)
{
    constexpr std::size_t atOnce = 400;
    std::vector<DriveDataTable> rows;
    for (std::size_t start = 0; start < values.size(); start += atOnce) {
        DatabaseBindParameter bind;
        std::string where = column + " IN (";
        for (std::size_t i = start; i < std::min(values.size(), start + atOnce); ++i) {
            const std::string parameter = ":v" + std::to_string(i - start);
            where += (i == start ? "" : ", ") + parameter;
            bind.Bind(values[i], parameter);
        }
        std::vector<DriveDataTable> found =
            m_drive.GetDriveDataByWhereSql(where + ")" + (condition.empty() ? "" : " AND ") + condition, bind);
        if (rows.empty()) {
            rows = std::move(found);
        } else {
            rows.insert(rows.end(), std::make_move_iterator(found.begin()), std::make_move_iterator(found.end()));
        }
    }
    return rows;
}

DriveTree::Folders DriveTree::foldersAbove(const std::vector<DriveDataTable>& rows)
{
    Folders folders;
    std::unordered_set<std::string> asked;
    std::vector<std::string> wanted;
    const auto want = [&](const std::string& id) {
        if (!id.empty() && asked.insert(id).second) {
            wanted.push_back(id);
        }
    };
    for (const DriveDataTable& row : rows) {
        want(row.GetParentId());
    }
    while (!wanted.empty()) {
        const std::vector<DriveDataTable> found = rowsById(std::exchange(wanted, {}));
        for (const DriveDataTable& row : found) {
            folders.try_emplace(row.GetFileid(), row.GetName(), row.GetParentId());
            want(row.GetParentId());
        }
    }
    return folders;
}

std::vector<std::string> DriveTree::pathsOf(const std::vector<DriveDataTable>& rows)
{
    const Folders folders = foldersAbove(rows);
    std::vector<std::string> paths;
    paths.reserve(rows.size());
    for (const DriveDataTable& row : rows) {
        std::string path;
        std::string name = row.GetName();
        std::string parent = row.GetParentId();
        std::size_t steps = 0; // more than there are folders only in a circle
        while (!parent.empty()) {
            path.insert(0, "/" + name);
            const auto above = folders.find(parent);
            if (above == folders.end() || ++steps > folders.size()) {
                path.insert(0, "id:" + parent);
                break;
            }
            std::tie(name, parent) = above->second;
        }
        paths.push_back(path.empty() ? "/" : path);
    }
    return paths;
}

std::vector<std::string> DriveTree::strayFolders(const std::vector<DriveDataTable>& rows)
{
    const Folders folders = foldersAbove(rows);
    std::unordered_set<std::string> seen; // each folder has one parent, so that each has to be passed once only
    std::vector<std::string> found;
    for (const DriveDataTable& row : rows) {
        std::unordered_set<std::string> passed;
        for (std::string id = row.GetParentId(); !id.empty(); id = folders.at(id).second) {
            if (!seen.insert(id).second) {
                if (passed.contains(id)) {
                    found.push_back("the folder id:" + id + " is below itself");
                }
                break;
            }
            passed.insert(id);
            if (!folders.contains(id)) {
                if (!isTop(id)) {
                    found.push_back("the folder id:" + id + " has no row");
                }
                break;
            }
        }
    }
    return found;
}

/// Whether a folder without a row is the one at the top: the one that the client's configuration names or, where it
/// names none, any in a store that has no root among its rows.
bool DriveTree::isTop(const std::string& id)
{
    if (const auto [found, conf] = m_drive.GetDriverConfItem(); found && !conf.rootFileId.empty()) {
        return conf.rootFileId == id;
    }
    DatabaseBindParameter none;
    return m_drive.GetDriveDataByWhereSql("parentId = '' OR parentId IS NULL LIMIT 1", none).empty();
}

std::vector<DriveDataTable> DriveTree::foldersToBe(const DriveDataTable& row)
{
    std::vector<DriveDataTable> folders;
    std::unordered_set<std::string> seen;
    for (std::string id = folderToBe(row); !id.empty() && seen.insert(id).second;) {
        DriveDataTable folder = m_drive.GetDriveDataById(id);
        if (folder.Empty()) {
            break;
        }
        id = folderToBe(folder);
        folders.push_back(std::move(folder));
    }
    return folders;
}

bool DriveTree::isTaken(const std::string& folderId, const std::string& name)
{
    DatabaseBindParameter bind;
    bind.Bind(folderId, ":folder");
    bind.Bind(name, ":name");
    // The first comparison is for the index of names, which holds equal names beside some that only sort alike.
    const std::vector<DriveDataTable> rows = m_drive.GetDriveDataByWhereSql(
        "name COLLATE NameCompare = :name AND name = :name AND (parentId = :folder OR moveParentId = :folder)", bind);
    return std::any_of(rows.begin(), rows.end(), [&](const DriveDataTable& row) {
        return folderToBe(row) == folderId && !isInBin(row) && row.GetSoftDelBatchId() == 0;
    });
}

DriveDataTable DriveTree::root()
{
    DatabaseBindParameter none;
    return theOne(m_drive.GetDriveDataByWhereSql("(parentId = '' OR parentId IS NULL) AND recycled = 0", none),
                  "the root folder (a row without a parent)");
}

bool isName(const std::string& text)
{
    constexpr std::string_view unfit{"/\0", 2};
    return !text.empty() && text != "." && text != ".." && text.find_first_of(unfit) == std::string::npos &&
        platform::isUtf8(text);
}

std::optional<SplitPath> splitPath(const std::string& path)
{
    const std::string whole = path.substr(0, path.find_last_not_of('/') + 1);
    const std::size_t start = whole.rfind('/') + 1; // 0 where there is none
    const std::string name = whole.substr(start);
    if (!isName(name) || (start == 0 && whole.starts_with(idPrefix))) {
        return std::nullopt;
    }
    return SplitPath{whole.substr(0, start), name};
}

} // namespace dbservice
