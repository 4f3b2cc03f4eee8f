#pragma once

#include "databaseservice/driverdbprovider.h"

#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace dbservice {

/// Finds rows of the drive tree by path and id. What comes from the person is bound, never pasted into a statement.
class DriveTree {
public:
    explicit DriveTree(DatabaseService::DriverDBProvider& drive) : m_drive(drive) { }

    enum class Among {
        Kept, ///< rows outside the bin
        All,
        Deleted ///< rows in the bin or waiting for it or for the final deletion, below folders of any kind
    };

    /// The row at a path such as "/Photos/2024", or with an id such as "id:1f...", or below it: "id:1f.../2024". Of
    /// rows with the same name in a folder it takes the one that lists show, else the one that waits to leave them,
    /// else the one in the bin. Throws a `Failure` when there is none, or more than one to choose from.
    DatabaseService::DriveDataTable find(const std::string& path, Among among = Among::Kept);

    struct Place {
        DatabaseService::DriveDataTable row; ///< empty for a folder that has no row of its own
        std::string id;                      ///< as a row of the store has it

        bool isFolder() const { return row.Empty() || row.IsFolder(); }
    };

    /// What is at a path or has an id: a row, or a folder that is known by its children alone, as the top folder in a
    /// client's store is. Throws like `find`.
    Place place(const std::string& path);

    /// The paths by which `find` knows these rows, in their order. Below a folder without a row they begin with its id.
    std::vector<std::string> pathsOf(const std::vector<DatabaseService::DriveDataTable>& rows);

    /// What keeps these rows from being found by a path from the root: "the folder id:X has no row", "the folder id:X
    /// is below itself". A client's top folder, which has no row either, is none of it.
    std::vector<std::string> strayFolders(const std::vector<DatabaseService::DriveDataTable>& rows);

    /// The folders above a row once all pending moves are done, the nearest first, as far as they have rows.
    std::vector<DatabaseService::DriveDataTable> foldersToBe(const DatabaseService::DriveDataTable& row);

    /// Whether a row that is not deleted has this name in the folder, or will have it after a pending move.
    bool isTaken(const std::string& folderId, const std::string& name);

    /// Rows in no particular order, unknown ids left out, and rows for which the condition does not hold, if there is
    /// one. A few hundred ids share one statement.
    std::vector<DatabaseService::DriveDataTable> rowsById(const std::vector<std::string>& ids,
                                                          const std::string& condition = {});
    /// The direct children of all these folders, those in the bin too; likewise.
    std::vector<DatabaseService::DriveDataTable> childrenOf(const std::vector<std::string>& ids,
                                                            const std::string& condition = {});

    /// Whether a walk down from the row would come back to it. Each row has one parent, so a circle that can be
    /// reached from a row downwards goes through the row itself, and looking upwards finds it.
    bool isItsOwnAncestor(const std::string& id);

private:
    /// Folders by id, with name and parent.
    using Folders = std::unordered_map<std::string, std::pair<std::string, std::string>>;

    /// All the folders above these rows that have rows.
    Folders foldersAbove(const std::vector<DatabaseService::DriveDataTable>& rows);
    bool isTop(const std::string& id);
    Place walk(const std::string& path, Among among);
    std::optional<Place> placeOf(const std::string& id);
    DatabaseService::DriveDataTable child(const std::string& folderId, const std::string& name, Among among,
                                          const std::string& path);
    std::vector<DatabaseService::DriveDataTable>
    rowsWhere(const std::string& column, const std::vector<std::string>& values, const std::string& condition = {});
    DatabaseService::DriveDataTable root();

    DatabaseService::DriverDBProvider& m_drive;
};

/// Whether a row can have this name and be found by it: some UTF-8 text without a slash, neither "." nor "..".
bool isName(const std::string& text);

/// A path cut before its last name; nothing where it does not end in one, as in "/", "a/.." or "id:1f...".
struct SplitPath {
    std::string folder;
    std::string name;
};
std::optional<SplitPath> splitPath(const std::string& path);

} // namespace dbservice
