#include "scan/addrows.h"

#include "drive/drivetree.h"
#include "stores/session.h"
#include "terminal/failure.h"

#include <string>

namespace dbservice {

using DatabaseService::DriveDataTable;

void addRows(Session& session, DatabaseService::DriverDBProvider& drive, const std::vector<DriveDataTable>& rows)
{
    drive.InsertDriveDataBatch(rows);
    // Rows that could not be added, and are there all the same, are somebody else's.
    if (session.libraryFailures() > 0) {
        std::vector<std::string> ids;
        ids.reserve(rows.size());
        for (const DriveDataTable& row : rows) {
            ids.push_back(row.GetFileid());
        }
        if (DriveTree(drive).rowsById(ids).size() == rows.size()) {
            throw Failure("cannot scan into this store: another program is writing to it, and has added the same rows");
        }
    }
    session.stopIfFailed("add rows to the store");
}

} // namespace dbservice
