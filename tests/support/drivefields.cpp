#include "support/drivefields.h"

#include <cstdint>
#include <regex>
#include <type_traits>

namespace testsupport {

using DatabaseService::DriveDataTable;

namespace {

template <class Set, class Get>
DriveField field(const char* column, void (DriveDataTable::*set)(Set), Get (DriveDataTable::*get)() const)
{
    if constexpr (std::is_integral_v<Get>) {
        static_assert(std::is_same_v<Set, Get>);
        return {column, false, 8 * sizeof(Get),
                [set](DriveDataTable& record, const std::string& value) {
                    (record.*set)(static_cast<Get>(std::stoll(value)));
                },
                [get](const DriveDataTable& record) { return std::to_string((record.*get)()); }};
    } else {
        return {column, true, 0, [set](DriveDataTable& record, const std::string& value) { (record.*set)(value); },
                [get](const DriveDataTable& record) { return (record.*get)(); }};
    }
}

} // namespace

const std::vector<DriveField>& driveFields()
{
    using R = DriveDataTable;
    // clang-format off
    static const std::vector<DriveField> fields{
        field("fileId", &R::SetFileid, &R::GetFileid), field("name", &R::SetName, &R::GetName),
        field("kind", &R::SetKind, &R::GetKind), field("mimeType", &R::SetMimeType, &R::GetMimeType),
        field("description", &R::SetDescription, &R::GetDescription), field("size", &R::SetSize, &R::GetSize),
        field("attachmentSize", &R::SetAttachmentSize, &R::GetAttachmentSize), field("hash", &R::SetHash, &R::GetHash),
        field("contentVersion", &R::SetContentVersion, &R::GetContentVersion),
        field("parentId", &R::SetParentId, &R::GetParentId), field("favorite", &R::SetFavorite, &R::GetFavorite),
        field("recycled", &R::SetRecycled, &R::GetRecycled),
        field("directlyRecycled", &R::SetDirectlyRecycled, &R::GetDirectlyRecycled),
        field("createdTime", &R::SetCreatedTime, &R::GetCreatedTime),
        field("modifiedTime", &R::SetModifiedTime, &R::GetModifiedTime),
        field("recycledTime", &R::SetRecycledTime, &R::GetRecycledTime), field("isSync", &R::SetIsSync, &R::GetIsSync),
        field("thumbnailDownloadLink", &R::SetThumbnailDownloadLink, &R::GetThumbnailDownloadLink),
        field("LCDImageDownloadLink", &R::SetLcdImageDownloadLink, &R::GetLcdImageDownloadLink),
        field("version", &R::SetVersion, &R::GetVersion), field("batchOper", &R::SetBatchOper, &R::GetBatchOper),
        field("localAbsolutePath", &R::SetLocalAbsolutePath, &R::GetLocalAbsolutePath),
        field("localFileSha256", &R::SetLocalFileSha256, &R::GetLocalFileSha256),
        field("deleteSrcPath", &R::SetDeleteSrcPath, &R::GetDeleteSrcPath),
        field("uploadTime", &R::SetUploadTime, &R::GetUploadTime),
        field("renameName", &R::SetRenameName, &R::GetRenameName),
        field("renameTime", &R::SetRenameTime, &R::GetRenameTime),
        field("moveParentId", &R::SetMoveParentId, &R::GetMoveParentId),
        field("moveTime", &R::SetMoveTime, &R::GetMoveTime), field("softDelete", &R::SetSoftDelete, &R::GetSoftDelete),
        field("softDeleteSrcPath", &R::SetSoftDeleteSrcPath, &R::GetSoftDeleteSrcPath),
        field("softDelTime", &R::SetSoftDelTime, &R::GetSoftDelTime),
        field("hardDelete", &R::SetHardDelete, &R::GetHardDelete),
        field("hardDelTime", &R::SetHardDelTime, &R::GetHardDelTime),
        field("localRestore", &R::SetLocalRestore, &R::GetLocalRestore),
        field("restoreTime", &R::SetRestoreTime, &R::GetRestoreTime),
        field("uploadBatchId", &R::SetUploadBatchId, &R::GetUploadBatchId),
        field("renameBatchId", &R::SetRenameBatchId, &R::GetRenameBatchId),
        field("moveBatchId", &R::SetMoveBatchId, &R::GetMoveBatchId),
        field("softDelBatchId", &R::SetSoftDelBatchId, &R::GetSoftDelBatchId),
        field("hardDelBatchId", &R::SetHardDelBatchId, &R::GetHardDelBatchId),
        field("restoreBatchId", &R::SetRestoreBatchId, &R::GetRestoreBatchId),
        field("newBatchId", &R::SetNewBatchId, &R::GetNewBatchId),
        field("autoUpload", &R::SetAutoUpload, &R::GetAutoUpload),
        field("riskFileSign", &R::SetRiskFileSign, &R::GetRiskFileSign),
        field("riskFileType", &R::SetRiskFileType, &R::GetRiskFileType),
        field("fileExtSign", &R::SetFileExtSign, &R::GetFileExtSign),
        field("needToDisplay", &R::SetCloudContentStatus, &R::GetCloudContentStatus),
        field("classIndex", &R::SetClassIndex, &R::GetClassIndex), field("data1", &R::SetData1, &R::GetData1),
        field("data2", &R::SetData2, &R::GetData2), field("data3", &R::SetData3, &R::GetData3),
        field("data4", &R::SetData4, &R::GetData4)};
    // clang-format on
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
    std::vector<std::string> cells;
    for (const DriveField& field : driveFields()) {
        cells.push_back(field.cell(record));
    }
    return cells;
}

Rows cellsOf(const std::vector<DriveDataTable>& records)
{
    Rows rows;
    for (const DriveDataTable& record : records) {
        rows.push_back(cellsOf(record));
    }
    return rows;
}

std::vector<std::string> driveColumns()
{
    std::vector<std::string> names;
    for (const DriveField& field : driveFields()) {
        names.push_back(field.column);
    }
    return names;
}

std::string driveColumnList()
{
    std::string list;
    for (const std::string& name : driveColumns()) {
        list += (list.empty() ? "" : ", ") + name;
    }
    return list;
}

std::vector<std::string> parametersIn(const std::string& sql)
{
    static const std::regex parameter(":([A-Za-z0-9]+)");
    std::vector<std::string> names;
    for (std::sregex_iterator at(sql.begin(), sql.end(), parameter), end; at != end; ++at) {
        names.push_back(at->str(1));
    }
    return names;
}

} // namespace testsupport
