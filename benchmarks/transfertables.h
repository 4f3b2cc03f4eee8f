#pragma once

#include "databaseservice/transferrecords.h"
#include "tableworkload.h"

#include <cstddef>

namespace benchmarks {

TableSubject<DatabaseService::TransmissionDB::CompletedTaskProperty> completedTransfers(std::size_t rows);
TableSubject<DatabaseService::TransmissionDB::DownloadTaskProperty> downloads(std::size_t rows);
TableSubject<DatabaseService::TransmissionDB::UploadTaskProperty> uploads(std::size_t rows);
/// Without an insert: the library has none for this table.
TableSubject<DatabaseService::TransmissionDB::DbTransferTask> transferTasks(std::size_t rows);

template <> struct Members<DatabaseService::TransmissionDB::CompletedTaskProperty> {
    static auto of(auto& r)
    {
        return std::tie(r.id, r.fileName, r.fileId, r.totalLength, r.localPath, r.taskType, r.endTime, r.isFastTrans,
                        r.pranteID, r.isMoveData);
    }
};

template <> struct Members<DatabaseService::TransmissionDB::UploadTaskProperty> {
    static auto of(auto& r)
    {
        return std::tie(r.id, r.fileName, r.fileId, r.totalLength, r.localPath, r.taskStatus, r.errorCode, r.startTime,
                        r.transferId, r.serverPath, r.sliceIndex, r.uploadOffset, r.sliceInfo, r.isBatch, r.isMoveData);
    }
};

template <> struct Members<DatabaseService::TransmissionDB::DownloadTaskProperty> {
    static auto of(auto& r)
    {
        return std::tie(r.id, r.fileName, r.relativePath, r.fileId, r.totalLength, r.position, r.sliceIdx, r.sliceCount,
                        r.localPath, r.taskType, r.isFastTrans, r.isMoveData, r.RecordType);
    }
};

template <> struct Members<DatabaseService::TransmissionDB::DbTransferTask> {
    static auto of(auto& r)
    {
        return std::tie(r.UniqueId, r.FileId, r.FileName, r.StartTime, r.EndTime, r.ErrorCode, r.TimeoutLimit,
                        r.TransferSize, r.TotalSize, r.TaskStatus, r.BatchCreateTime, r.BatchIndex, r.ModuleType,
                        r.TransferType, r.LocalFilePath, r.ParentId, r.AssetId, r.VersionId, r.Hash, r.UpdateTime,
                        r.SliceIndex, r.UploadOffset, r.ObjectBucketId, r.RecordCursor, r.ObsVersion, r.Priority,
                        r.IsMoveData, r.IsLoadedForSuccessList, r.CloudFilePath, r.ThumbnailUrl, r.CloudBatch,
                        r.ExpandStr1, r.ExpandStr2, r.ExpandStr3, r.ExpandInt1, r.ExpandInt2, r.ExpandInt3, r.Expand);
    }
};

} // namespace benchmarks
