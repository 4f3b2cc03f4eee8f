#include "stores/storefile.h"

#include "clientservices/globalparamwrapper.h"
#include "databaseservice/commonsqlitedb.h"
#include "platform/paths.h"
#include "platform/text.h"
#include "stores/database.h"
#include "terminal/displaytext.h"
#include "terminal/failure.h"

#include <array>
#include <cstdint>
#include <fstream>
#include <list>

namespace dbservice {

StoreFile::StoreFile(const std::filesystem::path& fileName) : m_name(platform::toUtf8(fileName))
{
    SetDatabasePath(platform::toWide(m_name));
}

std::vector<std::string> StoreFile::tables()
{
    return texts(namesOfTables);
}

bool StoreFile::hasTable(const std::string& table)
{
    const std::vector<std::string> found =
        texts("SELECT type FROM sqlite_master WHERE name = " + inQuotes(table, '\'') + " COLLATE NOCASE");
    if (!found.empty() && found.front() != "table") {
        throw Failure("cannot read " + m_name + ": its " + table + " is a " + found.front() + " and no table");
    }
    return !found.empty();
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

std::string cutShort(const std::filesystem::path& file)
{
    std::array<unsigned char, 100> header{};
    std::ifstream stream(file, std::ios::binary);
    stream.read(reinterpret_cast<char*>(header.data()), header.size());
    std::error_code error;
    const auto size = static_cast<std::int64_t>(std::filesystem::file_size(file, error));
    const auto number = [&](std::size_t at, std::size_t bytes) {
        std::int64_t value = 0;
        for (std::size_t i = at; i < at + bytes; ++i) {
            value = value << 8 | header[i];
        }
        return value;
    };
    const std::int64_t pageSize = number(16, 2) == 1 ? 65536 : number(16, 2);
    const bool knowsPages = number(24, 4) == number(92, 4); // the version that the number of pages is of
    const std::int64_t whole = pageSize * number(28, 4);
    if (!stream || error || !knowsPages || size >= whole) {
        return {};
    }
    return "cut short, " + grouped(size) + " of " + counted(whole, "byte", "bytes");
}

} // namespace dbservice
