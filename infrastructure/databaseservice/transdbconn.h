#pragma once

#include "databaseservice/export.h"
#include "databaseservice/integers.h"
#include "databaseservice/transferrecords.h"

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

// The queue's own header is needed inside the library only.
namespace moodycamel {
struct ConcurrentQueueDefaultTraits;
template <typename T, typename Traits> class ConcurrentQueue;
} // namespace moodycamel

namespace DatabaseService::TransmissionDB {

/// The synchronous way into the transfer store: every operation is done when it returns. The members speak of a queue
/// with a thread behind it; there is none.
///
/// Threads: any; calls run on the caller's thread through `TransDbConnThread`. The two maps have a lock each.
/// Ownership: what a call returns belongs to the caller; records are copied, vectors are appended to.
/// Failure: lines in the log, as with `TransDbConnThread`. Null pointers, an `id` of -1 and unknown ids are passed
/// over silently, but null records in lists to insert or update are left out with a line in the log.
///
/// Every read creates the tables that are missing first; writes do not.
class DATABASESERVICE_EXPORT TransDbConn {
public:
    /// Does nothing, and its false is no failure.
    static bool InitDB(std::wstring path, bool create);
    /// Does nothing, and its false is no failure.
    static bool ResetDB(std::wstring path);
    /// Waits for a write thread that is running to end. None ever is, so it returns at once.
    static void CloseDB();
    /// Drops the four tables. The argument is not used. Always true.
    static bool DeleteTable(std::wstring folder);

    // --- Finished transfers ---------------------------------------------------------------------------------------

    ///@{
    /// A list is one transaction, and so is each single record: for many, a list is far quicker.
    static void InsertCompletedTask(std::shared_ptr<CompletedTaskProperty> task);
    static void InsertCompletedTasks(std::shared_ptr<std::vector<std::shared_ptr<CompletedTaskProperty>>> tasks);
    static void UpdateCompletedTask(std::shared_ptr<CompletedTaskProperty> task);
    static void UpdateCompletedTasks(std::shared_ptr<std::vector<std::shared_ptr<CompletedTaskProperty>>> tasks);
    static void DeleteCompletedTask(std::shared_ptr<CompletedTaskProperty> task);
    static void DeleteCompletedTasks(std::shared_ptr<std::vector<std::shared_ptr<CompletedTaskProperty>>> tasks);
    ///@}
    /// Of either type; for one type give it twice.
    static void DeleteAllCompletedTasks(int taskType, int otherTaskType);
    /// Appends the finished transfers of either type. Always true.
    static bool GetAllCompletedTasks(std::vector<CompletedTaskProperty>& tasks, int taskType, int otherTaskType);
    /// Always null.
    static std::shared_ptr<CompletedTaskProperty> GetCompletedTask(int id);
    /// Always 0.
    static int CountCompletedTaskProperties();
    /// Always false; `sum` stays as it is.
    static bool GetSumOfTotalLength(int& sum);

    // --- Downloads ------------------------------------------------------------------------------------------------

    ///@{
    /// As with finished transfers: a list is one transaction, and so is each single record.
    static void InsertDownloadTask(std::shared_ptr<DownloadTaskProperty> task);
    static void InsertDownloadTasks(std::shared_ptr<std::vector<std::shared_ptr<DownloadTaskProperty>>> tasks);
    static void UpdateDownloadTask(std::shared_ptr<DownloadTaskProperty> task);
    static void UpdateDownloadTasks(std::shared_ptr<std::vector<std::shared_ptr<DownloadTaskProperty>>> tasks);
    static void DeleteDownloadTask(std::shared_ptr<DownloadTaskProperty> task);
    static void DeleteDownloadTasks(std::shared_ptr<std::vector<std::shared_ptr<DownloadTaskProperty>>> tasks);
    ///@}
    /// Those of one type.
    static void DeleteAllDownloadTasks(int taskType);
    /// Null when there is no such row.
    static std::shared_ptr<DownloadTaskProperty> GetDownloadTask(int id);
    /// Appends the downloads of one type. Always true.
    static bool GetAllDownloadTasks(std::vector<DownloadTaskProperty>& tasks, int taskType);
    /// Every row of the table counts as undone.
    static int CountDownloadTaskUnDone();

    // --- Uploads --------------------------------------------------------------------------------------------------

    /// Sets `rowId` to 0; the row's id is the one in the record.
    static void InsertUploadTask(const UploadTaskProperty& task, int& rowId);
    /// One transaction. The ids are the records' own; a row whose id is taken is lost.
    static void InsertUploadTasks(std::shared_ptr<std::vector<std::shared_ptr<UploadTaskProperty>>> tasks);
    ///@{
    /// As the operations of these names of `TransDbConnThread`.
    static void DeleteUploadTask(int id);
    static void DeleteAllUploadTasks();
    static void UpdateUploadTaskStatus(int id, int taskStatus, int errorCode);
    static void UpdateUploadTaskSliceInfo(int id, std::string sliceInfo);
    static void UpdateUploadTaskSliceIndex(int id, int sliceIndex);
    static void UpdateUploadTaskUploadOffset(int id, int64 uploadOffset);
    ///@}
    /// Always true.
    static bool GetAllUploadTaskProperties(std::vector<UploadTaskProperty>& tasks);
    /// Always false; `task` stays as it is.
    static bool GetUploadTaskProperty(int id, UploadTaskProperty& task);
    /// Always false; changes nothing.
    static bool UpdateUploadTaskProperty(const UploadTaskProperty& task);
    /// Always 0.
    static int CountUploadTaskProperties();
    /// Always 0.
    static int CountUploadTaskUnDone();

    // --- Transfer tasks -------------------------------------------------------------------------------------------

    ///@{
    /// Both keep the task in memory, the last one for each `UniqueId`, until the library unloads; neither reaches the
    /// file. `TransDbConnThread` has the operations of these names that do.
    static void UpdateTask(const DbTransferTask& task);
    static void UpdateTaskStatus(const DbTransferTask& task);
    ///@}

    ///@{
    /// As the operations of these names of `TransDbConnThread`.
    static bool GetAllTask(std::vector<DbTransferTask>& tasks, int moduleType, int transferType);
    static bool GetAllCompleteTask(std::vector<DbTransferTask>& tasks, int moduleType, int taskStatus);
    ///@}
    /// Always true. Without such a row `task` stays as it is.
    static bool GetTask(std::wstring& uniqueId, DbTransferTask& task);
    /// Those in this status.
    static void DeleteTasks(int taskStatus);
    /// As `DeleteTasks`, but creates the tables that are missing first; always true.
    static bool DeleteTasksFromTransferTask(int taskStatus);
    /// The row with the record's `UniqueId`.
    static void DeleteTask(std::shared_ptr<DbTransferTask> task);

private:
    using TaskMap = std::unordered_map<std::wstring, DbTransferTask>;
    using WriteQueue = moodycamel::ConcurrentQueue<std::function<void()>, moodycamel::ConcurrentQueueDefaultTraits>;

    DATABASESERVICE_NO_EXPORT static void EnsureTransferTables();

    static std::string dbPath;
    static WriteQueue writeQueue;
    static DBWriteThreadState writeTreadState;
    static TaskMap taskQueue;
    static std::mutex taskQueueMutex;
    static TaskMap taskStatusQueue;
    static std::mutex taskStatusQueueMutex;

    std::shared_ptr<void> m_unused; // part of the object's layout
};

} // namespace DatabaseService::TransmissionDB
