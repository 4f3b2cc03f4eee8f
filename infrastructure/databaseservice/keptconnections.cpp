#include "databaseservice/keptconnections.h"

#include "databaseservice/keepconnection.h"

#include <mutex>

namespace DatabaseService {

namespace {

struct Registry {
    std::mutex mutex;
    std::vector<sqlite3*> connections; // keeps them reachable
    std::vector<KeptConnection> entries;
};

// Never destroyed: a connection may have to be kept while the process ends.
Registry& registry()
{
    static Registry* const instance = new Registry;
    return *instance;
}

} // namespace

void keepConnection(sqlite3* db, const std::wstring& database, const std::string& reason)
{
    Registry& kept = registry();
    const std::lock_guard lock(kept.mutex);
    kept.connections.push_back(db);
    kept.entries.push_back({database, reason});
}

std::vector<KeptConnection> ListKeptConnections()
{
    Registry& kept = registry();
    const std::lock_guard lock(kept.mutex);
    return kept.entries;
}

} // namespace DatabaseService
