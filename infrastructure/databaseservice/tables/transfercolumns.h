#pragma once

#include "databaseservice/engine/recordcolumns.h"
#include "databaseservice/transferrecords.h"

namespace DatabaseService::TransmissionDB {

/// The tables of `transmission.dat`, column by column.

struct CompletedTaskColumns {
    enum Group : unsigned { Key = 1, Data = 2 };

    static constexpr std::array table{
        // clang-format off
        column<&CompletedTaskProperty::id>("id", "INTEGER PRIMARY KEY AUTOINCREMENT NOT NULL", Key),
        column<&CompletedTaskProperty::fileName>("fileName", "TEXT", Data),
        column<&CompletedTaskProperty::fileId>("fileId", "TEXT", Data),
        column<&CompletedTaskProperty::totalLength>("totalLength", "INTEGER DEFAULT (0)", Data),
        column<&CompletedTaskProperty::localPath>("localPath", "TEXT", Data),
        column<&CompletedTaskProperty::taskType>("taskType", "INTEGER DEFAULT (0)", Data),
        column<&CompletedTaskProperty::endTime>("endTime", "INTEGER DEFAULT (0)", Data),
        column<&CompletedTaskProperty::isFastTrans>("isFastTrans", "INTEGER DEFAULT (0)", Data),
        column<&CompletedTaskProperty::pranteID>("pranteID", "TEXT", Data),
        column<&CompletedTaskProperty::isMoveData>("isMoveData", "INTEGER DEFAULT (0)", Data),
        // clang-format on
    };
    static_assert(table.size() == 10);
};

struct UploadTaskColumns {
    enum Group : unsigned { All = 1 };

    static constexpr std::array table{
        // clang-format off
        column<&UploadTaskProperty::id>("id", "INTEGER PRIMARY KEY NOT NULL", All),
        column<&UploadTaskProperty::fileName>("fileName", "TEXT", All),
        column<&UploadTaskProperty::fileId>("fileId", "TEXT", All),
        column<&UploadTaskProperty::totalLength>("totalLength", "INTEGER", All),
        column<&UploadTaskProperty::localPath>("localPath", "TEXT", All),
        column<&UploadTaskProperty::taskStatus>("taskStatus", "INTEGER", All),
        column<&UploadTaskProperty::errorCode>("errorCode", "INTEGER", All),
        column<&UploadTaskProperty::startTime>("startTime", "TEXT", All),
        column<&UploadTaskProperty::transferId>("transferId", "TEXT", All),
        column<&UploadTaskProperty::serverPath>("serverPath", "TEXT", All),
        column<&UploadTaskProperty::sliceIndex>("sliceIndex", "INTEGER", All),
        column<&UploadTaskProperty::uploadOffset>("uploadOffset", "INTEGER", All),
        column<&UploadTaskProperty::sliceInfo>("sliceInfo", "TEXT", All),
        column<&UploadTaskProperty::isBatch>("isBatch", "INTEGER", All),
        column<&UploadTaskProperty::isMoveData>("isMoveData", "INTEGER DEFAULT (0)", All),
        // clang-format on
    };
    static_assert(table.size() == 15);
};

struct DownloadTaskColumns {
    enum Group : unsigned { Key = 1, Data = 2 };

    static constexpr std::array table{
        // clang-format off
        column<&DownloadTaskProperty::id>("id", "INTEGER PRIMARY KEY AUTOINCREMENT NOT NULL", Key),
        column<&DownloadTaskProperty::fileName>("fileName", "TEXT", Data),
        column<&DownloadTaskProperty::relativePath>("relativePath", "TEXT", Data),
        column<&DownloadTaskProperty::fileId>("fileId", "TEXT", Data),
        column<&DownloadTaskProperty::totalLength>("totalLength", "INTEGER DEFAULT (0)", Data),
        column<&DownloadTaskProperty::position>("position", "INTEGER DEFAULT (0)", Data),
        column<&DownloadTaskProperty::sliceIdx>("sliceIdx", "INTEGER DEFAULT (0)", Data),
        column<&DownloadTaskProperty::sliceCount>("sliceCount", "INTEGER DEFAULT (0)", Data),
        column<&DownloadTaskProperty::localPath>("localPath", "TEXT", Data),
        column<&DownloadTaskProperty::taskType>("taskType", "INTEGER DEFAULT (0)", Data),
        column<&DownloadTaskProperty::isFastTrans>("isFastTrans", "INTEGER DEFAULT (0)", Data),
        column<&DownloadTaskProperty::isMoveData>("isMoveData", "INTEGER DEFAULT (0)", Data),
        column<&DownloadTaskProperty::RecordType>("RecordType", "INTEGER DEFAULT (0)", Data),
        // clang-format on
    };
    static_assert(table.size() == 13);
};

struct TransferTaskColumns {
    enum Group : unsigned { Key = 1, Data = 2 };

    static constexpr std::array table{
        // clang-format off
        column<&DbTransferTask::UniqueId>("UniqueId", "TEXT PRIMARY KEY NOT NULL", Key),
        column<&DbTransferTask::FileId>("FileId", "TEXT", Data),
        column<&DbTransferTask::FileName>("FileName", "TEXT", Data),
        column<&DbTransferTask::StartTime>("StartTime", "INTEGER", Data),
        column<&DbTransferTask::EndTime>("EndTime", "INTEGER", Data),
        column<&DbTransferTask::ErrorCode>("ErrorCode", "INTEGER", Data),
        column<&DbTransferTask::TimeoutLimit>("TimeoutLimit", "INTEGER", Data),
        column<&DbTransferTask::TransferSize>("TransferSize", "INTEGER", Data),
        column<&DbTransferTask::TotalSize>("TotalSize", "INTEGER", Data),
        column<&DbTransferTask::TaskStatus>("TaskStatus", "INTEGER", Data),
        column<&DbTransferTask::BatchCreateTime>("BatchCreateTime", "INTEGER", Data),
        column<&DbTransferTask::BatchIndex>("BatchIndex", "INTEGER", Data),
        column<&DbTransferTask::ModuleType>("ModuleType", "INTEGER", Data),
        column<&DbTransferTask::TransferType>("TransferType", "INTEGER", Data),
        column<&DbTransferTask::LocalFilePath>("LocalFilePath", "TEXT", Data),
        column<&DbTransferTask::ParentId>("ParentId", "TEXT", Data),
        column<&DbTransferTask::AssetId>("AssetId", "TEXT", Data),
        column<&DbTransferTask::VersionId>("VersionId", "TEXT", Data),
        column<&DbTransferTask::Hash>("Hash", "TEXT", Data),
        column<&DbTransferTask::UpdateTime>("UpdateTime", "INTEGER", Data),
        column<&DbTransferTask::SliceIndex>("SliceIndex", "INTEGER", Data),
        column<&DbTransferTask::UploadOffset>("UploadOffset", "INTEGER", Data),
        column<&DbTransferTask::ObjectBucketId>("ObjectBucketId", "TEXT", Data),
        column<&DbTransferTask::RecordCursor>("RecordCursor", "TEXT", Data),
        column<&DbTransferTask::ObsVersion>("ObsVersion", "TEXT", Data),
        column<&DbTransferTask::Priority>("Priority", "INTEGER", Data),
        column<&DbTransferTask::IsMoveData>("IsMoveData", "INTEGER", Data),
        column<&DbTransferTask::IsLoadedForSuccessList>("IsLoadedForSuccessList", "INTEGER", Data),
        column<&DbTransferTask::CloudFilePath>("CloudFilePath", "TEXT", Data),
        column<&DbTransferTask::ThumbnailUrl>("ThumbnailUrl", "TEXT", Data),
        column<&DbTransferTask::CloudBatch>("CloudBatch", "INTEGER", Data),
        column<&DbTransferTask::ExpandStr1>("ExpandStr1", "TEXT", Data),
        column<&DbTransferTask::ExpandStr2>("ExpandStr2", "TEXT", Data),
        column<&DbTransferTask::ExpandStr3>("ExpandStr3", "TEXT", Data),
        column<&DbTransferTask::ExpandInt1>("ExpandInt1", "INTEGER", Data),
        column<&DbTransferTask::ExpandInt2>("ExpandInt2", "INTEGER", Data),
        column<&DbTransferTask::ExpandInt3>("ExpandInt3", "INTEGER", Data),
        column<&DbTransferTask::Expand>("Expand", "TEXT", Data), // last here, elsewhere in the record
        // clang-format on
    };
    static_assert(table.size() == 38);
};

} // namespace DatabaseService::TransmissionDB
