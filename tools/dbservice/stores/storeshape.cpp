#include "stores/storeshape.h"

#include "clientservices/globalparamwrapper.h"
#include "databaseservice/driverdbprovider.h"
#include "databaseservice/fastaccessdbprovider.h"
#include "databaseservice/gallerydbprovider.h"
#include "databaseservice/maindatabaseprovider.h"
#include "databaseservice/transdbconnthread.h"
#include "platform/paths.h"
#include "platform/text.h"
#include "stores/session.h"

#include <algorithm>
#include <map>
#include <memory>
#include <sqlite3.h>
#include <utility>
#include <vector>

namespace fs = std::filesystem;

namespace dbservice {

namespace {

/// By table and column.
using Columns = std::vector<std::pair<std::string, std::string>>;

/// A connection to a file that is there, or to one in memory.
class Connection {
public:
    Connection(const std::string& file, int flags, const char* vfs)
    {
        sqlite3* db = nullptr;
        sqlite3_open_v2(file.c_str(), &db, flags, vfs);
        m_db.reset(db);
    }

    Columns columns() const
    {
        Columns found;
        sqlite3_stmt* statement = nullptr;
        sqlite3_prepare_v2(m_db.get(),
                           "SELECT tables.name, columns.name FROM sqlite_master AS tables, "
                           "pragma_table_info(tables.name) AS columns WHERE tables.type = 'table'",
                           -1, &statement, nullptr);
        while (sqlite3_step(statement) == SQLITE_ROW) {
            const auto text = [&](int column) {
                const auto* const cell = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
                return std::string(cell == nullptr ? "" : cell);
            };
            found.emplace_back(text(0), text(1));
        }
        sqlite3_finalize(statement);
        return found;
    }

private:
    struct Close {
        void operator()(sqlite3* db) const { sqlite3_close(db); }
    };
    std::unique_ptr<sqlite3, Close> m_db;
};

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
    const Connection kept(folder + ("/" + fileName), SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, memory);
    GlobalParamWrapper::GetInstance()->SetUserDataBaseFolder(platform::toWide(std::string(folder)));
    sqlite3_vfs_register(memoryDisk, 1);
    layDown(fileName);
    sqlite3_vfs_register(disk, 1);
    return kept.columns();
}

} // namespace

std::string missingColumns(const fs::path& file)
{
    const Columns present = Connection(platform::toUtf8(file), SQLITE_OPEN_READONLY, nullptr).columns();
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
