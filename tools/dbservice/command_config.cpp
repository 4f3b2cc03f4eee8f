#include "commands.h"
#include "databaseservice/driveconftable.h"
#include "databaseservice/drivefulltask.h"
#include "displaytext.h"
#include "drivefields.h"
#include "session.h"
#include "table.h"

#include <CLI/CLI.hpp>

#include <array>
#include <iostream>
#include <memory>
#include <string>
#include <variant>

namespace dbservice {

using DatabaseService::DriveConfTable;
using DatabaseService::DriveFullTask;
using DatabaseService::int64;
using nlohmann::ordered_json;

namespace {

template <typename Record> struct Field {
    const char* name;
    std::variant<std::string Record::*, int64 Record::*, std::int32_t Record::*> member;
};

using Conf = Field<DriveConfTable>;
constexpr std::array confFields{
    Conf{"id", &DriveConfTable::id},
    Conf{"isFirstStart", &DriveConfTable::isFirstStart},
    Conf{"startCursor", &DriveConfTable::startCursor},
    Conf{"timedTaskInterval", &DriveConfTable::timedTaskInterval},
    Conf{"fullSyncInterval", &DriveConfTable::fullSyncInterval},
    Conf{"incrementDetectInterval", &DriveConfTable::incrementDetectInterval},
    Conf{"automaticSyncInterval", &DriveConfTable::automaticSyncInterval},
    Conf{"lastFullSyncTimestamp", &DriveConfTable::lastFullSyncTimestamp},
    Conf{"lastIncrementDetectTimestamp", &DriveConfTable::lastIncrementDetectTimestamp},
    Conf{"lastAutomaticSyncTimestamp", &DriveConfTable::lastAutomaticSyncTimestamp},
    Conf{"subscribeInterval", &DriveConfTable::subscribeInterval},
    Conf{"lastSubscribeTimestamp", &DriveConfTable::lastSubscribeTimestamp},
    Conf{"rootFileId", &DriveConfTable::rootFileId},
    Conf{"lastNotifySpaceFull", &DriveConfTable::lastNotifySpaceFull},
    Conf{"SyncRootPath", &DriveConfTable::SyncRootPath},
    Conf{"isFirstTrayStart", &DriveConfTable::isFirstTrayStart},
    Conf{"ClosedBanners", &DriveConfTable::ClosedBanners},
    Conf{"data1", &DriveConfTable::data1},
    Conf{"data2", &DriveConfTable::data2},
    Conf{"data3", &DriveConfTable::data3},
    Conf{"data4", &DriveConfTable::data4},
    Conf{"lastLostFileQueryTimestamp", &DriveConfTable::lastLostFileQueryTimestamp},
    Conf{"lostFileQueryCursor", &DriveConfTable::lostFileQueryCursor},
};

using Task = Field<DriveFullTask>;
constexpr std::array taskFields{
    Task{"fileId", &DriveFullTask::fileId}, Task{"cursor", &DriveFullTask::cursor},
    Task{"state", &DriveFullTask::state},   Task{"updateTime", &DriveFullTask::updateTime},
    Task{"data1", &DriveFullTask::data1},   Task{"data2", &DriveFullTask::data2},
    Task{"data3", &DriveFullTask::data3},   Task{"data4", &DriveFullTask::data4},
};

template <typename Record, std::size_t size>
ordered_json jsonOf(const Record& record, const std::array<Field<Record>, size>& fields)
{
    ordered_json json;
    for (const Field<Record>& field : fields) {
        std::visit([&](auto member) { json[field.name] = record.*member; }, field.member);
    }
    return json;
}

/// Empty for a value that is 0 or empty.
std::string readable(const ordered_json& value)
{
    return value.is_string() ? value.get<std::string>() : value == 0 ? "" : std::to_string(value.get<int64>());
}

void print(const ordered_json& conf, const ordered_json& tasks, bool all)
{
    const int width = Session::outputWidth();
    if (conf.is_null()) {
        std::cout << "No configuration\n";
    } else {
        Table table({{"Field"}, {"Value"}});
        for (const auto& [name, value] : conf.items()) {
            if (const std::string text = readable(value); all || !text.empty()) {
                table.add({name, text});
            }
        }
        table.print(std::cout, width);
    }
    std::cout << counted(static_cast<std::int64_t>(tasks.size()), "full task", "full tasks") << '\n';
    if (!tasks.empty()) {
        Table table({{"State", Table::Align::Right}, {"Updated", Table::Align::Right}, {"Folder"}, {"Cursor"}});
        for (const ordered_json& task : tasks) {
            table.add({task["state"].dump(), task["updateTime"].dump(), task["fileId"], task["cursor"]});
        }
        table.print(std::cout, width);
    }
}

int config(Session& session, bool all)
{
    DatabaseService::DriverDBProvider& drive = session.readDrive();
    const auto [found, record] = drive.GetDriverConfItem();
    const ordered_json conf = found ? jsonOf(record, confFields) : ordered_json();
    ordered_json tasks = ordered_json::array();
    for (const DriveFullTask& task : drive.GetFullTask()) {
        tasks.push_back(jsonOf(task, taskFields));
    }
    if (session.json()) {
        std::cout << toLine({{"DriveConfTable", conf}, {"DriveFullTask", tasks}}) << '\n';
    } else {
        print(conf, tasks, all);
    }
    if (const int rows = drive.CountDriverConfItem(); rows > 1) {
        session.reporter().note("the store holds " + counted(rows, "configuration", "configurations") +
                                "; clients read the first one only, and so does this");
    }
    return 0;
}

} // namespace

void addConfig(CLI::App& app, Command& chosen)
{
    const auto all = std::make_shared<bool>(false);
    CLI::App* const command =
        app.add_subcommand("config", "Show the drive's synchronisation: its configuration and its full tasks");
    command->add_flag("--all", *all, "Show the fields that are empty or 0 too");
    command->footer("Cursors, intervals, times and states are the client's own, in its units.\n"
                    "With --json the keys are the tables, and in them the stored columns; DriveConfTable is null where "
                    "there is none.");
    command->callback([&chosen, all] { chosen = [all](Session& session) { return config(session, *all); }; });
}

} // namespace dbservice
