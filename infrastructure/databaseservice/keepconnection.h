#pragma once

#include <string>

struct sqlite3;

namespace DatabaseService {

/// Puts a connection that must stay open where it can be found: see `ListKeptConnections`.
void keepConnection(sqlite3* db, const std::wstring& database, const std::string& reason);

} // namespace DatabaseService
