#include "drive/drivemarkers.h"

namespace dbservice {

using DatabaseService::DriveDataTable;
using DatabaseService::int64;

std::vector<Marker> markersOf(const DriveDataTable& row)
{
    std::vector<Marker> markers;
    const auto add = [&](const char* operation, int64 batchId, int64 time, const std::string& newName = {},
                         const std::string& newParentId = {}) {
        if (batchId != 0) {
            markers.push_back({operation, batchId, time, newName, newParentId});
        }
    };
    // One column stands for a new folder and for the upload of a new file, which may have a batch of its own beside it.
    const bool uploads = !row.IsFolder() && row.GetUploadBatchId() == 0;
    add("new", row.IsFolder() ? row.GetNewBatchId() : 0, 0);
    add("upload", uploads ? row.GetNewBatchId() : row.GetUploadBatchId(), row.GetUploadTime());
    add("rename", row.GetRenameBatchId(), row.GetRenameTime(), row.GetRenameName());
    add("move", row.GetMoveBatchId(), row.GetMoveTime(), {}, row.GetMoveParentId());
    add("bin", row.GetSoftDelBatchId(), row.GetSoftDelTime());
    add("final", row.GetHardDelBatchId(), row.GetHardDelTime());
    add("restore", row.GetRestoreBatchId(), row.GetRestoreTime());
    return markers;
}

bool isPending(const DriveDataTable& row)
{
    return !markersOf(row).empty();
}

bool isInBin(const DriveDataTable& row)
{
    return row.GetRecycled() != 0 || row.GetDirectlyRecycled() != 0;
}

bool isDeleted(const DriveDataTable& row)
{
    return isInBin(row) || row.GetSoftDelBatchId() != 0 || row.GetHardDelBatchId() != 0;
}

std::string folderToBe(const DriveDataTable& row)
{
    return row.GetMoveBatchId() != 0 ? row.GetMoveParentId() : row.GetParentId();
}

void takeMoveBack(DriveDataTable& row)
{
    row.SetMoveParentId({});
    row.SetMoveTime(0);
    row.SetMoveBatchId(0);
}

void takeDeletionBack(DriveDataTable& row)
{
    row.SetSoftDelete(0);
    row.SetSoftDeleteSrcPath({});
    row.SetSoftDelTime(0);
    row.SetSoftDelBatchId(0);
    row.SetHardDelete(0);
    row.SetHardDelTime(0);
    row.SetHardDelBatchId(0);
}

} // namespace dbservice
