#pragma once

#include "databaseservice/cloudfiletable.h"
#include "databaseservice/gallerytables.h"
#include "databaseservice/userlog.h"
#include "tableworkload.h"

#include <cstddef>

namespace benchmarks {

TableSubject<DatabaseService::GalleryFileTable> galleryFiles(std::size_t rows);
TableSubject<DatabaseService::T_CloudFileTable> cloudFileChanges(std::size_t rows);
TableSubject<DatabaseService::UserLog> userLogs(std::size_t rows);

template <> struct Members<DatabaseService::GalleryFileTable> {
    static auto of(auto& r)
    {
        return std::tie(r.UniqueId, r.FileId, r.VideoThumbId, r.Hash, r.CreateTime, r.FirstUpdateTime, r.ThumbFileId,
                        r.LcdFileId, r.Size, r.RecycleAlbumId, r.RecycleTime, r.Guid, r.Expand, r.GalleryState,
                        r.IsLocalUpload, r.Offset, r.LocalPath, r.OperateTime, r.ContinuousNo, r.ContinuousType,
                        r.ContinuousName, r.IsDeleted, r.FileName, r.AlbumId, r.IsFavorite, r.SavedFileType,
                        r.CheckSumn, r.Sdsmtime, r.PictureMetadata, r.VideoMetadata);
    }
};

template <> struct Members<DatabaseService::T_CloudFileTable> {
    static auto of(auto& r)
    {
        return std::tie(r.id, r.fileId, r.deleted, r.changeType, r.fromDevice, r.kind, r.fileName, r.localFileName,
                        r.mimeType, r.isFolder, r.trashed, r.parentId, r.parentFolder, r.localParentId,
                        r.localParentFolder, r.createdTime, r.modifiedTime, r.localModifiedTime, r.size,
                        r.thunbnailDownloadLink, r.localThunbnailDownload, r.status, r.fileStatus, r.isSyncDown,
                        r.isRiskFile, r.imageRotate);
    }
};

template <> struct Members<DatabaseService::UserLog> {
    static auto of(auto& r)
    {
        return std::tie(r.id, r.time, r.action, r.userId, r.devId, r.code, r.info, r.extend, r.traceId, r.useTime,
                        r.startTime, r.model, r.romversion, r.appversion, r.reqsize, r.rspsize, r.logversion,
                        r.traceEndFlag, r.curModule, r.actionType, r.nextModule, r.countryCode, r.residenceTime,
                        r.oprType, r.isMainteranceLog);
    }
};

} // namespace benchmarks
