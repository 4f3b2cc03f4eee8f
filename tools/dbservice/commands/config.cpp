#include "command.h"
#include "databaseservice/driveconftable.h"
#include "databaseservice/drivefulltask.h"
#include "stores/session.h"
#include "terminal/displaytext.h"
#include "terminal/recordfields.h"
#include "terminal/table.h"

#include <array>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

namespace dbservice {

using DatabaseService::DriveConfTable;
using DatabaseService::DriveFullTask;
namespace {

using Conf = MemberField<DriveConfTable>;
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

using Task = MemberField<DriveFullTask>;
constexpr std::array taskFields{
    Task{"fileId", &DriveFullTask::fileId}, Task{"cursor", &DriveFullTask::cursor},
    Task{"state", &DriveFullTask::state},   Task{"updateTime", &DriveFullTask::updateTime},
    Task{"data1", &DriveFullTask::data1},   Task{"data2", &DriveFullTask::data2},
    Task{"data3", &DriveFullTask::data3},   Task{"data4", &DriveFullTask::data4},
};

void print(const std::optional<DriveConfTable>& conf, const std::vector<DriveFullTask>& tasks, bool all)
{
    const int width = Session::outputWidth();
    if (conf) {
        toTable(confFields, *conf, all).print(std::cout, width);
    } else {
        std::cout << "No configuration\n";
    }
    std::cout << counted(static_cast<std::int64_t>(tasks.size()), "full task", "full tasks") << '\n';
    if (!tasks.empty()) {
        Table table({{"State", Table::Align::Right}, {"Updated", Table::Align::Right}, {"Folder"}, {"Cursor"}});
        for (const DriveFullTask& task : tasks) {
            table.add({std::to_string(task.state), std::to_string(task.updateTime), task.fileId, task.cursor});
        }
        table.print(std::cout, width);
    }
}

void printJson(const std::optional<DriveConfTable>& conf, const std::vector<DriveFullTask>& tasks)
{
    Json json;
    json["DriveConfTable"] = conf ? toJson(confFields, *conf) : Json();
    json["DriveFullTask"] = Json::array();
    for (const DriveFullTask& task : tasks) {
        json["DriveFullTask"].push_back(toJson(taskFields, task));
    }
    std::cout << toLine(json) << '\n';
}

int config(Session& session, bool all)
{
    DatabaseService::DriverDBProvider& drive = session.readDrive();
    const auto [found, record] = drive.GetDriverConfItem();
    const std::optional<DriveConfTable> conf = found ? std::optional(record) : std::nullopt;
    const std::vector<DriveFullTask> tasks = drive.GetFullTask();
    if (session.json()) {
        printJson(conf, tasks);
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

Command configCommand()
{
    return {
        .name = "config",
        .group = group::showDrive,
        .summary = "Show the drive's synchronisation: its configuration and its full tasks",
        .arguments = {argument<bool>("--all", "Show the fields that are empty or 0 too")},
        .details = "Cursors, intervals, times and states are the client's own, in its units.\n"
                   "With --json the keys are the tables, and in them the stored columns; DriveConfTable is null where "
                   "there is none.",
        .example = "dbservice config --all",
        .run = config,
    };
}

} // namespace dbservice
