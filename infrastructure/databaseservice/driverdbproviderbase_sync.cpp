#include "databaseservice/driverdbproviderbase.h"
#include "databaseservice/engine/firstcell.h"
#include "databaseservice/engine/recordio.h"
#include "databaseservice/tables/drivecolumns.h"

#include <utility>

namespace DatabaseService {

namespace {

constexpr auto configurationColumns = pick(DriveConfColumns::table, DriveConfColumns::All);
constexpr auto taskColumns = pick(DriveFullTaskColumns::table, DriveFullTaskColumns::All);

/// Not made from the table: two of the values are wider than the members behind their columns.
template <class Value> Statement<std::pair<int, Value>> settingOf(const std::string& column)
{
    return statementOf<int, Value>("UPDATE DriveConfTable SET " + column + " = :" + column + " WHERE id = :id ;", ":id",
                                   ':' + column);
}

} // namespace

void DriverDBProviderBase::InsertDriverConfItem(DriveConfTable& configuration)
{
    static const auto& insert = neverDestroyed(insertStatement("INSERT INTO DriveConfTable (", configurationColumns));
    writeRecords(*this, insert, std::vector{&configuration});
}

int DriverDBProviderBase::CountDriverConfItem()
{
    return static_cast<int>(readNumber(*this, "SELECT COUNT(isFirstStart) FROM DriveConfTable;"));
}

std::pair<bool, DriveConfTable> DriverDBProviderBase::GetDriverConfItem()
{
    static const auto& select = neverDestroyed(selectText(configurationColumns, "FROM DriveConfTable;"));
    std::vector<DriveConfTable> rows;
    if (!readRecords(*this, select, nullptr, configurationColumns, rows) || rows.empty()) {
        return {};
    }
    return {true, std::move(rows.front())};
}

int DriverDBProviderBase::UpdateIsFirstStartInDriverConf(int id, int value)
{
    static const auto& update = neverDestroyed(settingOf<int>("isFirstStart"));
    return writeRecords(*this, update, std::vector{std::pair(id, value)}) ? 1 : 0;
}

bool DriverDBProviderBase::UpdateIsFirstStartInDriverConfV2(int id, int value)
{
    static const auto& update = neverDestroyed(settingOf<int>("isFirstStart"));
    writeRecords(*this, update, std::vector{std::pair(id, value)});
    return true;
}

bool DriverDBProviderBase::UpdateRootFileIdInDriverConf(int id, const std::string& fileId)
{
    static const auto& update = neverDestroyed(settingOf<std::string>("rootFileId"));
    writeRecords(*this, update, std::vector{std::pair(id, fileId)});
    return true;
}

bool DriverDBProviderBase::UpdateLastFullSyncTimestampInDriverConf(int id, const int64& timestamp)
{
    static const auto& update = neverDestroyed(settingOf<int64>("lastFullSyncTimestamp"));
    return writeRecords(*this, update, std::vector{std::pair(id, timestamp)});
}

bool DriverDBProviderBase::UpdateLastAutomaticSyncTimestampInDriverConf(int id, const int64& timestamp)
{
    static const auto& update = neverDestroyed(settingOf<int64>("lastAutomaticSyncTimestamp"));
    writeRecords(*this, update, std::vector{std::pair(id, timestamp)});
    return true;
}

bool DriverDBProviderBase::UpdateLastSubscribeTimestampInDriverConf(int id, const int64& timestamp)
{
    static const auto& update = neverDestroyed(settingOf<int64>("lastSubscribeTimestamp"));
    writeRecords(*this, update, std::vector{std::pair(id, timestamp)});
    return true;
}

bool DriverDBProviderBase::UpdateStartCursorInDriverConf(int id, const std::string& cursor)
{
    static const auto& update = neverDestroyed(settingOf<std::string>("startCursor"));
    writeRecords(*this, update, std::vector{std::pair(id, cursor)});
    return true;
}

bool DriverDBProviderBase::UpdateFullSyncIntervalInDriverConf(int id, const int64& interval)
{
    static const auto& update = neverDestroyed(settingOf<int64>("fullSyncInterval"));
    writeRecords(*this, update, std::vector{std::pair(id, interval)});
    return true;
}

bool DriverDBProviderBase::UpdateAutomaticSyncIntervalInDriverConf(int id, const int64& interval)
{
    static const auto& update = neverDestroyed(settingOf<int64>("automaticSyncInterval"));
    writeRecords(*this, update, std::vector{std::pair(id, interval)});
    return true;
}

bool DriverDBProviderBase::UpdateLastLostFileQueryTimestampInDriverConf(int id, const int64& timestamp)
{
    static const auto& update = neverDestroyed(settingOf<int64>("lastLostFileQueryTimestamp"));
    return writeRecords(*this, update, std::vector{std::pair(id, timestamp)});
}

bool DriverDBProviderBase::UpdateLostFileQueryCursorInDriverConf(int id, const std::string& cursor)
{
    static const auto& update = neverDestroyed(settingOf<std::string>("lostFileQueryCursor"));
    return writeRecords(*this, update, std::vector{std::pair(id, cursor)});
}

// Every writer of tasks answers true whatever the engine reported.

bool DriverDBProviderBase::InsertFullTask(const DriveFullTask& task)
{
    return InsertFullTaskBatch({task});
}

bool DriverDBProviderBase::InsertFullTaskBatch(const std::vector<DriveFullTask>& tasks)
{
    static const auto& insert = neverDestroyed(insertStatement("INSERT INTO DriveFullTask (", taskColumns));
    writeRecords(*this, insert, tasks);
    return true;
}

bool DriverDBProviderBase::RelaceFullTaskBatch(const std::vector<DriveFullTask>& tasks)
{
    static const auto& replace = neverDestroyed(insertStatement("REPLACE INTO DriveFullTask (", taskColumns));
    writeRecords(*this, replace, tasks);
    return true;
}

DriveFullTask DriverDBProviderBase::GetFullTaskById(std::string fileId)
{
    static const auto& select = neverDestroyed(
        statementOf<std::string>(selectText(taskColumns, "FROM DriveFullTask WHERE fileId = :fileId ;"), ":fileId"));
    std::vector<DriveFullTask> rows;
    auto key = oneValue(select, fileId);
    readRecords(*this, select.sql, &key, taskColumns, rows);
    return rows.empty() ? DriveFullTask{} : std::move(rows.front());
}

std::vector<DriveFullTask> DriverDBProviderBase::GetFullTask()
{
    static const auto& select = neverDestroyed(selectText(taskColumns, "FROM DriveFullTask;"));
    std::vector<DriveFullTask> rows;
    readRecords(*this, select, nullptr, taskColumns, rows);
    return rows;
}

bool DriverDBProviderBase::UpdateCursorInFullSyncTask(const std::string& fileId, const std::string& cursor)
{
    static const auto& update = neverDestroyed(statementOf<std::string, std::string>(
        "UPDATE DriveFullTask SET cursor = :cursor WHERE fileId = :fileId ;", ":fileId", ":cursor"));
    writeRecords(*this, update, std::vector{std::pair(fileId, cursor)});
    return true;
}

bool DriverDBProviderBase::UpdateStateInFullSyncTask(const std::string& fileId, int state)
{
    static const auto& update = neverDestroyed(statementOf<std::string, int>(
        "UPDATE DriveFullTask SET state = :state WHERE fileId = :fileId;", ":fileId", ":state"));
    writeRecords(*this, update, std::vector{std::pair(fileId, state)});
    return true;
}

bool DriverDBProviderBase::UpdateFullTaskWithValue(std::string /*fileId*/, int /*value*/)
{
    // Callers expect no change from it; the state is set by the operation above.
    return true;
}

bool DriverDBProviderBase::DeleteFullTask()
{
    Execute("DELETE FROM DriveFullTask;");
    return true;
}

bool DriverDBProviderBase::DeleteFullTaskById(std::string fileId)
{
    return DeleteFullTaskBatch({std::move(fileId)});
}

bool DriverDBProviderBase::DeleteFullTaskBatch(std::vector<std::string> fileIds)
{
    static const auto& remove =
        neverDestroyed(statementOf<std::string>("DELETE FROM DriveFullTask WHERE fileId = :fileId;", ":fileId"));
    writeRecords(*this, remove, fileIds);
    return true;
}

} // namespace DatabaseService
