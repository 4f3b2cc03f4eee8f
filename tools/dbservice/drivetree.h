#pragma once

#include "databaseservice/driverdbproviderbase.h"

#include <optional>
#include <string>
#include <vector>

namespace dbservice {

/// Finds rows of the drive tree by path and id. What comes from the person is bound, never pasted into a statement.
class DriveTree {
public:
    explicit DriveTree(DatabaseService::DriverDBProviderBase& drive) : m_drive(drive) { }

    /// The row at a path such as "/Photos/2024", among rows outside the bin, or with an id such as "id:1f...".
    /// Throws a `Failure` when there is none, or more than one.
    DatabaseService::DriveDataTable find(const std::string& path);

    struct Place {
        DatabaseService::DriveDataTable row; ///< empty for a folder that has no row of its own
        std::string id;                      ///< as a row of the store has it

        bool isFolder() const { return row.Empty() || row.IsFolder(); }
    };

    /// What is at a path or has an id: a row, or a folder that is known by its children alone, as the top folder in a
    /// client's store is. Throws like `find`.
    Place place(const std::string& path);

    /// Rows in no particular order, unknown ids left out. A few hundred ids share one statement.
    std::vector<DatabaseService::DriveDataTable> rowsById(const std::vector<std::string>& ids);
    /// The direct children of all these folders, those in the bin too.
    std::vector<DatabaseService::DriveDataTable> childrenOf(const std::vector<std::string>& ids);

    /// Whether a walk down from the row would come back to it. Each row has one parent, so a circle that can be
    /// reached from a row downwards goes through the row itself, and looking upwards finds it.
    bool isItsOwnAncestor(const std::string& id);

private:
    std::vector<DatabaseService::DriveDataTable> rowsWhere(const std::string& column,
                                                           const std::vector<std::string>& values);
    DatabaseService::DriveDataTable root();

    DatabaseService::DriverDBProviderBase& m_drive;
};

/// The id in a path of the form "id:...".
std::optional<std::string> idInPath(const std::string& path);

} // namespace dbservice
