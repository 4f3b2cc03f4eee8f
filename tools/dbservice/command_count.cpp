#include "commands.h"
#include "displaytext.h"
#include "drivefields.h"
#include "fileclass.h"
#include "session.h"
#include "table.h"

#include <CLI/CLI.hpp>

#include <array>
#include <iostream>

namespace dbservice {

namespace {

struct Total {
    const char* key;
    const char* statement;
};

constexpr std::array totals{
    Total{"folders",
          "SELECT COUNT(*) FROM DriveDataTable WHERE recycled = 0 AND mimeType = 'application/vnd.tessix-apps.folder'"},
    Total{"files",
          "SELECT COUNT(*) FROM DriveDataTable WHERE recycled = 0 AND mimeType IS NOT "
          "'application/vnd.tessix-apps.folder'"},
    Total{"recycled", "SELECT COUNT(*) FROM DriveDataTable WHERE recycled <> 0"},
};

int count(Session& session)
{
    DatabaseService::DriverDBProviderBase& drive = session.readDrive();
    Table table({{"What"}, {"Rows", Table::Align::Right}});
    nlohmann::ordered_json json;
    const auto add = [&](const char* key, int rows) {
        table.add({key, grouped(rows)});
        json[key] = rows;
    };
    add("rows", drive.CountDriverData());
    for (const Total& total : totals) {
        std::string statement = total.statement;
        add(total.key, drive.GetCountBySelectSQL(statement));
    }
    for (const KnownClass& known : fileClasses) {
        const std::string number = std::to_string(static_cast<int>(known.number));
        std::string statement = "SELECT COUNT(*) FROM DriveDataTable WHERE recycled = 0 AND classIndex = " + number;
        const int rows = drive.GetCountBySelectSQL(statement);
        table.add({"  class " + number + ", " + known.name, grouped(rows)});
        json["classIndex"][number] = rows;
    }
    if (session.json()) {
        std::cout << toLine(json) << '\n';
    } else {
        table.print(std::cout, Session::outputWidth());
    }
    return 0;
}

} // namespace

void addCount(CLI::App& app, Command& chosen)
{
    app.add_subcommand("count", "Show how many rows the drive store holds, of which kind and class")
        ->footer("Folders, files and classes count rows outside the bin; recycled are the rows in it.\n"
                 "Classes: 2 pictures, 4 videos, 8 audio, 16 documents, 32 everything else.")
        ->callback([&chosen] { chosen = count; });
}

} // namespace dbservice
