#include "drivetree.h"

#include "failure.h"

#include <algorithm>
#include <iterator>

namespace dbservice {

using DatabaseService::DatabaseBindParameter;
using DatabaseService::DriveDataTable;

namespace {

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
        throw Failure("cannot find " + what + " in the store");
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

} // namespace

DriveDataTable DriveTree::find(const std::string& path)
{
    if (const std::optional<std::string> id = idInPath(path)) {
        DriveDataTable row = m_drive.GetDriveDataById(*id);
        if (row.Empty()) {
            throw Failure("cannot find a row with the id " + *id + " in the store");
        }
        return row;
    }
    DriveDataTable row = root();
    std::string walked;
    for (const std::string& name : namesIn(path)) {
        walked += "/" + name;
        DatabaseBindParameter bind;
        bind.Bind(row.GetFileid(), ":parentId");
        bind.Bind(name, ":name");
        row = theOne(m_drive.GetDriveDataByWhereSql("parentId = :parentId AND name = :name AND recycled = 0", bind),
                     walked);
    }
    return row;
}

DriveTree::Place DriveTree::place(const std::string& path)
{
    const std::optional<std::string> id = idInPath(path);
    if (id && !id->empty() && m_drive.GetDriveDataById(*id).Empty()) {
        DatabaseBindParameter bind;
        bind.Bind(*id, ":parentId");
        const std::vector<DriveDataTable> child = m_drive.GetDriveDataByWhereSql("parentId = :parentId LIMIT 1", bind);
        if (!child.empty()) {
            return {DriveDataTable(), child.front().GetParentId()};
        }
    }
    DriveDataTable row = find(path);
    std::string stored = row.GetFileid();
    return {std::move(row), std::move(stored)};
}

std::vector<DriveDataTable> DriveTree::rowsById(const std::vector<std::string>& ids)
{
    return rowsWhere("fileId", ids);
}

std::vector<DriveDataTable> DriveTree::childrenOf(const std::vector<std::string>& ids)
{
    return rowsWhere("parentId", ids);
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

std::vector<DriveDataTable> DriveTree::rowsWhere(const std::string& column, const std::vector<std::string>& values)
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
        std::vector<DriveDataTable> found = m_drive.GetDriveDataByWhereSql(where + ")", bind);
        if (rows.empty()) {
            rows = std::move(found);
        } else {
            rows.insert(rows.end(), std::make_move_iterator(found.begin()), std::make_move_iterator(found.end()));
        }
    }
    return rows;
}

DriveDataTable DriveTree::root()
{
    DatabaseBindParameter none;
    return theOne(m_drive.GetDriveDataByWhereSql("(parentId = '' OR parentId IS NULL) AND recycled = 0", none),
                  "the root folder (a row without a parent)");
}

std::optional<std::string> idInPath(const std::string& path)
{
    constexpr std::string_view prefix = "id:";
    return path.starts_with(prefix) ? std::optional(path.substr(prefix.size())) : std::nullopt;
}

} // namespace dbservice
