#pragma once

#include "databaseservice/export.h"
#include "databaseservice/integers.h"

#include <cstdint>
#include <string>
#include <utility>

namespace DatabaseService {

/// One file or folder of the drive: a row of the table of the same name in `DriveModuleData.dat`.
///
/// Text is UTF-8. Times are what the caller makes of them, except `recycledTime`: seconds since 1970-01-01 UTC on
/// the server's clock. A batch id of 0 means that no operation of that kind is pending. `docs/stores.md` tells what
/// each column means and who writes it.
///
/// Threads: a plain value, safe as long as one thread at a time has it.
class DATABASESERVICE_EXPORT DriveDataTable {
public:
    DriveDataTable() = default;
    /// A copy of `*source`, or a default record for null.
    explicit DriveDataTable(const DriveDataTable* source);
    DriveDataTable(const DriveDataTable&) = default;
    DriveDataTable(DriveDataTable&&) = default;
    DriveDataTable& operator=(const DriveDataTable&) = default;
    DriveDataTable& operator=(DriveDataTable&&) = default;
    virtual ~DriveDataTable();

    /// Without a file id: the answer of a lookup that found no row.
    bool Empty() const { return m_fileId.empty(); }

    /// The one test for folder against file: the mime type is `folderMimeType` byte for byte.
    bool IsFolder() const { return m_mimeType == folderMimeType; }

    /// The mime type of folders, and of nothing else.
    static constexpr const char* folderMimeType = "application/vnd.tessix-apps.folder";

    void SetFileid(const std::string& value) { m_fileId = value; }
    std::string GetFileid() const { return m_fileId; }
    void SetName(const std::string& value) { m_name = value; }
    std::string GetName() const { return m_name; }
    void SetKind(const std::string& value) { m_kind = value; }
    std::string GetKind() const { return m_kind; }
    void SetMimeType(const std::string& value) { m_mimeType = value; }
    std::string GetMimeType() const { return m_mimeType; }
    void SetDescription(const std::string& value) { m_description = value; }
    std::string GetDescription() const { return m_description; }
    void SetSize(int64 value) { m_size = value; }
    int64 GetSize() const { return m_size; }
    void SetAttachmentSize(const std::string& value) { m_attachmentSize = value; }
    std::string GetAttachmentSize() const { return m_attachmentSize; }
    void SetHash(const std::string& value) { m_hash = value; }
    std::string GetHash() const { return m_hash; }
    void SetContentVersion(const std::string& value) { m_contentVersion = value; }
    std::string GetContentVersion() const { return m_contentVersion; }
    void SetParentId(const std::string& value) { m_parentId = value; }
    std::string GetParentId() const { return m_parentId; }
    void SetFavorite(std::int32_t value) { m_favorite = value; }
    std::int32_t GetFavorite() const { return m_favorite; }
    void SetRecycled(std::int32_t value) { m_recycled = value; }
    std::int32_t GetRecycled() const { return m_recycled; }
    void SetDirectlyRecycled(std::int32_t value) { m_directlyRecycled = value; }
    std::int32_t GetDirectlyRecycled() const { return m_directlyRecycled; }
    void SetCreatedTime(int64 value) { m_createdTime = value; }
    int64 GetCreatedTime() const { return m_createdTime; }
    void SetModifiedTime(int64 value) { m_modifiedTime = value; }
    int64 GetModifiedTime() const { return m_modifiedTime; }
    void SetRecycledTime(int64 value) { m_recycledTime = value; }
    int64 GetRecycledTime() const { return m_recycledTime; }
    void SetIsSync(std::int32_t value) { m_isSync = value; }
    std::int32_t GetIsSync() const { return m_isSync; }
    void SetThumbnailDownloadLink(const std::string& value) { m_thumbnailDownloadLink = value; }
    std::string GetThumbnailDownloadLink() const { return m_thumbnailDownloadLink; }
    void SetLcdImageDownloadLink(const std::string& value) { m_LCDImageDownloadLink = value; }
    std::string GetLcdImageDownloadLink() const { return m_LCDImageDownloadLink; }
    void SetVersion(int64 value) { m_version = value; }
    int64 GetVersion() const { return m_version; }
    void SetBatchOper(std::int32_t value) { m_batchOper = value; }
    std::int32_t GetBatchOper() const { return m_batchOper; }
    void SetDeleteSrcPath(const std::string& value) { m_deleteSrcPath = value; }
    std::string GetDeleteSrcPath() const { return m_deleteSrcPath; }
    void SetLocalAbsolutePath(const std::string& value) { m_localAbsolutePath = value; }
    std::string GetLocalAbsolutePath() const { return m_localAbsolutePath; }
    void SetLocalFileSha256(const std::string& value) { m_localFileSha256 = value; }
    std::string GetLocalFileSha256() const { return m_localFileSha256; }
    void SetUploadTime(int64 value) { m_uploadTime = value; }
    int64 GetUploadTime() const { return m_uploadTime; }
    void SetUploadBatchId(int64 value) { m_uploadBatchId = value; }
    int64 GetUploadBatchId() const { return m_uploadBatchId; }
    void SetRenameName(const std::string& value) { m_renameName = value; }
    std::string GetRenameName() const { return m_renameName; }
    void SetRenameTime(int64 value) { m_renameTime = value; }
    int64 GetRenameTime() const { return m_renameTime; }
    void SetRenameBatchId(int64 value) { m_renameBatchId = value; }
    int64 GetRenameBatchId() const { return m_renameBatchId; }
    void SetMoveParentId(const std::string& value) { m_moveParentId = value; }
    std::string GetMoveParentId() const { return m_moveParentId; }
    void SetMoveTime(int64 value) { m_moveTime = value; }
    int64 GetMoveTime() const { return m_moveTime; }
    void SetMoveBatchId(int64 value) { m_moveBatchId = value; }
    int64 GetMoveBatchId() const { return m_moveBatchId; }
    void SetSoftDelete(std::int32_t value) { m_softDelete = value; }
    std::int32_t GetSoftDelete() const { return m_softDelete; }
    void SetSoftDeleteSrcPath(const std::string& value) { m_softDeleteSrcPath = value; }
    std::string GetSoftDeleteSrcPath() const { return m_softDeleteSrcPath; }
    void SetSoftDelTime(int64 value) { m_softDelTime = value; }
    int64 GetSoftDelTime() const { return m_softDelTime; }
    void SetSoftDelBatchId(int64 value) { m_softDelBatchId = value; }
    int64 GetSoftDelBatchId() const { return m_softDelBatchId; }
    void SetHardDelete(std::int32_t value) { m_hardDelete = value; }
    std::int32_t GetHardDelete() const { return m_hardDelete; }
    void SetHardDelTime(int64 value) { m_hardDelTime = value; }
    int64 GetHardDelTime() const { return m_hardDelTime; }
    void SetHardDelBatchId(int64 value) { m_hardDelBatchId = value; }
    int64 GetHardDelBatchId() const { return m_hardDelBatchId; }
    void SetLocalRestore(std::int32_t value) { m_localRestore = value; }
    std::int32_t GetLocalRestore() const { return m_localRestore; }
    void SetRestoreTime(int64 value) { m_restoreTime = value; }
    int64 GetRestoreTime() const { return m_restoreTime; }
    void SetRestoreBatchId(int64 value) { m_restoreBatchId = value; }
    int64 GetRestoreBatchId() const { return m_restoreBatchId; }
    void SetNewBatchId(int64 value) { m_newBatchId = value; }
    int64 GetNewBatchId() const { return m_newBatchId; }
    void SetAutoUpload(std::int32_t value) { m_autoUpload = value; }
    std::int32_t GetAutoUpload() const { return m_autoUpload; }
    ///@{
    /// The second id of a change of key; never stored. See `DriverDBProviderBase::NewDirDriveDataById`.
    void SetHelpData(const std::string& value) { m_helpData = value; }
    std::string GetHelpData() const { return m_helpData; }
    ///@}
    void SetRiskFileSign(std::int32_t value) { m_riskFileSign = value; }
    std::int32_t GetRiskFileSign() const { return m_riskFileSign; }
    void SetRiskFileType(std::string value) { m_riskFileType = std::move(value); }
    std::string GetRiskFileType() const { return m_riskFileType; }
    void SetFileExtSign(std::int32_t value) { m_fileExtSign = value; }
    std::int32_t GetFileExtSign() const { return m_fileExtSign; }
    void SetClassIndex(std::int32_t value) { m_classIndex = value; }
    std::int32_t GetClassIndex() const { return m_classIndex; }
    ///@{
    /// The column `needToDisplay`: whether lists show the item, by
    /// `DriverDBProviderBase::UpdateCloudContentStatusById`.
    void SetCloudContentStatus(std::int32_t value) { m_cloudContentStatus = value; }
    std::int32_t GetCloudContentStatus() const { return m_cloudContentStatus; }
    ///@}

    ///@{
    /// The caller's scratch value; never stored.
    void SetFileOperationType(std::int32_t value) { m_fileOperationType = value; }
    std::int32_t GetFileOperationType() const { return m_fileOperationType; }
    ///@}
    void SetData1(const std::string& value) { m_data1 = value; }
    std::string GetData1() const { return m_data1; }
    void SetData2(const std::string& value) { m_data2 = value; }
    std::string GetData2() const { return m_data2; }
    void SetData3(const std::string& value) { m_data3 = value; }
    std::string GetData3() const { return m_data3; }
    void SetData4(const std::string& value) { m_data4 = value; }
    std::string GetData4() const { return m_data4; }

private:
    friend struct DriveDataColumns;

    std::string m_fileId;
    std::string m_name;
    std::string m_kind = "drive#file";
    std::string m_mimeType;
    std::string m_description;
    int64 m_size = 0;
    std::string m_attachmentSize;
    std::string m_hash;
    std::string m_contentVersion;
    std::string m_parentId;
    std::int32_t m_favorite = 0;
    std::int32_t m_recycled = 0;
    std::int32_t m_directlyRecycled = 0;
    int64 m_createdTime = 0;
    int64 m_modifiedTime = 0;
    int64 m_recycledTime = 0;
    std::int32_t m_isSync = 0;
    std::string m_thumbnailDownloadLink;
    std::string m_LCDImageDownloadLink;
    int64 m_version = 0;
    std::int32_t m_batchOper = 0;
    std::string m_deleteSrcPath;
    std::string m_localAbsolutePath;
    std::string m_localFileSha256;
    int64 m_uploadTime = 0;
    int64 m_uploadBatchId = 0;
    std::string m_renameName;
    int64 m_renameTime = 0;
    int64 m_renameBatchId = 0;
    std::string m_moveParentId;
    int64 m_moveTime = 0;
    int64 m_moveBatchId = 0;
    std::int32_t m_softDelete = 0;
    std::string m_softDeleteSrcPath;
    int64 m_softDelTime = 0;
    int64 m_softDelBatchId = 0;
    std::int32_t m_hardDelete = 0;
    int64 m_hardDelTime = 0;
    int64 m_hardDelBatchId = 0;
    std::int32_t m_localRestore = 0;
    int64 m_restoreTime = 0;
    int64 m_restoreBatchId = 0;
    int64 m_newBatchId = 0;
    std::int32_t m_autoUpload = 0;
    std::string m_helpData; // the second id of a change of key; never stored
    std::int32_t m_riskFileSign = 0;
    std::string m_riskFileType;
    std::int32_t m_fileExtSign = 0;
    std::int32_t m_classIndex = 0;
    std::int32_t m_cloudContentStatus = 0;              // the column needToDisplay, whose own default is 1
    std::int32_t m_fileOperationType = -1;              // the caller's scratch value; never stored
    [[maybe_unused]] std::int32_t m_defaultOneFlag = 1; // travels with copies; never stored
    std::string m_data1;
    std::string m_data2;
    std::string m_data3;
    std::string m_data4;
};

} // namespace DatabaseService
