#include "databaseservice/dropalltables.h"

#include "clientservices/cloudlogger.h"
#include "clientservices/globalparamwrapper.h"
#include "databaseservice/engine/recordio.h"
#include "databaseservice/unnamedfiles.h"
#include "platform/files.h"
#include "platform/text.h"

#include <utility>

namespace DatabaseService {

DropAllTables* DropAllTables::GetInstance()
{
    static DropAllTables instance;
    return &instance;
}

bool DropAllTables::InitDatabase()
{
    return false;
}

void DropAllTables::SearchAllDatFile()
{
    constexpr const char* function = "DatabaseService::DropAllTables::SearchAllDatFile";
    const std::wstring folder = GlobalParamWrapper::GetInstance()->GetUserDataBaseFolder();
    if (folder.empty()) {
        // The pattern would mean the root of the file system.
        Logger::CloudLogger::GetInstance()->Output(0, 5, __LINE__, function,
                                                   "nothing was dropped: there is no user's database folder", true);
        return;
    }
    std::vector<std::string> names;
    for (const platform::FoundFile& file : platform::findFiles(folder + L"/*.dat")) {
        // Some systems find names in capitals, and longer endings, as well.
        if (file.isFolder || !file.name.ends_with(L".dat")) {
            continue;
        }
        // A store is opened by UTF-8, so that has to name the file, too.
        std::string name = platform::toUtf8(file.name);
        if (file.isNamed && platform::toWide(name) == file.name) {
            names.push_back(std::move(name));
        } else {
            reportUnnamed(file.name, function);
        }
    }
    if (!names.empty()) {
        LookEveryDat(names, platform::toUtf8(folder));
    }
}

void DropAllTables::DropAllTablesBasedOnDBName(std::string dbName)
{
    SetDatabasePath(platform::toWide(dbName));
    QueryAndDropTables();
}

// The folder is not used: every open asks for it.
void DropAllTables::LookEveryDat(std::vector<std::string> names, std::string /*folder*/)
{
    for (const std::string& name : names) {
        DropAllTablesBasedOnDBName(name);
    }
}

void DropAllTables::QueryAndDropTables()
{
    std::vector<std::string> tables;
    RowFunction addName([&](CellReader& cells) {
        if (cells.next() == CellReader::Kind::Text) {
            tables.emplace_back(cells.text());
        }
    });
    run(*this,
        {.sql = "select name from sqlite_master where type = 'table' and name != 'sqlite_sequence';",
         .rows = &addName});
    for (const std::string& table : tables) {
        // Without quotes, so a name that needs them fails; the stores' own are plain.
        Execute("drop table " + table + ";");
    }
}

} // namespace DatabaseService
