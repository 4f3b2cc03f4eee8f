#include "stores/storeshape.h"

#include "clientservices/globalparamwrapper.h"
#include "databaseservice/driverdbprovider.h"
#include "databaseservice/fastaccessdbprovider.h"
#include "databaseservice/gallerydbprovider.h"
#include "databaseservice/maindatabaseprovider.h"
#include "databaseservice/transdbconnthread.h"
#include "platform/paths.h"
#include "platform/scopeexit.h"
#include "platform/text.h"
#include "stores/database.h"
#include "stores/session.h"

#include <algorithm>
#include <map>
#include <sqlite3.h>
#include <utility>
#include <vector>

namespace fs = std::filesystem;

namespace dbservice {

namespace {

/// By table and column.
using Columns = std::vector<std::pair<std::string, std::string>>;

Columns columnsOf(Database& database)
{
    Columns found;
    database.run("SELECT tables.name, columns.name FROM sqlite_master AS tables, "
                 "pragma_table_info(tables.name) AS columns WHERE tables.type = 'table'",
                 {}, [&](const Database::Row& row) { found.emplace_back(row.text(0), row.text(1)); });
    return found;
}

void layDown(const std::string& fileName)
{
    if (fileName == driveFileName) {
        DatabaseService::DriverDBProvider().InitDatabase();
    } else if (fileName == mainFileName) {
        DatabaseService::MainDatabaseProvider::InitMainDatabase();
    } else if (fileName == shortcutFileName) {
        DatabaseService::FastAccessDBProvider::InitFastAccessDB();
    } else if (fileName == transferFileName) {
        auto& transfers = *DatabaseService::TransmissionDB::TransDbConnThread::GetInstance();
        transfers.InitDatabase();
        transfers.CreateTransferTaskTable();
    } else {
        DatabaseService::GalleryDBProvider::InitGalleryDatabase(platform::toWide(fileName));
    }
}

/// What the library lays down where there is nothing. It gets SQLite's own disk in memory for it, where a file lasts as
/// long as a connection to it.
Columns columnsOfLibrary(const std::string& fileName)
{
    constexpr const char* memory = "memdb";
    constexpr const char* folder = "/new"; // a name that begins so is the same file for all connections
    sqlite3_vfs* const disk = sqlite3_vfs_find(nullptr);
    sqlite3_vfs* const memoryDisk = sqlite3_vfs_find(memory);
    if (memoryDisk == nullptr) {
        return {};
    }
    GlobalParamWrapper::GetInstance()->SetUserDataBaseFolder(platform::toWide(std::string(folder)));
    sqlite3_vfs_register(memoryDisk, 1);
    const platform::ScopeExit backToDisk([disk] { sqlite3_vfs_register(disk, 1); });
    Database kept(folder + ("/" + fileName), Database::Access::Create);
    layDown(fileName);
    return columnsOf(kept);
}

} // namespace

std::string missingColumns(const fs::path& file)
{
    Database database(file);
    const Columns present = columnsOf(database);
    std::map<std::string, std::vector<std::string>> missing;
    for (const auto& column : columnsOfLibrary(platform::toUtf8(file.filename()))) {
        const bool hasTable =
            std::any_of(present.begin(), present.end(), [&](const auto& there) { return there.first == column.first; });
        if (hasTable && std::find(present.begin(), present.end(), column) == present.end()) {
            missing[column.first].push_back(column.second);
        }
    }
    std::string text;
    for (const auto& [table, columns] : missing) {
        constexpr std::size_t named = 5;
        text +=
            (text.empty() ? "" : "; ") + table + (columns.size() == 1 ? " lacks the column " : " lacks the columns ");
        for (std::size_t i = 0; i < std::min(named, columns.size()); ++i) {
            text += (i == 0 ? "" : ", ") + columns[i];
        }
        text += columns.size() > named ? " and " + std::to_string(columns.size() - named) + " more" : "";
    }
    return text;
}

} // namespace dbservice
