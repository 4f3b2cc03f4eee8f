#include "stores/storefile.h"

#include "clientservices/globalparamwrapper.h"
#include "databaseservice/commonsqlitedb.h"
#include "platform/paths.h"
#include "platform/text.h"
#include "terminal/failure.h"

#include <list>

namespace dbservice {

StoreFile::StoreFile(const std::filesystem::path& fileName)
{
    SetDatabasePath(platform::toWide(platform::toUtf8(fileName)));
}

std::vector<std::string> StoreFile::tables()
{
    return texts("SELECT name FROM sqlite_master WHERE type = 'table' AND name NOT LIKE 'sqlite!_%' ESCAPE '!' "
                 "ORDER BY rowid");
}

int StoreFile::countRows(const std::string& table)
{
    return number("SELECT COUNT(*) FROM " + inQuotes(table, '"'));
}

int StoreFile::number(std::string query)
{
    return GetCountBySelectSQL(query);
}

std::vector<std::string> StoreFile::texts(const std::string& query)
{
    std::vector<std::string> found;
    std::list<DatabaseService::DatabaseQueryResult*>* rows = nullptr;
    Query(query, rows);
    for (DatabaseService::DatabaseQueryResult* row : *rows) {
        found.push_back(row->GetString());
    }
    FreeQueryResult(rows);
    return found;
}

std::string inQuotes(std::string_view text, char mark)
{
    std::string result(1, mark);
    for (const char letter : text) {
        result.append(letter == mark ? 2 : 1, letter);
    }
    return result + mark;
}

void requireWritable(const std::filesystem::path& fileName)
{
    constexpr int milliseconds = 3000;
    const std::filesystem::path file =
        platform::toPath(GlobalParamWrapper::GetInstance()->GetUserDataBaseFolder()) / fileName;
    DatabaseService::CommonSqliteDb database(milliseconds);
    if (!database.OpenUtf8Path(platform::toUtf8(file).c_str()) || !database.ExcuteSql("BEGIN IMMEDIATE") ||
        !database.ExcuteSql("ROLLBACK")) {
        throw Failure("cannot write to the store: no lock on " + platform::toUtf8(file) + " within " +
                      std::to_string(milliseconds / 1000) + " seconds, see the warning above");
    }
}

} // namespace dbservice
