#pragma once

#include <string>

struct sqlite3;

namespace DatabaseService {

/// Puts a connection that must stay open where it can be found, from when nobody uses it any more: see
/// `ListKeptConnections`. Without memory for that it stays open all the same. `database` as text is UTF-8.
void keepConnection(sqlite3* db, const std::wstring& database, const char* reason) noexcept;
void keepConnection(sqlite3* db, const std::string& database, const char* reason) noexcept;

} // namespace DatabaseService
