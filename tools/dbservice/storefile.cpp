#include "storefile.h"

#include "platform/paths.h"
#include "platform/text.h"

#include <list>

namespace dbservice {

StoreFile::StoreFile(const std::filesystem::path& fileName)
{
    SetDatabasePath(platform::toWide(platform::toUtf8(fileName)));
}

std::vector<std::string> StoreFile::tables()
{
    std::vector<std::string> names;
    std::list<DatabaseService::DatabaseQueryResult*>* rows = nullptr;
    Query("SELECT name FROM sqlite_master WHERE type = 'table' AND name NOT LIKE 'sqlite!_%' ESCAPE '!' ORDER BY rowid",
          rows);
    for (DatabaseService::DatabaseQueryResult* row : *rows) {
        names.push_back(row->GetString());
    }
    FreeQueryResult(rows);
    return names;
}

int StoreFile::countRows(const std::string& table)
{
    std::string name;
    for (const char letter : table) {
        name += letter == '"' ? std::string(2, letter) : std::string(1, letter);
    }
    return number("SELECT COUNT(*) FROM \"" + name + '"');
}

int StoreFile::number(std::string query)
{
    return GetCountBySelectSQL(query);
}

} // namespace dbservice
