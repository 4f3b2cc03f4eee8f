#pragma once

#include "clientservices/modulebase.h"
#include "databaseservice/export.h"
#include "databaseservice/integers.h"
#include "databaseservice/transferrecords.h"

#include <functional>
#include <list>
#include <memory>
#include <string>
#include <vector>

namespace DatabaseService::TransmissionDB {

/// The way into the transfer store that does not wait: most writes are messages to a thread of the module's own, named
/// "TransmissionDBModule". `TransDbConn` is the way that waits; the two are not ordered against each other.
///
/// Every post is a transaction of its own, which takes the disk's time: whoever has many records posts one list, which
/// is one transaction.
///
/// Uploads are posted here and read back through `TransDbConnThread::GetAllUploadTaskProperties`; the module itself
/// reads finished transfers, downloads and transfer tasks.
///
/// ```cpp
/// TransmissionDBModule& transfers = TransmissionDBModule::GetInstance();
/// transfers.OnUserLogin(); // creates the tables
/// std::list<std::shared_ptr<UploadTaskProperty>> uploads{upload(1), upload(2)};
/// transfers.InsertUploadTask(uploads);
/// transfers.StopWork(); // returns when all that was posted is written
/// ```
///
/// Threads: any, but for the notifications (`OnUserLogin` and its like), which come one at a time. Writes that are
/// posted return at once and are done later, one at a time, in posting order. The others run on the calling thread.
/// Ownership: the instance belongs to the process and is never destroyed. A list that is posted is emptied, whether
/// that works or not; its records belong to the message. An object of a derived class has to be stopped before it goes.
/// Failure: lines in the log. What cannot be posted, since the module is stopped, is lost. That a post has worked says
/// nothing of the write: what goes wrong there is a line of the engine's. Null records are left out with a line, and
/// what is posted before the tables exist is lost with one.
class DATABASESERVICE_EXPORT TransmissionDBModule : public TessixDeskClient::ModuleBase {
public:
    /// The first call starts the thread.
    static TransmissionDBModule& GetInstance();

    TransmissionDBModule(const TransmissionDBModule&) = delete;
    TransmissionDBModule& operator=(const TransmissionDBModule&) = delete;
    ~TransmissionDBModule() override;

    /// Waits, with no time limit, until all that was posted before is written; posts fail from then on. Does not wait
    /// on the module's own thread, nor when the module is stopped already. There is no second start.
    void StopWork() override;
    /// Does nothing.
    void OnInit() override;
    /// Creates what is missing of the tables, but for `TransferTask`, on the calling thread.
    void OnUserLogin() override;
    /// What is posted after it is written all the same.
    void OnUserLogout() override;
    /// Does nothing.
    void OnIntervalCheck() override;
    /// Does nothing.
    void ResetDB();

    // --- Posted writes --------------------------------------------------------------------------------------------
    // A list is one message and one transaction, `DeleteTask` apart.

    ///@{
    /// The rows with these ids.
    void DeleteCompletedTask(int id);
    void DeleteCompletedTask(std::list<int>& ids);
    ///@}
    /// Every column of the row with the record's `id`.
    void UpdateCompletedTask(std::shared_ptr<CompletedTaskProperty> task);
    /// The same for many.
    void UpdateCompletedTask(std::list<std::shared_ptr<CompletedTaskProperty>>& tasks);

    ///@{
    /// The rows with these ids.
    void DeleteDownloadTask(int id);
    void DeleteDownloadTask(std::list<int>& ids);
    ///@}
    /// Every column of the row with the record's `id`.
    void UpdateDownloadTask(std::shared_ptr<DownloadTaskProperty> task);
    /// The same for many.
    void UpdateDownloadTask(std::list<std::shared_ptr<DownloadTaskProperty>>& tasks);

    ///@{
    /// The ids are the records' own. A row whose id is taken is lost.
    void InsertUploadTask(std::shared_ptr<UploadTaskProperty> task);
    void InsertUploadTask(std::list<std::shared_ptr<UploadTaskProperty>>& tasks);
    ///@}

    /// Every column of the rows with the records' `UniqueId`. Adds no row.
    void UpdateTask(std::list<DbTransferTask>& tasks);
    /// Those in this status.
    void DeleteTasks(int taskStatus);
    /// The same as `DeleteTasks`.
    void DeleteTasksFromTransferTask(int taskStatus);
    /// The row with the record's `UniqueId`.
    void DeleteTask(std::shared_ptr<DbTransferTask> task);
    /// The row of `TransferTask` with this id.
    void DeleteTaskCompleteTask(std::wstring uniqueId);

    /// Any text, unchecked: quoting is the caller's business. It is the one way to add rows to `TransferTask`. Gives
    /// whether it was posted, also for text that will fail.
    bool ExecuteSQL(const std::string& sql);

    // --- Writes on the calling thread -----------------------------------------------------------------------------
    // Done when they return, ahead of what is posted and not yet written. Callers read the rows and their ids next.

    ///@{
    /// The table gives the ids: those of the records do not count and stay.
    void InsertCompletedTask(std::shared_ptr<CompletedTaskProperty> task);
    void InsertCompletedTask(std::list<std::shared_ptr<CompletedTaskProperty>>& tasks);
    ///@}
    /// Of either type; for one type give it twice.
    void DeleteAllCompletedTasks(int taskType, int otherTaskType);

    ///@{
    /// The table gives the ids: those of the records do not count and stay.
    void InsertDownloadTask(std::shared_ptr<DownloadTaskProperty> task);
    void InsertDownloadTask(std::list<std::shared_ptr<DownloadTaskProperty>>& tasks);
    ///@}
    /// Those of one type.
    void DeleteAllDownloadTasks(int taskType);

    // --- Reads, on the calling thread -----------------------------------------------------------------------------
    // As the operations of `TransDbConnThread`, results included. What is posted and not yet written is not seen. For
    // uploads there is none here.

    ///@{
    /// As the operation of this name of `TransDbConnThread`.
    bool GetAllCompletedTasks(std::vector<CompletedTaskProperty>& tasks, int taskType, int otherTaskType);
    bool GetAllDownloadTasks(std::vector<DownloadTaskProperty>& tasks, int taskType);
    bool GetAllTask(std::vector<DbTransferTask>& tasks, int moduleType, int transferType);
    bool GetAllCompleteTask(std::vector<DbTransferTask>& tasks, int moduleType, int taskStatus);
    bool GetTask(std::wstring& uniqueId, DbTransferTask& task);
    void LoadDbSQL(TransTaskType type, void* context, std::function<void(uint64, int64)> callback);
    void LoadDbSQL(TransTaskType type, std::vector<DbTransferTask>& tasks);
    ///@}

protected:
    TransmissionDBModule();

    // The handlers. `payload` is the address of a heap object, which they free; with 0 they do nothing.

    ///@{
    /// Handles the message of this name: one transaction.
    void NotifyInsertCompleted(uint64, int64 payload);
    void NotifyDeleteCompleted(uint64, int64 payload);
    void NotifyUpdateCompleted(uint64, int64 payload);
    void NotifyInsertDownload(uint64, int64 payload);
    void NotifyDeleteDownload(uint64, int64 payload);
    void NotifyUpdateDownload(uint64, int64 payload);
    void NotifyInsetUpload(uint64, int64 payload);
    void NotifyUpdateTask(uint64, int64 payload);
    void NotifyDeleteTasks(uint64, int64 payload);
    void NotifyDeleteTasksFromTransferTask(uint64, int64 payload);
    /// A transaction for each task.
    void NotifyDeleteTask(uint64, int64 payload);
    void NotifyDeleteTaskCompleted(uint64, int64 payload);
    /// Has no payload.
    void NotifyQuitApp(uint64, int64);
    void NotifyExecuteSQL(uint64, int64 payload);
    ///@}

private:
    unsigned m_msgInsertCompleted = 0;
    unsigned m_msgDeleteCompleted = 0;
    unsigned m_msgUpdateCompleted = 0;
    unsigned m_msgInsertDownload = 0;
    unsigned m_msgDeleteDownload = 0;
    unsigned m_msgUpdateDownload = 0;
    unsigned m_msgInsetUpload = 0;
    unsigned m_msgUpdateTask = 0;
    unsigned m_msgDeleteTasks = 0;
    unsigned m_msgDeleteTasksFromTransferTask = 0;
    unsigned m_msgDeleteTask = 0;
    unsigned m_msgDeleteTaskCompleted = 0;
    unsigned m_msgQuitApp = 0;
    unsigned m_msgExecuteSQL = 0;
    bool m_userLoggedIn = false; ///< kept for the client's debugger; nothing asks it
};

} // namespace DatabaseService::TransmissionDB
