#include "databaseservice/driverdbproviderbase.h"

#include "databaseservice/storefiles.h"
#include "databaseservice/tables/drivecolumns.h"
#include "platform/namecompare.h"

#include <array>
#include <sqlite3.h>

namespace DatabaseService {

namespace {

constexpr const char* nameCompare = "NameCompare";

// The table is read by the client's file lists; nothing in this library fills it.
const std::string& createDriveFolderSync()
{
    static const auto& text =
        neverDestroyed(createTable("CREATE TABLE IF NOT EXISTS DriveFolderSync (", DriveFullTaskColumns::table));
    return text;
}

int compareRanges(void* /*user*/, int leftLength, const void* left, int rightLength, const void* right)
{
    return platform::compareNames({static_cast<const char*>(left), static_cast<std::size_t>(leftLength)},
                                  {static_cast<const char*>(right), static_cast<std::size_t>(rightLength)});
}

} // namespace

DriverDBProviderBase::DriverDBProviderBase() : DatabaseOperationBase(driveStoreFile) { }

bool DriverDBProviderBase::InitDatabase()
{
    CreateDriveFullTaskTable();
    CreateDriveConfTable();
    CreateDriveDataTable();
    CreateIndexOnDriveDataTable();
    return true;
}

void DriverDBProviderBase::CreateDriveFullTaskTable()
{
    Execute(createTable("CREATE TABLE IF NOT EXISTS DriveFullTask (", DriveFullTaskColumns::table));
}

void DriverDBProviderBase::CreateDriveConfTable()
{
    Execute(createTable("CREATE TABLE IF NOT EXISTS DriveConfTable (", DriveConfColumns::table));
}

void DriverDBProviderBase::CreateDriveDataTable()
{
    Execute(createTable("CREATE TABLE IF NOT EXISTS DriveDataTable(", DriveDataColumns::table));
}

void DriverDBProviderBase::CreateIndexOnDriveDataTable()
{
    static const auto& indexes = neverDestroyed(std::array<std::pair<std::string, std::string>, 6>{{
        {"nameIndex", "name COLLATE " + GetNameCompareName()},
        {"mimeTypeIndex", "mimeType"},
        {"sizeIndex", "size"},
        {"modifiedTimeIndex", "modifiedTime"},
        {"fileExtSignIndex", "fileExtSign"},
        {"parentIdIndex", "parentId"},
    }});
    for (const auto& [name, column] : indexes) {
        Execute("CREATE INDEX IF NOT EXISTS " + name + " ON DriveDataTable (" + column + ");");
    }
    Execute(createDriveFolderSync());
}

// A connection without the collation is left as it is: the first statement that needs it fails on its own.
void DriverDBProviderBase::AfterOpen(sqlite3* db)
{
    std::string ignored;
    BindNameCompare(db, ignored);
}

bool DriverDBProviderBase::BindNameCompare(sqlite3* db, std::string& error)
{
    if (sqlite3_create_collation(db, nameCompare, SQLITE_UTF8, nullptr, compareRanges) == SQLITE_OK) {
        return true;
    }
    if (const char* message = sqlite3_errmsg(db); message != nullptr) {
        error = message;
    }
    return false;
}

std::string DriverDBProviderBase::GetNameCompareName()
{
    return nameCompare;
}

} // namespace DatabaseService
