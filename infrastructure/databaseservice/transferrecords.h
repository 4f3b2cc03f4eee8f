#pragma once

#include "databaseservice/export.h"
#include "databaseservice/integers.h"

#include <cstdint>
#include <string>

/// The records of the transfer store, `transmission.dat`. Wide text is UTF-16 on Windows and UTF-32 elsewhere, narrow
/// text is UTF-8. States, types and error codes are the client's numbers, but for the status 3, which
/// `TransDbConnThread::GetAllTask` leaves out. `docs/stores.md` tells what each column means and who writes it.
///
/// Threads: plain values, safe as long as one thread at a time has them.
namespace DatabaseService::TransmissionDB {

/// A download that is not finished: a row of `DownloadTaskTable`. An `id` of -1 means that there is no row.
class DATABASESERVICE_EXPORT DownloadTaskProperty {
public:
    DownloadTaskProperty() = default;
    DownloadTaskProperty(const DownloadTaskProperty&) = default;
    DownloadTaskProperty& operator=(const DownloadTaskProperty&) = default;
    virtual ~DownloadTaskProperty();

    ///@{
    /// The wide member of this name as UTF-8.
    std::string GetFileNameU8() const;
    void SetFileNameU8(std::string value);
    std::string GetLocalPathU8() const;
    void SetLocalPathU8(std::string value);
    std::string GetRelativePathU8() const;
    void SetRelativePathU8(std::string value);
    ///@}

    std::int32_t id = -1; ///< given by the table
    std::int32_t taskType = 0;
    std::int32_t sliceIdx = 0;
    std::int32_t sliceCount = 0;
    int64 totalLength = 0;
    int64 position = 0;
    std::string fileId;
    std::wstring fileName;
    std::wstring localPath;
    std::wstring relativePath;
    bool isFastTrans = false;
    bool isMoveData = false;
    std::int32_t RecordType = 0;
};

/// A transfer that is finished: a row of `CompletedTaskTable`. An `id` of -1 means that there is no row.
class DATABASESERVICE_EXPORT CompletedTaskProperty {
public:
    CompletedTaskProperty() = default;
    CompletedTaskProperty(const CompletedTaskProperty&) = default;
    CompletedTaskProperty& operator=(const CompletedTaskProperty&) = default;
    virtual ~CompletedTaskProperty();

    ///@{
    /// The wide member of this name as UTF-8.
    std::string GetFileNameU8() const;
    void SetFileNameU8(std::string value);
    std::string GetLocalPathU8() const;
    void SetLocalPathU8(std::string value);
    ///@}

    std::int32_t id = -1; ///< given by the table
    std::int32_t taskType = 0;
    int64 totalLength = 0;
    int64 endTime = 0;
    std::string auxText; ///< never stored
    std::string fileId;
    std::wstring fileName;
    std::wstring localPath;
    std::string pranteID;
    bool isFastTrans = false;
    bool isMoveData = false;
};

/// An upload that is not finished: a row of `UploadTaskTable`. Whoever fills it sets the `id` at least.
struct UploadTaskProperty {
    std::string fileName;
    std::string fileId;
    int64 totalLength = 0;
    int64 uploadOffset = 0;
    std::string localPath;
    std::int32_t taskStatus = 0;
    std::int32_t errorCode = 0;
    std::string startTime;
    std::string transferId;
    std::int32_t id = 0; ///< given by the caller
    std::string serverPath;
    std::int32_t sliceIndex = 0;
    std::string sliceInfo;
    bool isBatch = false;
    bool isMoveData = false;
};

/// A transfer of either direction: a row of `TransferTask`, which has the columns in another order. The numbers hold
/// no defined value until somebody sets them.
// NOLINTBEGIN(cppcoreguidelines-pro-type-member-init): no defined value, as said
struct DATABASESERVICE_EXPORT DbTransferTask {
    DbTransferTask() = default;
    DbTransferTask(const DbTransferTask&) = default;
    DbTransferTask(DbTransferTask&&) = default;
    DbTransferTask& operator=(const DbTransferTask&) = default;
    DbTransferTask& operator=(DbTransferTask&&) = default;
    ~DbTransferTask() = default;

    std::wstring UniqueId;
    std::wstring FileId;
    std::wstring FileName;
    int64 StartTime;
    int64 EndTime;
    std::int32_t ErrorCode;
    std::int32_t TimeoutLimit;
    int64 TransferSize;
    int64 TotalSize;
    std::int32_t TaskStatus;
    int64 BatchCreateTime;
    std::int32_t BatchIndex;
    std::int32_t ModuleType;
    std::int32_t TransferType;
    std::wstring LocalFilePath;
    std::wstring ParentId;
    std::wstring AssetId;
    std::wstring VersionId;
    std::wstring Hash;
    int64 UpdateTime;
    std::int32_t SliceIndex;
    int64 UploadOffset;
    std::wstring ObjectBucketId;
    std::wstring RecordCursor;
    std::wstring ObsVersion;
    std::int32_t Priority;
    std::int32_t IsMoveData;
    std::int32_t IsLoadedForSuccessList;
    std::wstring CloudFilePath;
    std::wstring Expand;
    std::wstring ThumbnailUrl;
    int64 CloudBatch;
    std::wstring ExpandStr1;
    std::wstring ExpandStr2;
    std::wstring ExpandStr3;
    int64 ExpandInt1;
    int64 ExpandInt2;
    int64 ExpandInt3;
};
// NOLINTEND(cppcoreguidelines-pro-type-member-init)

/// Selects the tasks that `TransDbConnThread::LoadDbSQL` loads.
struct DATABASESERVICE_EXPORT TransTaskType {
    TransTaskType() = default;
    TransTaskType(const TransTaskType&) = default;
    TransTaskType(TransTaskType&&) = default;
    TransTaskType& operator=(const TransTaskType&) = default;
    TransTaskType& operator=(TransTaskType&&) = default;
    ~TransTaskType() = default;

    std::int32_t ModuleType = 0;   ///< as in `DbTransferTask`
    std::int32_t TransferType = 0; ///< as in `DbTransferTask`
    std::wstring TaskKey;          ///< the caller's own; no statement reads it
};

/// The client's own; nothing in this library fills or reads it.
struct DATABASESERVICE_EXPORT TransTaskVec {
    TransTaskVec() = default;
    TransTaskVec(const TransTaskVec&) = default;
    TransTaskVec(TransTaskVec&&) = default;
    TransTaskVec& operator=(const TransTaskVec&) = default;
    TransTaskVec& operator=(TransTaskVec&&) = default;
    ~TransTaskVec() = default;

    std::wstring TaskKey; ///< the client's own
    int64 TaskList = 0;   ///< the client's own
};

/// The state of a thread that `TransDbConn` speaks of and never starts.
enum DBWriteThreadState {
    DBWriteThreadIdle = 0,    ///< no write thread is running
    DBWriteThreadRunning = 1, ///< a write thread is running
    DBWriteThreadStopping = 2 ///< the write thread has been told to stop
};

} // namespace DatabaseService::TransmissionDB
