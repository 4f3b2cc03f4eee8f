#include "databaseservice/transdbconn.h"

#include "databaseservice/handover/nullrecords.h"
#include "databaseservice/transdbconnthread.h"

#include <atomic>
#include <chrono>
#include <concurrentqueue.h>
#include <thread>
#include <utility>

namespace DatabaseService::TransmissionDB {

namespace {

constexpr int noRow = -1;

TransDbConnThread& store()
{
    return *TransDbConnThread::GetInstance();
}

template <class Record> std::vector<int> idsOf(const std::vector<std::shared_ptr<Record>>& tasks)
{
    std::vector<int> ids;
    for (const std::shared_ptr<Record>& task : tasks) {
        if (task != nullptr && task->id != noRow) {
            ids.push_back(task->id);
        }
    }
    return ids;
}

} // namespace

std::string TransDbConn::dbPath;
// NOLINTNEXTLINE(cppcoreguidelines-interfaces-global-init): the size of the queue's blocks is a constant
TransDbConn::WriteQueue TransDbConn::writeQueue;
DBWriteThreadState TransDbConn::writeTreadState = DBWriteThreadIdle;
TransDbConn::TaskMap TransDbConn::taskQueue(8);
std::mutex TransDbConn::taskQueueMutex;
TransDbConn::TaskMap TransDbConn::taskStatusQueue(8);
std::mutex TransDbConn::taskStatusQueueMutex;

bool TransDbConn::InitDB(std::wstring /*path*/, bool /*create*/)
{
    return false;
}

bool TransDbConn::ResetDB(std::wstring /*path*/)
{
    return false;
}

void TransDbConn::CloseDB()
{
    const std::atomic_ref state(writeTreadState);
    DBWriteThreadState running = DBWriteThreadRunning;
    if (!state.compare_exchange_strong(running, DBWriteThreadStopping)) {
        return;
    }
    while (state != DBWriteThreadIdle) {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    dbPath.clear();
}

// Creates what is missing only to drop it: a change of user leaves a database file behind, never an empty one.
bool TransDbConn::DeleteTable(std::wstring /*folder*/)
{
    EnsureTransferTables();
    store().DropCompletedTaskTable();
    store().DropDownloadTaskTable();
    store().DropTransferTaskTable();
    store().DropUploadTaskTable();
    return true;
}

void TransDbConn::EnsureTransferTables()
{
    store().CreateCompletedTaskTable();
    store().CreateUploadTaskTable();
    store().CreateDownloadTaskTable();
    store().CreateTransferTaskTable();
}

void TransDbConn::InsertCompletedTask(std::shared_ptr<CompletedTaskProperty> task)
{
    if (task != nullptr) {
        store().InsertCompletedTasks({*task});
    }
}

void TransDbConn::InsertCompletedTasks(std::shared_ptr<std::vector<std::shared_ptr<CompletedTaskProperty>>> tasks)
{
    if (tasks != nullptr) {
        store().InsertCompletedTasks(copiesOf(*tasks, "TransDbConn::InsertCompletedTasks"));
    }
}

void TransDbConn::UpdateCompletedTask(std::shared_ptr<CompletedTaskProperty> task)
{
    if (task != nullptr) {
        store().UpdateCompletedTasks({*task});
    }
}

void TransDbConn::UpdateCompletedTasks(std::shared_ptr<std::vector<std::shared_ptr<CompletedTaskProperty>>> tasks)
{
    if (tasks != nullptr) {
        store().UpdateCompletedTasks(copiesOf(*tasks, "TransDbConn::UpdateCompletedTasks"));
    }
}

void TransDbConn::DeleteCompletedTask(std::shared_ptr<CompletedTaskProperty> task)
{
    if (task != nullptr && task->id != noRow) {
        store().DeleteCompletedTasks({task->id});
    }
}

void TransDbConn::DeleteCompletedTasks(std::shared_ptr<std::vector<std::shared_ptr<CompletedTaskProperty>>> tasks)
{
    if (tasks != nullptr) {
        store().DeleteCompletedTasks(idsOf(*tasks));
    }
}

void TransDbConn::DeleteAllCompletedTasks(int taskType, int otherTaskType)
{
    store().DeleteAllCompletedTasks(taskType, otherTaskType);
}

bool TransDbConn::GetAllCompletedTasks(std::vector<CompletedTaskProperty>& tasks, int taskType, int otherTaskType)
{
    EnsureTransferTables();
    return store().GetAllCompletedTasks(tasks, taskType, otherTaskType);
}

std::shared_ptr<CompletedTaskProperty> TransDbConn::GetCompletedTask(int /*id*/)
{
    return nullptr;
}

int TransDbConn::CountCompletedTaskProperties()
{
    return 0;
}

bool TransDbConn::GetSumOfTotalLength(int& /*sum*/)
{
    return false;
}

void TransDbConn::InsertDownloadTask(std::shared_ptr<DownloadTaskProperty> task)
{
    if (task != nullptr) {
        store().InsertDownloadTasks({task});
    }
}

void TransDbConn::InsertDownloadTasks(std::shared_ptr<std::vector<std::shared_ptr<DownloadTaskProperty>>> tasks)
{
    if (tasks != nullptr) {
        store().InsertDownloadTasks(*tasks);
    }
}

void TransDbConn::UpdateDownloadTask(std::shared_ptr<DownloadTaskProperty> task)
{
    if (task != nullptr) {
        store().UpdateDownloadTasks({*task});
    }
}

void TransDbConn::UpdateDownloadTasks(std::shared_ptr<std::vector<std::shared_ptr<DownloadTaskProperty>>> tasks)
{
    if (tasks != nullptr) {
        store().UpdateDownloadTasks(copiesOf(*tasks, "TransDbConn::UpdateDownloadTasks"));
    }
}

void TransDbConn::DeleteDownloadTask(std::shared_ptr<DownloadTaskProperty> task)
{
    if (task != nullptr && task->id != noRow) {
        store().DeleteDownloadTasks({task->id});
    }
}

void TransDbConn::DeleteDownloadTasks(std::shared_ptr<std::vector<std::shared_ptr<DownloadTaskProperty>>> tasks)
{
    if (tasks != nullptr) {
        store().DeleteDownloadTasks(idsOf(*tasks));
    }
}

void TransDbConn::DeleteAllDownloadTasks(int taskType)
{
    store().DeleteAllDownloadTasks(taskType);
}

std::shared_ptr<DownloadTaskProperty> TransDbConn::GetDownloadTask(int id)
{
    EnsureTransferTables();
    return store().GetDownloadTask(id);
}

bool TransDbConn::GetAllDownloadTasks(std::vector<DownloadTaskProperty>& tasks, int taskType)
{
    EnsureTransferTables();
    return store().GetAllDownloadTasks(tasks, taskType);
}

int TransDbConn::CountDownloadTaskUnDone()
{
    EnsureTransferTables();
    return store().CountDownloadTaskUnDone();
}

void TransDbConn::InsertUploadTask(const UploadTaskProperty& task, int& rowId)
{
    store().InsertUploadTasks({task});
    rowId = store().GetUploadTaskLastRowId();
}

void TransDbConn::InsertUploadTasks(std::shared_ptr<std::vector<std::shared_ptr<UploadTaskProperty>>> tasks)
{
    if (tasks != nullptr) {
        store().InsertUploadTasks(copiesOf(*tasks, "TransDbConn::InsertUploadTasks"));
    }
}

void TransDbConn::DeleteUploadTask(int id)
{
    if (id != noRow) {
        store().DeleteUploadTask(id);
    }
}

void TransDbConn::DeleteAllUploadTasks()
{
    store().DeleteUploadTask();
}

void TransDbConn::UpdateUploadTaskStatus(int id, int taskStatus, int errorCode)
{
    store().UpdateUploadTaskStatus(id, taskStatus, errorCode);
}

void TransDbConn::UpdateUploadTaskSliceInfo(int id, std::string sliceInfo)
{
    store().UpdateUploadTaskSliceInfo(id, std::move(sliceInfo));
}

void TransDbConn::UpdateUploadTaskSliceIndex(int id, int sliceIndex)
{
    store().UpdateUploadTaskSliceIndex(id, sliceIndex);
}

void TransDbConn::UpdateUploadTaskUploadOffset(int id, int64 uploadOffset)
{
    store().UpdateUploadTaskUploadOffset(id, uploadOffset);
}

bool TransDbConn::GetAllUploadTaskProperties(std::vector<UploadTaskProperty>& tasks)
{
    EnsureTransferTables();
    store().GetAllUploadTaskProperties(tasks);
    return true;
}

bool TransDbConn::GetUploadTaskProperty(int /*id*/, UploadTaskProperty& /*task*/)
{
    return false;
}

bool TransDbConn::UpdateUploadTaskProperty(const UploadTaskProperty& /*task*/)
{
    return false;
}

int TransDbConn::CountUploadTaskProperties()
{
    return 0;
}

int TransDbConn::CountUploadTaskUnDone()
{
    return 0;
}

void TransDbConn::UpdateTask(const DbTransferTask& task)
{
    const std::lock_guard lock(taskQueueMutex);
    taskQueue[task.UniqueId] = task;
}

void TransDbConn::UpdateTaskStatus(const DbTransferTask& task)
{
    const std::lock_guard lock(taskStatusQueueMutex);
    taskStatusQueue[task.UniqueId] = task;
}

bool TransDbConn::GetAllTask(std::vector<DbTransferTask>& tasks, int moduleType, int transferType)
{
    EnsureTransferTables();
    return store().GetAllTask(tasks, moduleType, transferType);
}

bool TransDbConn::GetAllCompleteTask(std::vector<DbTransferTask>& tasks, int moduleType, int taskStatus)
{
    EnsureTransferTables();
    return store().GetAllCompleteTask(tasks, moduleType, taskStatus);
}

bool TransDbConn::GetTask(std::wstring& uniqueId, DbTransferTask& task)
{
    EnsureTransferTables();
    return store().GetTask(uniqueId, task);
}

void TransDbConn::DeleteTasks(int taskStatus)
{
    store().DeleteTasks(taskStatus);
}

bool TransDbConn::DeleteTasksFromTransferTask(int taskStatus)
{
    EnsureTransferTables();
    return store().DeleteTasksFromTransferTask(taskStatus);
}

void TransDbConn::DeleteTask(std::shared_ptr<DbTransferTask> task)
{
    if (task != nullptr) {
        store().DeleteTask(*task);
    }
}

} // namespace DatabaseService::TransmissionDB
