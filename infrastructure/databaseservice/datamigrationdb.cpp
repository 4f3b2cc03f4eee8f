#include "databaseservice/datamigrationdb.h"

#include "databaseservice/engine/failurelog.h"
#include "databaseservice/engine/openconnection.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "platform/text.h"

#include <sqlite3.h>

namespace DatabaseService::V10 {

sqlite3* DataMigrationDB::OpenLegacyDatabase(const std::wstring& path)
{
    m_legacyPath = path;
    const std::wstring file = platform::fromBackslashes(path);
    if (const std::size_t folderEnd = path.rfind(L'\\'); folderEnd != std::wstring::npos) {
        platform::createFolder(file.substr(0, folderEnd));
    }

    sqlite3* db = nullptr;
    if (openConnection(platform::toUtf8(file), BusyHandler, db) != Opening::Done) {
        logFailure(__LINE__, "DatabaseService::V10::DataMigrationDB::OpenLegacyDatabase",
                   L"the legacy file " + m_legacyPath + L" could not be opened: " + errorText(db));
        CloseDatabase(db);
        return nullptr;
    }
    AfterOpen(db);
    return db;
}

} // namespace DatabaseService::V10
