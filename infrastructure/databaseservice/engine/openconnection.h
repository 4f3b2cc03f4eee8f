#pragma once

#include <string>

struct sqlite3;

namespace DatabaseService {

enum class Opening {
    Done,
    NoFile,        ///< SQLite could not open or create it
    NoBusyHandler, ///< it is open, but would not wait for locks
};

/// Opens the file at `path`, which is UTF-8, and creates it when it is missing. `busyHandler` says what the connection
/// does while the file is locked. Unless it is done, `db` is what SQLite left to be closed, or null.
Opening openConnection(const std::string& path, int (*busyHandler)(void*, int), sqlite3*& db);

} // namespace DatabaseService
