#pragma once

#include "databaseservice/integers.h"

#include <cstdint>
#include <string>

/// The records of the gallery file, each a row of one of its tables. Members bear their columns' names and stand in
/// their order; text is UTF-8. What codes and times mean is the client's business: `docs/stores.md` has what is known.
namespace DatabaseService {

/// A row of `Album`.
struct AlbumTable {
    std::string AlbumId;
    std::string AlbumName;
    int64 CreateTime = 0;
    std::string Lpath;
    std::string AlbumType;
    std::string Operation;
    std::int32_t IsDelete = 0;
    std::string Expand;
};

/// A row of `AlbumLocalVersion`.
struct AlbumVersionTable {
    std::string AlbumVersion;
    std::string AlbumListVersion;
    std::int32_t LatestVersion = 0;
    std::string ClearVersion;
    int64 UpdateTime = 0;
    std::int32_t HasDownAll = 0;
    std::int32_t TempVersion = 0;
    std::string Cursor;
    std::string RecyCursor;
    std::string BriefingTime;
    std::string SyncToken;
    std::string CloudPhotoVersion;
    std::string FileCursor;
};

/// A row of `GalleryFile`.
struct GalleryFileTable {
    std::string UniqueId;
    std::string FileId;
    std::string VideoThumbId;
    std::string Hash;
    int64 CreateTime = 0;
    int64 FirstUpdateTime = 0;
    std::string ThumbFileId;
    std::string LcdFileId;
    int64 Size = 0;
    std::string RecycleAlbumId;
    int64 RecycleTime = 0;
    std::string Guid;
    std::string Expand;
    std::int32_t GalleryState = 0;
    std::int32_t IsLocalUpload = 0;
    std::int32_t Offset = 0;
    std::string LocalPath;
    std::string OperateTime;
    std::int32_t ContinuousNo = 0;
    std::int32_t ContinuousType = 0;
    std::string ContinuousName;
    std::int32_t IsDeleted = 0;
    std::string FileName;
    std::string AlbumId;
    std::int32_t IsFavorite = 0;
    std::int32_t SavedFileType = 0;
    std::string CheckSumn;
    std::string Sdsmtime;
    std::string PictureMetadata;
    std::string VideoMetadata;
};

/// A row of `DownloadTask`. The caller chooses the `Id`, here and in the other two task tables.
struct DownloadTaskTable {
    std::string FileName;
    std::string AlbumId;
    std::string FileId;
    std::string UniqueId;
    int64 TotalLength = 0;
    std::int32_t Position = 0;
    std::string LocalPath;
    std::string OriginalFileLocalPath;
    std::int32_t TaskType = 0;
    std::int32_t IsLocalFileDownload = 0;
    std::int32_t Id = 0;
};

/// A row of `TransferCompleteCloudTask`.
struct TransferCompleteCloudTaskTable {
    std::string FileName;
    std::string FileId;
    std::string UniqueId;
    int64 TotalLength = 0;
    std::string LocalPath;
    std::int32_t TaskType = 0;
    int64 EndTime = 0;
    std::int32_t IsLocalFileDownload = 0;
    std::int32_t Id = 0;
};

/// A row of `UploadTask`.
struct UploadTaskTable {
    std::string FileName;
    std::string AlbumId;
    std::string FileId;
    std::string UniqueId;
    int64 TotalLength = 0;
    std::int32_t Position = 0;
    std::string LocalPath;
    std::string OriginalFileLocalPath;
    std::int32_t TaskStatus = 0;
    std::int32_t TaskType = 0;
    std::string StartTime;
    std::string EndTime;
    std::int32_t IsFastUpload = 0;
    std::string TransferId;
    std::int32_t IsLocalFileDownload = 0;
    std::int32_t Id = 0;
    std::string ServerPath;
};

} // namespace DatabaseService
