#include "drive/drivefields.h"

#include "terminal/recordfields.h"

#include <array>

namespace dbservice {

namespace {

using Row = DatabaseService::DriveDataTable;

using RowField =
    Field<std::string (Row::*)() const, DatabaseService::int64 (Row::*)() const, std::int32_t (Row::*)() const>;

constexpr std::array fields{
    RowField{"fileId", &Row::GetFileid},
    RowField{"name", &Row::GetName},
    RowField{"kind", &Row::GetKind},
    RowField{"mimeType", &Row::GetMimeType},
    RowField{"description", &Row::GetDescription},
    RowField{"size", &Row::GetSize, Shown::Bytes},
    RowField{"attachmentSize", &Row::GetAttachmentSize},
    RowField{"hash", &Row::GetHash},
    RowField{"contentVersion", &Row::GetContentVersion},
    RowField{"parentId", &Row::GetParentId},
    RowField{"favorite", &Row::GetFavorite},
    RowField{"recycled", &Row::GetRecycled},
    RowField{"directlyRecycled", &Row::GetDirectlyRecycled},
    RowField{"createdTime", &Row::GetCreatedTime, Shown::Time},
    RowField{"modifiedTime", &Row::GetModifiedTime, Shown::Time},
    RowField{"recycledTime", &Row::GetRecycledTime, Shown::Time},
    RowField{"isSync", &Row::GetIsSync},
    RowField{"thumbnailDownloadLink", &Row::GetThumbnailDownloadLink},
    RowField{"LCDImageDownloadLink", &Row::GetLcdImageDownloadLink},
    RowField{"version", &Row::GetVersion},
    RowField{"batchOper", &Row::GetBatchOper},
    RowField{"localAbsolutePath", &Row::GetLocalAbsolutePath},
    RowField{"localFileSha256", &Row::GetLocalFileSha256},
    RowField{"deleteSrcPath", &Row::GetDeleteSrcPath},
    RowField{"uploadTime", &Row::GetUploadTime, Shown::Time},
    RowField{"renameName", &Row::GetRenameName},
    RowField{"renameTime", &Row::GetRenameTime, Shown::Time},
    RowField{"moveParentId", &Row::GetMoveParentId},
    RowField{"moveTime", &Row::GetMoveTime, Shown::Time},
    RowField{"softDelete", &Row::GetSoftDelete},
    RowField{"softDeleteSrcPath", &Row::GetSoftDeleteSrcPath},
    RowField{"softDelTime", &Row::GetSoftDelTime, Shown::Time},
    RowField{"hardDelete", &Row::GetHardDelete},
    RowField{"hardDelTime", &Row::GetHardDelTime, Shown::Time},
    RowField{"localRestore", &Row::GetLocalRestore},
    RowField{"restoreTime", &Row::GetRestoreTime, Shown::Time},
    RowField{"uploadBatchId", &Row::GetUploadBatchId},
    RowField{"renameBatchId", &Row::GetRenameBatchId},
    RowField{"moveBatchId", &Row::GetMoveBatchId},
    RowField{"softDelBatchId", &Row::GetSoftDelBatchId},
    RowField{"hardDelBatchId", &Row::GetHardDelBatchId},
    RowField{"restoreBatchId", &Row::GetRestoreBatchId},
    RowField{"newBatchId", &Row::GetNewBatchId},
    RowField{"autoUpload", &Row::GetAutoUpload},
    RowField{"riskFileSign", &Row::GetRiskFileSign},
    RowField{"riskFileType", &Row::GetRiskFileType},
    RowField{"fileExtSign", &Row::GetFileExtSign},
    RowField{"needToDisplay", &Row::GetCloudContentStatus},
    RowField{"classIndex", &Row::GetClassIndex},
    RowField{"data1", &Row::GetData1},
    RowField{"data2", &Row::GetData2},
    RowField{"data3", &Row::GetData3},
    RowField{"data4", &Row::GetData4},
};

} // namespace

Json toJson(const Row& row)
{
    return toJson(fields, row);
}

Table toTable(const Row& row, bool all)
{
    return toTable(fields, row, all);
}

} // namespace dbservice
