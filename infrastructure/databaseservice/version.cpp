#include "databaseservice/version.h"

#include "platform/namecompare.h"

#include <sqlite3.h>

namespace DatabaseService {

std::string LibraryVersion()
{
    return DATABASESERVICE_VERSION;
}

std::string SqliteVersion()
{
    return sqlite3_libversion();
}

std::string NameOrderVersion()
{
    return platform::nameOrderVersion();
}

} // namespace DatabaseService
