// The library's own: not installed.
#pragma once

#include "databaseservice/databaseoperationbase.h"

#include <string>

namespace DatabaseService::V10 {

/// The engine on the legacy file, which lies anywhere and not below the user's folder.
class DataMigrationDB : public DatabaseOperationBase {
public:
    bool InitDatabase() override { return true; }

    /// Opens the file at a whole path whose folders end in `\`, on every system; creates it when it is missing, and the
    /// folder that it lies in, too, if that is all that is missing. Null, and a line in the log, on failure.
    sqlite3* OpenLegacyDatabase(const std::wstring& path);

private:
    std::wstring m_legacyPath;
};

} // namespace DatabaseService::V10
