// Any statement under the guard of `dbservice query`, on a connection that may write.
#include "fuzzing.h"
#include "stores/queryguard.h"

#include <sqlite3.h>

/// Has libFuzzer keep inputs with which SQLite, in which it sees nothing, does something else.
[[gnu::section("__libfuzzer_extra_counters")]] static char counters[4096];

void fuzzing::attempt(const std::string& input)
{
    static const auto before = (startAnew(), filesBelow(scratch));
    {
        dbservice::Database store("DriveModuleData.dat", dbservice::Database::Access::Write);
        sqlite3_exec(store.handle(), control ? input.c_str() : "", nullptr, nullptr, nullptr); // ahead of the guard
        dbservice::QueryGuard guard(store.handle(), std::chrono::milliseconds(100));
        const auto explained = guard.prepare("EXPLAIN " + input);
        while (sqlite3_step(explained.get()) == SQLITE_ROW) {
            const auto* const step = reinterpret_cast<const char*>(sqlite3_column_text(explained.get(), 1));
            counters[std::hash<std::string_view>()(step) % std::size(counters)] = 1;
        }
        const auto statement = guard.prepare(input);
        while (sqlite3_step(statement.get()) == SQLITE_ROW) { }
    }
    expect(filesBelow(scratch) == before, "a file was changed or made");
}
