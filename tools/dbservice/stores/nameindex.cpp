#include "stores/nameindex.h"

#include "databaseservice/driverdbprovider.h"

#include <string>

namespace dbservice {

namespace {

constexpr const char* stored = "SELECT COUNT(*) FROM pragma_index_xinfo('nameIndex') "
                               "WHERE seqno = 0 AND name = 'name' AND coll = 'NameCompare' AND \"desc\" = 0";

// The rows come in the order of the index, and each is compared with the one before it in the order of this build.
// Equal names stand in the order of their row numbers.
constexpr const char* misplaced =
    "SELECT COUNT(*) FROM (SELECT name AS here, rowid AS hereRow, LAG(name) OVER () AS before, "
    "LAG(rowid) OVER () AS beforeRow FROM DriveDataTable INDEXED BY nameIndex) "
    "WHERE here < before COLLATE NameCompare OR (here = before COLLATE NameCompare AND hereRow < beforeRow)";

constexpr const char* missing = "SELECT (SELECT COUNT(*) FROM DriveDataTable NOT INDEXED) <> "
                                "(SELECT COUNT(rowid) FROM DriveDataTable INDEXED BY nameIndex)";

int valueOf(DatabaseService::DriverDBProvider& drive, std::string statement)
{
    return drive.GetCountBySelectSQL(statement);
}

} // namespace

NameIndex examineNameIndex(DatabaseService::DriverDBProvider& drive)
{
    if (valueOf(drive, stored) == 0) {
        return NameIndex::Absent;
    }
    const bool agrees = valueOf(drive, misplaced) == 0 && valueOf(drive, missing) == 0;
    return agrees ? NameIndex::Agrees : NameIndex::Disagrees;
}

void rebuildNameIndex(DatabaseService::DriverDBProvider& drive)
{
    drive.ExecuteSQL("REINDEX nameIndex");
}

} // namespace dbservice
