#include "platform/namecompare.h"
#include "namecompare_export.h"

#include <sqlite3ext.h>
SQLITE_EXTENSION_INIT1

namespace {

int compareRanges(void* /*user*/, int leftLength, const void* left, int rightLength, const void* right)
{
    return platform::compareNames({static_cast<const char*>(left), static_cast<std::size_t>(leftLength)},
                                  {static_cast<const char*>(right), static_cast<std::size_t>(rightLength)});
}

void tellVersion(sqlite3_context* context, int /*count*/, sqlite3_value** /*arguments*/)
{
    sqlite3_result_text(context, platform::nameOrderVersion(), -1, nullptr); // which lasts as long as the module
}

} // namespace

/// Gives a connection the collation `NameCompare` in this build's order, and the function `namecompare_version()`,
/// which names that order: two builds may write one store only if theirs are equal. SQLite calls it by its name.
extern "C" NAMECOMPARE_EXPORT int sqlite3_namecompare_init(sqlite3* db, char** /*error*/,
                                                           const sqlite3_api_routines* functions)
{
    SQLITE_EXTENSION_INIT2(functions)
    const int code = sqlite3_create_collation(db, "NameCompare", SQLITE_UTF8, nullptr, compareRanges);
    return code != SQLITE_OK ? code
                             : sqlite3_create_function(db, "namecompare_version", 0, SQLITE_UTF8 | SQLITE_DETERMINISTIC,
                                                       nullptr, tellVersion, nullptr, nullptr);
}
