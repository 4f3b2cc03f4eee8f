#include "commands.h"
#include "displaytext.h"
#include "drivefields.h"
#include "platform/paths.h"
#include "session.h"
#include "table.h"

#include <CLI/CLI.hpp>

#include <array>
#include <iostream>

namespace dbservice {

namespace {

struct CountedTable {
    const char* name;
    const char* statement;
};

constexpr std::array driveTables{
    CountedTable{"DriveDataTable", "SELECT COUNT(*) FROM DriveDataTable"},
    CountedTable{"DriveConfTable", "SELECT COUNT(*) FROM DriveConfTable"},
    CountedTable{"DriveFullTask", "SELECT COUNT(*) FROM DriveFullTask"},
    CountedTable{"DriveFolderSync", "SELECT COUNT(*) FROM DriveFolderSync"},
};

int init(Session& session)
{
    session.makeStoreFolder();
    DatabaseService::DriverDBProvider& drive = session.writeDrive();
    const std::string file = platform::toUtf8(session.storeFolder() / driveFileName);
    Table table({{"Table"}, {"Rows", Table::Align::Right}});
    nlohmann::ordered_json json{{"file", file}, {"tables", nlohmann::ordered_json::object()}};
    for (const CountedTable& counted : driveTables) {
        std::string statement = counted.statement;
        const int rows = drive.GetCountBySelectSQL(statement);
        table.add({counted.name, grouped(rows)});
        json["tables"][counted.name] = rows;
    }
    if (session.json()) {
        std::cout << toLine(json) << '\n';
    } else {
        std::cout << printable(file) << '\n';
        table.print(std::cout, Session::outputWidth());
    }
    return 0;
}

} // namespace

void addInit(CLI::App& app, Command& chosen)
{
    app.add_subcommand("init", "Make the store's files and tables where they are missing, and show them")
        ->callback([&chosen] { chosen = init; });
}

} // namespace dbservice
