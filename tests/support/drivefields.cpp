#include "support/drivefields.h"

#include <cstdint>

namespace testsupport {

using DatabaseService::DriveDataTable;

const std::vector<DriveField>& driveFields()
{
    // The column, and what its accessors are called after.
#define FIELD(column, member)                                                                                          \
    {                                                                                                                  \
#column, &DriveDataTable::Set##member, &DriveDataTable::Get##member                                            \
    }
    // clang-format off
    static const std::vector<DriveField> fields{
        FIELD(fileId, Fileid), FIELD(name, Name), FIELD(kind, Kind), FIELD(mimeType, MimeType),
        FIELD(description, Description), FIELD(size, Size), FIELD(attachmentSize, AttachmentSize), FIELD(hash, Hash),
        FIELD(contentVersion, ContentVersion), FIELD(parentId, ParentId), FIELD(favorite, Favorite),
        FIELD(recycled, Recycled), FIELD(directlyRecycled, DirectlyRecycled), FIELD(createdTime, CreatedTime),
        FIELD(modifiedTime, ModifiedTime), FIELD(recycledTime, RecycledTime), FIELD(isSync, IsSync),
        FIELD(thumbnailDownloadLink, ThumbnailDownloadLink), FIELD(LCDImageDownloadLink, LcdImageDownloadLink),
        FIELD(version, Version), FIELD(batchOper, BatchOper), FIELD(localAbsolutePath, LocalAbsolutePath),
        FIELD(localFileSha256, LocalFileSha256), FIELD(deleteSrcPath, DeleteSrcPath), FIELD(uploadTime, UploadTime),
        FIELD(renameName, RenameName), FIELD(renameTime, RenameTime), FIELD(moveParentId, MoveParentId),
        FIELD(moveTime, MoveTime), FIELD(softDelete, SoftDelete), FIELD(softDeleteSrcPath, SoftDeleteSrcPath),
        FIELD(softDelTime, SoftDelTime), FIELD(hardDelete, HardDelete), FIELD(hardDelTime, HardDelTime),
        FIELD(localRestore, LocalRestore), FIELD(restoreTime, RestoreTime), FIELD(uploadBatchId, UploadBatchId),
        FIELD(renameBatchId, RenameBatchId), FIELD(moveBatchId, MoveBatchId), FIELD(softDelBatchId, SoftDelBatchId),
        FIELD(hardDelBatchId, HardDelBatchId), FIELD(restoreBatchId, RestoreBatchId), FIELD(newBatchId, NewBatchId),
        FIELD(autoUpload, AutoUpload), FIELD(riskFileSign, RiskFileSign), FIELD(riskFileType, RiskFileType),
        FIELD(fileExtSign, FileExtSign), FIELD(needToDisplay, CloudContentStatus), FIELD(classIndex, ClassIndex),
        FIELD(data1, Data1), FIELD(data2, Data2), FIELD(data3, Data3), FIELD(data4, Data4)};
    // clang-format on
#undef FIELD
    return fields;
}

DriveDataTable filledRecord(const std::string& fileId, int seed)
{
    DriveDataTable record;
    std::int64_t number = std::int64_t{1000} * seed;
    for (const DriveField& field : driveFields()) {
        ++number;
        // 64-bit numbers reach beyond 32 bits, 32-bit ones below zero.
        const std::int64_t value = field.bits == 64 ? (number << 40) + number : -number;
        field.set(record, field.text ? field.column + '-' + std::to_string(seed) : std::to_string(value));
    }
    record.SetFileid(fileId);
    return record;
}

DriveDataTable treeRecord(const std::string& fileId, const std::string& parentId, bool folder)
{
    DriveDataTable record;
    record.SetFileid(fileId);
    record.SetName("name of " + fileId);
    record.SetParentId(parentId);
    record.SetMimeType(folder ? DriveDataTable::folderMimeType : "image/png");
    return record;
}

std::vector<std::string> cellsOf(const DriveDataTable& record)
{
    return mapped(driveFields(), [&](const DriveField& field) { return field.cell(record); });
}

Rows cellsOf(const std::vector<DriveDataTable>& records)
{
    return mapped(records, [](const DriveDataTable& record) { return cellsOf(record); });
}

std::vector<std::string> driveColumns()
{
    return mapped(driveFields(), &DriveField::column);
}

std::vector<std::string> parametersIn(const std::string& sql)
{
    static const std::regex parameter(":([A-Za-z0-9]+)");
    return {std::sregex_token_iterator(sql.begin(), sql.end(), parameter, 1), {}};
}

} // namespace testsupport
