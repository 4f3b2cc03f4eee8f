#include "databaseservice/engine/recordio.h"
#include "databaseservice/handover/addresses.h"
#include "databaseservice/tables/transfercolumns.h"
#include "databaseservice/transdbconnthread.h"

#include <cstdint>
#include <string_view>
#include <utility>

namespace DatabaseService::TransmissionDB {

namespace {

using Transfer = TransferTaskColumns;

constexpr auto keyColumn = pick(Transfer::table, Transfer::Key);
constexpr auto dataColumns = pick(Transfer::table, Transfer::Data);
static_assert(dataColumns.size() == 37);
constexpr auto allColumns = pick(Transfer::table, Transfer::Key | Transfer::Data);

constexpr auto completeColumns = pick(Transfer::table, "UniqueId", "FileId", "FileName", "EndTime", "TransferType",
                                      "TotalSize", "LocalFilePath", "ParentId");

constexpr auto activeKeys = pick(Transfer::table, "ModuleType", "TransferType", "TaskStatus");
constexpr auto completeKeys = pick(Transfer::table, "ModuleType", "TaskStatus");

// The tasks in this status are left out of the active lists.
constexpr std::int32_t inactiveStatus = 3;

const Statement<DbTransferTask>& update()
{
    static const auto& statement =
        neverDestroyed(updateStatement("UPDATE TransferTask", dataColumns, "WHERE UniqueId = :UniqueId;", keyColumn));
    return statement;
}

// `tail` takes its parameters from the members of `keys`.
Statement<DbTransferTask> selectWhere(const ColumnList<DbTransferTask>& columns, std::string_view tail,
                                      const ColumnList<DbTransferTask>& keys)
{
    return {selectText(columns, tail), parametersOf(keys)};
}

} // namespace

void TransDbConnThread::UpdateTask(std::list<DbTransferTask>& tasks)
{
    std::vector<const DbTransferTask*> records;
    records.reserve(tasks.size());
    for (const DbTransferTask& task : tasks) {
        records.push_back(&task);
    }
    writeRecords(*this, update(), records);
}

void TransDbConnThread::UpdateTaskStatus(const DbTransferTask& task)
{
    writeRecords(*this, update(), std::vector{&task});
}

bool TransDbConnThread::GetAllTask(std::vector<DbTransferTask>& tasks, int moduleType, int transferType)
{
    static const auto& select = neverDestroyed(selectWhere(
        allColumns,
        "FROM TransferTask WHERE ModuleType = :ModuleType AND TransferType = :TransferType AND TaskStatus != "
        ":TaskStatus;",
        activeKeys));
    DbTransferTask keys{};
    keys.ModuleType = moduleType;
    keys.TransferType = transferType;
    keys.TaskStatus = inactiveStatus;
    auto values = oneValue(select, keys);
    readRecords(*this, select.sql, &values, allColumns, tasks);
    return true;
}

bool TransDbConnThread::GetAllCompleteTask(std::vector<DbTransferTask>& tasks, int moduleType, int taskStatus)
{
    static const auto& select = neverDestroyed(
        selectWhere(completeColumns, "FROM TransferTask WHERE ModuleType = :ModuleType AND TaskStatus = :TaskStatus;",
                    completeKeys));
    DbTransferTask keys{};
    keys.ModuleType = moduleType;
    keys.TaskStatus = taskStatus;
    auto values = oneValue(select, keys);
    readRecords(*this, select.sql, &values, completeColumns, tasks);
    return true;
}

bool TransDbConnThread::GetTask(std::wstring& uniqueId, DbTransferTask& task)
{
    static const auto& select = neverDestroyed(statementOf<std::wstring>(
        selectText(allColumns, "FROM TransferTask WHERE UniqueId = :UniqueId;"), ":UniqueId"));
    std::vector<DbTransferTask> rows;
    auto key = oneValue(select, uniqueId);
    readRecords(*this, select.sql, &key, allColumns, rows);
    if (!rows.empty()) {
        task = std::move(rows.back());
    }
    return true;
}

void TransDbConnThread::LoadDbSQL(TransTaskType type, void* context, std::function<void(uint64, int64)> callback)
{
    if (!callback) {
        return;
    }
    std::vector<DbTransferTask> tasks;
    LoadDbSQL(std::move(type), tasks);
    for (const DbTransferTask& task : tasks) {
        callback(reinterpret_cast<std::uintptr_t>(context), addressOf(&task));
    }
}

void TransDbConnThread::LoadDbSQL(TransTaskType type, std::vector<DbTransferTask>& tasks)
{
    GetAllTask(tasks, type.ModuleType, type.TransferType);
}

void TransDbConnThread::DeleteTasks(int taskStatus)
{
    static const auto& remove =
        neverDestroyed(statementOf<int>("DELETE FROM TransferTask WHERE TaskStatus = :TaskStatus;", ":TaskStatus"));
    writeRecords(*this, remove, std::vector{taskStatus});
}

void TransDbConnThread::DeleteTasks(std::wstring uniqueId)
{
    static const auto& remove =
        neverDestroyed(statementOf<std::wstring>("DELETE FROM TransferTask WHERE UniqueId = :UniqueId;", ":UniqueId"));
    writeRecords(*this, remove, std::vector{std::move(uniqueId)});
}

bool TransDbConnThread::DeleteTasksFromTransferTask(int taskStatus)
{
    DeleteTasks(taskStatus);
    return true;
}

void TransDbConnThread::DeleteTask(DbTransferTask& task)
{
    DeleteTasks(task.UniqueId);
}

} // namespace DatabaseService::TransmissionDB
