#pragma once

#include "databaseservice/databaseoperationbase.h"
#include "databaseservice/export.h"

#include <string>
#include <vector>

namespace DatabaseService {

/// Wipes stores: drops all their tables and leaves the files. A store has no tables then until it is started again.
///
/// Threads: one at a time, since the name of the file at hand is kept without a lock. Others may use the stores
/// meanwhile and see tables vanish between two statements.
/// Ownership: the instance belongs to the process.
/// Failure: lines in the log. A file that is no store, or whose name is no Unicode, is left as it is and the next one
/// taken; a table whose name SQL takes only in quotes stays.
class DATABASESERVICE_EXPORT DropAllTables : public DatabaseOperationBase {
public:
    /// The process has one.
    static DropAllTables* GetInstance();

    /// Does nothing, and returns false.
    bool InitDatabase() override;

    /// Wipes each file in the user's database folder whose name ends in ".dat", in lower case. Without a user's folder
    /// nothing is touched, and the log says so.
    void SearchAllDatFile();
    /// Wipes the one store; `dbName` is its file name below that folder, in UTF-8.
    void DropAllTablesBasedOnDBName(std::string dbName);

private:
    DropAllTables() = default;

    DATABASESERVICE_NO_EXPORT void LookEveryDat(std::vector<std::string> names, std::string folder);
    DATABASESERVICE_NO_EXPORT void QueryAndDropTables();
};

} // namespace DatabaseService
