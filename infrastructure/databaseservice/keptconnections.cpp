#include "databaseservice/keptconnections.h"

#include "databaseservice/engine/keepconnection.h"
#include "platform/neverdestroyed.h"
#include "platform/text.h"

#include <mutex>
#include <sqlite3.h>
#include <utility>

namespace DatabaseService {

namespace {

struct Kept {
    sqlite3* connection;
    KeptConnection entry;
};

struct Registry {
    std::mutex mutex;
    std::vector<Kept> all;
};

Registry& registry()
{
    static auto& instance = platform::neverDestroyed(new Registry);
    return instance;
}

} // namespace

void keepConnection(sqlite3* db, const std::wstring& database, const char* reason) noexcept
{
    try {
        Kept kept{db, {database, reason}};
        Registry& connections = registry();
        const std::lock_guard lock(connections.mutex);
        connections.all.push_back(std::move(kept));
    } catch (...) { // no memory, no entry
    }
}

void keepConnection(sqlite3* db, const std::string& database, const char* reason) noexcept
{
    try {
        keepConnection(db, platform::toWide(database), reason);
    } catch (...) { // no memory, no entry
    }
}

std::vector<KeptConnection> ListKeptConnections()
{
    Registry& connections = registry();
    const std::lock_guard lock(connections.mutex);
    std::vector<KeptConnection> entries;
    entries.reserve(connections.all.size());
    for (const Kept& kept : connections.all) {
        entries.push_back(kept.entry);
    }
    return entries;
}

std::size_t CloseKeptConnections(OpenTransactions open)
{
    Registry& connections = registry();
    const std::lock_guard lock(connections.mutex);
    return std::erase_if(connections.all, [open](const Kept& kept) {
        const bool isOver = sqlite3_get_autocommit(kept.connection) != 0;
        return (isOver || open == OpenTransactions::RollBack) && sqlite3_close(kept.connection) == SQLITE_OK;
    });
}

} // namespace DatabaseService
