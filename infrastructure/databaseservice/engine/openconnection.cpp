#include "databaseservice/engine/openconnection.h"

#include <sqlite3.h>

namespace DatabaseService {

namespace {

// The last bit is part of the mask by contract; it does not switch the journal mode.
constexpr int openFlags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_WAL;
static_assert(openFlags == 0x80006);

} // namespace

Opening openConnection(const std::string& path, int (*busyHandler)(void*, int), sqlite3*& db)
{
    if (sqlite3_open_v2(path.c_str(), &db, openFlags, nullptr) != SQLITE_OK) {
        return Opening::NoFile;
    }
    return sqlite3_busy_handler(db, busyHandler, nullptr) == SQLITE_OK ? Opening::Done : Opening::NoBusyHandler;
}

} // namespace DatabaseService
