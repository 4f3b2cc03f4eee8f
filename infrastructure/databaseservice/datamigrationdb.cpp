#include "databaseservice/datamigrationdb.h"

#include "clientservices/cloudlogger.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "platform/text.h"

#include <sqlite3.h>

namespace DatabaseService::V10 {

namespace {

// The last bit is part of the mask by contract; it does not switch the journal mode.
constexpr int openFlags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_WAL;
static_assert(openFlags == 524294);

} // namespace

sqlite3* DataMigrationDB::OpenLegacyDatabase(const std::wstring& path)
{
    m_legacyPath = path;
    const std::wstring file = platform::fromBackslashes(path);
    if (const std::size_t folderEnd = path.rfind(L'\\'); folderEnd != std::wstring::npos) {
        platform::createFolder(file.substr(0, folderEnd));
    }

    sqlite3* db = nullptr;
    const bool ready = sqlite3_open_v2(platform::toUtf8(file).c_str(), &db, openFlags, nullptr) == SQLITE_OK &&
        sqlite3_busy_handler(db, BusyHandler, nullptr) == SQLITE_OK;
    if (!ready) {
        Logger::CloudLogger::GetInstance()->Output(
            0, 5, __LINE__, "DatabaseService::V10::DataMigrationDB::OpenLegacyDatabase",
            L"the legacy file " + m_legacyPath + L" could not be opened: " + platform::toWide(sqlite3_errmsg(db)),
            true);
        CloseDatabase(db);
        return nullptr;
    }
    AfterOpen(db);
    return db;
}

} // namespace DatabaseService::V10
