#pragma once

#include "databaseservice/databaseoperationbase.h"
#include "databaseservice/export.h"
#include "databaseservice/integers.h"
#include "databaseservice/transferrecords.h"

#include <functional>
#include <list>
#include <memory>
#include <string>
#include <vector>

namespace DatabaseService::TransmissionDB {

/// The transfers of the client, in `transmission.dat`: the schema, the row writers and the readers. It starts no
/// thread, despite its name.
///
/// Threads: any; it holds the file's name and nothing else, and each call opens its own connection. Callbacks run on
/// the calling thread, after the connection is closed. `TransDbConn` and `TransmissionDBModule` write through the one
/// object, so another file name is given while neither is at work.
/// Ownership: the object lives as long as the process; what a call returns belongs to the caller; vectors are appended
/// to.
/// Failure: lines in the log. A result of true says nothing unless its comment says otherwise; in a batch a row that
/// fails is lost, the others land, and an empty batch runs an empty transaction. Readers give what an empty table
/// would give.
class DATABASESERVICE_EXPORT TransDbConnThread : public DatabaseOperationBase {
public:
    /// The process has one.
    static TransDbConnThread* GetInstance();

    /// Creates what is missing of the tables, but for `TransferTask`: callers rely on that one coming into being with
    /// `CreateTransferTaskTable` or the first read through `TransDbConn`. Always true.
    bool InitDatabase() override;

    ///@{
    /// Creates the table if it is missing.
    void CreateCompletedTaskTable();
    void CreateUploadTaskTable();
    void CreateDownloadTaskTable();
    void CreateTransferTaskTable();
    ///@}

    ///@{
    /// These four report whether the transaction was committed.
    bool DropCompletedTaskTable();
    bool DropDownloadTaskTable();
    bool DropTransferTaskTable();
    bool DropUploadTaskTable();
    ///@}

    /// Runs the caller's text, unchecked: quoting is the caller's business. Always true.
    bool ExecuteSQL(const std::string& sql);

    // --- Finished transfers ---------------------------------------------------------------------------------------

    /// One transaction. The table gives the ids: those of the records do not count and stay.
    void InsertCompletedTasks(std::vector<CompletedTaskProperty> tasks);
    /// Every column of the row with the record's `id`.
    void UpdateCompletedTasks(std::vector<CompletedTaskProperty> tasks);
    /// The rows with these ids.
    void DeleteCompletedTasks(std::vector<int> ids);
    /// Of either type; for one type give it twice.
    void DeleteAllCompletedTasks(int taskType, int otherTaskType);
    /// Appends the finished transfers of either type. Always true.
    bool GetAllCompletedTasks(std::vector<CompletedTaskProperty>& tasks, int taskType, int otherTaskType);
    /// The largest id, cut to 32 bits; 0 for an empty table.
    int GetCompletedTasksLastRowId();

    // --- Downloads ------------------------------------------------------------------------------------------------

    /// Null pointers are left out with a line in the log.
    void InsertDownloadTasks(std::vector<std::shared_ptr<DownloadTaskProperty>> tasks);
    /// Every column of the row with the record's `id`.
    void UpdateDownloadTasks(std::vector<DownloadTaskProperty> tasks);
    /// The rows with these ids.
    void DeleteDownloadTasks(std::vector<int> ids);
    /// Those of one type.
    void DeleteAllDownloadTasks(int taskType);
    /// Null when there is no such row.
    std::shared_ptr<DownloadTaskProperty> GetDownloadTask(int id);
    /// Appends the downloads of one type. Always true.
    bool GetAllDownloadTasks(std::vector<DownloadTaskProperty>& tasks, int taskType);
    /// The largest id, cut to 32 bits; 0 for an empty table.
    int GetDownloadTasksLastRowId();
    /// Every row of the table counts as undone.
    int CountDownloadTaskUnDone();

    // --- Uploads --------------------------------------------------------------------------------------------------

    /// The ids are the records' own. A row whose id is taken is lost.
    void InsertUploadTasks(std::vector<UploadTaskProperty> tasks);
    /// The row with this id.
    void DeleteUploadTask(int id);
    /// All of them.
    void DeleteUploadTask();
    ///@{
    /// Changes what its name says of the row with this id, and nothing else.
    void UpdateUploadTaskStatus(int id, int taskStatus, int errorCode);
    void UpdateUploadTaskSliceInfo(int id, std::string sliceInfo);
    void UpdateUploadTaskSliceIndex(int id, int sliceIndex);
    void UpdateUploadTaskUploadOffset(int id, int64 uploadOffset);
    ///@}
    /// Appends all uploads.
    void GetAllUploadTaskProperties(std::vector<UploadTaskProperty>& tasks);
    /// 0, also after an insert: it asks a connection that has inserted nothing. `TransDbConn::InsertUploadTask` hands
    /// that on.
    int GetUploadTaskLastRowId();

    // --- Transfer tasks -------------------------------------------------------------------------------------------
    // Rows come into the table through statements of the caller's own only (`ExecuteSQL`).

    /// Every column of the rows with the records' `UniqueId`. Adds no row.
    void UpdateTask(std::list<DbTransferTask>& tasks);
    /// The same for one task: all its columns, not the status alone.
    void UpdateTaskStatus(const DbTransferTask& task);

    /// The tasks that are not in status 3. Rows without a status are left out too.
    bool GetAllTask(std::vector<DbTransferTask>& tasks, int moduleType, int transferType);
    /// Fills `UniqueId`, `FileId`, `FileName`, `EndTime`, `TransferType`, `TotalSize`, `LocalFilePath` and `ParentId`;
    /// the other numbers hold no defined value.
    bool GetAllCompleteTask(std::vector<DbTransferTask>& tasks, int moduleType, int taskStatus);
    /// Always true. Without such a row `task` stays as it is.
    bool GetTask(std::wstring& uniqueId, DbTransferTask& task);

    /// Takes no SQL, despite its name: reads what `GetAllTask` reads into memory, then calls `callback` for each task
    /// with `context` and the task's address, both as integers. The address is good for the length of the call. What
    /// `callback` throws goes to the caller, with nothing left open. An empty `callback` reads nothing.
    void LoadDbSQL(TransTaskType type, void* context, std::function<void(uint64, int64)> callback);
    /// As `GetAllTask`.
    void LoadDbSQL(TransTaskType type, std::vector<DbTransferTask>& tasks);

    /// Those in this status.
    void DeleteTasks(int taskStatus);
    /// The row of this id.
    void DeleteTasks(std::wstring uniqueId);
    /// As `DeleteTasks`; always true.
    bool DeleteTasksFromTransferTask(int taskStatus);
    /// The row with the record's `UniqueId`.
    void DeleteTask(DbTransferTask& task);

private:
    DATABASESERVICE_NO_EXPORT TransDbConnThread();
};

} // namespace DatabaseService::TransmissionDB
