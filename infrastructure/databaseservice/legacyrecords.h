#pragma once

#include "databaseservice/export.h"
#include "databaseservice/integers.h"

#include <cstdint>
#include <string>

/// The records of the legacy file, each a row of the table of its name. Members bear their columns' names; `Id` stands
/// behind the data, although it is the first column. Text is UTF-8. What codes and times mean is the client's
/// business: `docs/stores.md` has what is known.
///
/// Threads: plain values, safe as long as one thread at a time has them.
namespace DatabaseService::V10 {

/// A picture or video of the gallery.
class DATABASESERVICE_EXPORT GalleryFile {
public:
    GalleryFile();
    GalleryFile(const GalleryFile&);
    GalleryFile(GalleryFile&&) noexcept;
    GalleryFile& operator=(const GalleryFile&);
    GalleryFile& operator=(GalleryFile&&) noexcept;
    ~GalleryFile();

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
    int64 LocalUploadTime = 0;   ///< when it was uploaded from this computer
    std::string OriginalAlbumId; ///< album that the item was made in
    std::string ServerAlbumId;   ///< the album in the cloud
    std::int32_t Offset = 0;
    std::string LocalPath;
    int64 OperateTime = 0;
    std::string CoverUniqueId; ///< the gallery's id of the picture that stands for it
    std::int32_t ContinuousType = 0;
    std::string ContinuousName;
    std::int32_t IsDeleted = 0;
    std::string FileName;
    std::string AlbumId;
    std::int32_t IsFavorite = 0;
    std::int32_t SavedFileType = 0;
    std::string CheckSumn;
    std::string Sdsmtime;
    std::string VideoDownloadLocalPath; ///< where a video was downloaded to
    std::string PictureMetadata;
    std::string VideoMetadata;
};

/// How far the gallery had come.
class DATABASESERVICE_EXPORT AlbumLocalVersion {
public:
    AlbumLocalVersion();
    AlbumLocalVersion(const AlbumLocalVersion&);
    AlbumLocalVersion(AlbumLocalVersion&&) noexcept;
    AlbumLocalVersion& operator=(const AlbumLocalVersion&);
    AlbumLocalVersion& operator=(AlbumLocalVersion&&) noexcept;
    ~AlbumLocalVersion();

    std::string AlbumVersion;
    std::string AlbumListVersion;
    int64 LatestVersion = 0;
    std::string ClearVersion;
    int64 UpdateTime = 0;
    std::int32_t HasDownAll = 0;
    int64 TempVersion = 0;
    std::string Cursor;
    std::string RecyCursor;
    int64 BriefingTime = 0;
    std::string SyncToken;
    std::string CloudPhotoVersion;
    std::string FileCursor;
};

/// An album of the gallery.
class DATABASESERVICE_EXPORT Album {
public:
    Album();
    Album(const Album&);
    Album(Album&&) noexcept;
    Album& operator=(const Album&);
    Album& operator=(Album&&) noexcept;
    ~Album();

    std::string AlbumId;
    std::string AlbumName;
    int64 CreateTime = 0;
    std::string Lpath;
    std::string AlbumType;
    std::string Operation;
    std::int32_t IsDelete = 0;
    std::string Expand;
};

/// A download.
class DATABASESERVICE_EXPORT DownloadTask {
public:
    DownloadTask();
    DownloadTask(const DownloadTask&);
    DownloadTask(DownloadTask&&) noexcept;
    DownloadTask& operator=(const DownloadTask&);
    DownloadTask& operator=(DownloadTask&&) noexcept;
    ~DownloadTask();

    std::string FileName;
    std::string RelativePath; ///< path below the folder that the transfer is part of
    std::string AlbumId;
    std::string FileId;
    std::string UniqueId;
    int64 TotalLength = 0;
    std::int32_t Speed = 0; ///< rate of the transfer
    int64 OldPosition = 0;  ///< bytes that were done before it was last taken up
    int64 Position = 0;
    std::string LocalPath;
    std::string OriginalFileLocalPath;
    std::int32_t TaskStatus = 0;
    std::int32_t TaskType = 0;
    int64 StartTime = 0;
    int64 EndTime = 0;
    float RealTime = 0; ///< how long it has taken
    std::int32_t IsFastUpload = 0;
    std::string TransferId;
    std::int32_t IsLocalFileDownload = 0;
    std::int32_t Id = 0; ///< given by SQLite, and never twice
};

/// A transfer that was complete.
class DATABASESERVICE_EXPORT TransferCompleteCloudTask {
public:
    TransferCompleteCloudTask();
    TransferCompleteCloudTask(const TransferCompleteCloudTask&);
    TransferCompleteCloudTask(TransferCompleteCloudTask&&) noexcept;
    TransferCompleteCloudTask& operator=(const TransferCompleteCloudTask&);
    TransferCompleteCloudTask& operator=(TransferCompleteCloudTask&&) noexcept;
    ~TransferCompleteCloudTask();

    std::string FileName;
    std::string RelativePath; ///< path below the folder that the transfer is part of
    std::string AlbumId;
    std::string FileId;
    std::string UniqueId;
    int64 TotalLength = 0;
    std::int32_t Speed = 0; ///< rate of the transfer
    int64 OldPosition = 0;  ///< bytes that were done before it was last taken up
    int64 Position = 0;
    std::string LocalPath;
    std::string OriginalFileLocalPath;
    std::int32_t TaskStatus = 0;
    std::int32_t TaskType = 0;
    int64 StartTime = 0;
    std::string EndTime;
    float RealTime = 0; ///< how long it has taken
    std::int32_t IsFastUpload = 0;
    std::string TransferId;
    std::int32_t IsLocalFileDownload = 0;
    std::int32_t Id = 0; ///< given by SQLite, and never twice
};

/// An upload.
class DATABASESERVICE_EXPORT UploadTask {
public:
    UploadTask();
    UploadTask(const UploadTask&);
    UploadTask(UploadTask&&) noexcept;
    UploadTask& operator=(const UploadTask&);
    UploadTask& operator=(UploadTask&&) noexcept;
    ~UploadTask();

    std::string FileName;
    std::string RelativePath; ///< path below the folder that the transfer is part of
    std::string AlbumId;
    std::string FileId;
    std::string UniqueId;
    int64 TotalLength = 0;
    std::int32_t Speed = 0; ///< rate of the transfer
    int64 OldPosition = 0;  ///< bytes that were done before it was last taken up
    int64 Position = 0;
    std::string LocalPath;
    std::string OriginalFileLocalPath;
    std::int32_t TaskStatus = 0;
    std::int32_t TaskType = 0;
    std::string StartTime;
    int64 EndTime = 0;
    float RealTime = 0; ///< how long it has taken
    std::int32_t IsFastUpload = 0;
    std::string TransferId;
    std::int32_t IsLocalFileDownload = 0;
    std::int32_t Id = 0; ///< given by SQLite, and never twice
    std::string ServerPath;
};

/// A setting.
class DATABASESERVICE_EXPORT UserProperties {
public:
    UserProperties();
    UserProperties(const UserProperties&);
    UserProperties(UserProperties&&) noexcept;
    UserProperties& operator=(const UserProperties&);
    UserProperties& operator=(UserProperties&&) noexcept;
    ~UserProperties();

    std::string key;
    std::string Value;
    std::int32_t Id = 0; ///< given by SQLite, and never twice
};

/// What both log tables hold. The times keep their fractions.
class DATABASESERVICE_EXPORT UserLogFields {
public:
    UserLogFields();
    UserLogFields(const UserLogFields&);
    UserLogFields(UserLogFields&&) noexcept;
    UserLogFields& operator=(const UserLogFields&);
    UserLogFields& operator=(UserLogFields&&) noexcept;
    ~UserLogFields();

    std::string Time;
    std::string Action;
    std::string UserId;
    std::string DevId;
    std::string Code;
    std::string Info;
    std::string Extend;
    std::string TraceId;
    double UseTime = 0;
    double StartTime = 0;
    std::string Model;
    std::string Romversion;
    std::string Appversion;
    std::string Reqsize;
    std::string Rspsize;
    int64 Logversion = 0;
    int64 TraceEndFlag = 0;
    std::string CurModule;
    std::string Actiontype;
    std::string NextModule;
    std::string CountryCode;
    double ResidenceTime = 0;
    std::string OprType;
    std::int32_t IsMaintenanceLog = 0; ///< flag: for maintenance
    std::int32_t Id = 0;               ///< given by SQLite, and never twice
};

/// A row of `UserLog`.
class DATABASESERVICE_EXPORT UserLog : public UserLogFields {
public:
    UserLog();
    UserLog(const UserLog&);
    UserLog(UserLog&&) noexcept;
    UserLog& operator=(const UserLog&);
    UserLog& operator=(UserLog&&) noexcept;
    ~UserLog();
};

/// A row of `UserLog`, too: see `GetAllUBAUserLog`.
class DATABASESERVICE_EXPORT UBAUserLog : public UserLogFields {
public:
    UBAUserLog();
    UBAUserLog(const UBAUserLog&);
    UBAUserLog(UBAUserLog&&) noexcept;
    UBAUserLog& operator=(const UBAUserLog&);
    UBAUserLog& operator=(UBAUserLog&&) noexcept;
    ~UBAUserLog();
};

} // namespace DatabaseService::V10
