#pragma once

#include <functional>

namespace CLI {
class App;
}

namespace dbservice {

class Session;

/// What a command does once the command line is understood. Gives the exit code, or throws a `Failure`.
using Command = std::function<int(Session&)>;

// Each of these adds one command to the command line and sets `chosen` when the person names it. `application.cpp` puts
// them into the groups of the help.

void addConfig(CLI::App& app, Command& chosen);
void addCount(CLI::App& app, Command& chosen);
void addGallery(CLI::App& app, Command& chosen);
void addInit(CLI::App& app, Command& chosen);
void addLs(CLI::App& app, Command& chosen);
void addMigrate(CLI::App& app, Command& chosen);
void addMkdir(CLI::App& app, Command& chosen);
void addMv(CLI::App& app, Command& chosen);
void addPending(CLI::App& app, Command& chosen);
void addProperties(CLI::App& app, Command& chosen);
void addRecycle(CLI::App& app, Command& chosen);
void addReindex(CLI::App& app, Command& chosen);
void addRename(CLI::App& app, Command& chosen);
void addReset(CLI::App& app, Command& chosen);
void addRestore(CLI::App& app, Command& chosen);
void addRm(CLI::App& app, Command& chosen);
void addScan(CLI::App& app, Command& chosen);
void addShortcuts(CLI::App& app, Command& chosen);
void addStat(CLI::App& app, Command& chosen);
void addTransfers(CLI::App& app, Command& chosen);
void addView(CLI::App& app, Command& chosen);

} // namespace dbservice
