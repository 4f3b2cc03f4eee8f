#pragma once

#include "databaseservice/engine/recordcolumns.h"
#include "databaseservice/gallerytables.h"

#include <array>
#include <string_view>

namespace DatabaseService {

/// The tables of the gallery file, column by column. Every statement names all columns.

struct AlbumColumns {
    enum Group : unsigned { All = 1 };
    static constexpr std::string_view name = "Album";

    static constexpr std::array table{
        // clang-format off
        column<&AlbumTable::AlbumId>("AlbumId", "TEXT PRIMARY KEY NOT NULL", All),
        column<&AlbumTable::AlbumName>("AlbumName", "TEXT NOT NULL", All),
        column<&AlbumTable::CreateTime>("CreateTime", "INTEGER NOT NULL", All),
        column<&AlbumTable::Lpath>("Lpath", "TEXT NOT NULL", All),
        column<&AlbumTable::AlbumType>("AlbumType", "TEXT NOT NULL", All),
        column<&AlbumTable::Operation>("Operation", "TEXT NOT NULL", All),
        column<&AlbumTable::IsDelete>("IsDelete", "INTEGER NOT NULL", All),
        column<&AlbumTable::Expand>("Expand", "TEXT NOT NULL", All),
        // clang-format on
    };
    static_assert(table.size() == 8);
};

struct AlbumLocalVersionColumns {
    enum Group : unsigned { All = 1 };
    static constexpr std::string_view name = "AlbumLocalVersion";

    static constexpr std::array table{
        // clang-format off
        column<&AlbumVersionTable::AlbumVersion>("AlbumVersion", "TEXT PRIMARY KEY NOT NULL", All),
        column<&AlbumVersionTable::AlbumListVersion>("AlbumListVersion", "TEXT NOT NULL", All),
        column<&AlbumVersionTable::LatestVersion>("LatestVersion", "INTEGER NOT NULL", All),
        column<&AlbumVersionTable::ClearVersion>("ClearVersion", "TEXT NOT NULL", All),
        column<&AlbumVersionTable::UpdateTime>("UpdateTime", "INTEGER NOT NULL", All),
        column<&AlbumVersionTable::HasDownAll>("HasDownAll", "INTEGER NOT NULL", All),
        column<&AlbumVersionTable::TempVersion>("TempVersion", "INTEGER NOT NULL", All),
        column<&AlbumVersionTable::Cursor>("Cursor", "TEXT NOT NULL", All),
        column<&AlbumVersionTable::RecyCursor>("RecyCursor", "TEXT NOT NULL", All),
        column<&AlbumVersionTable::BriefingTime>("BriefingTime", "TEXT NOT NULL", All),
        column<&AlbumVersionTable::SyncToken>("SyncToken", "TEXT NOT NULL", All),
        column<&AlbumVersionTable::CloudPhotoVersion>("CloudPhotoVersion", "TEXT NOT NULL", All),
        column<&AlbumVersionTable::FileCursor>("FileCursor", "TEXT NOT NULL", All),
        // clang-format on
    };
    static_assert(table.size() == 13);
};

struct GalleryFileColumns {
    enum Group : unsigned { All = 1 };
    static constexpr std::string_view name = "GalleryFile";

    static constexpr std::array table{
        // clang-format off
        column<&GalleryFileTable::UniqueId>("UniqueId", "TEXT PRIMARY KEY NOT NULL", All),
        column<&GalleryFileTable::FileId>("FileId", "TEXT NOT NULL", All),
        column<&GalleryFileTable::VideoThumbId>("VideoThumbId", "TEXT NOT NULL", All),
        column<&GalleryFileTable::Hash>("Hash", "TEXT NOT NULL", All),
        column<&GalleryFileTable::CreateTime>("CreateTime", "INTEGER NOT NULL", All),
        column<&GalleryFileTable::FirstUpdateTime>("FirstUpdateTime", "INTEGER NOT NULL", All),
        column<&GalleryFileTable::ThumbFileId>("ThumbFileId", "TEXT NOT NULL", All),
        column<&GalleryFileTable::LcdFileId>("LcdFileId", "TEXT NOT NULL", All),
        column<&GalleryFileTable::Size>("Size", "INTEGER NOT NULL", All),
        column<&GalleryFileTable::RecycleAlbumId>("RecycleAlbumId", "TEXT NOT NULL", All),
        column<&GalleryFileTable::RecycleTime>("RecycleTime", "INTEGER NOT NULL", All),
        column<&GalleryFileTable::Guid>("Guid", "TEXT NOT NULL", All),
        column<&GalleryFileTable::Expand>("Expand", "TEXT NOT NULL", All),
        column<&GalleryFileTable::GalleryState>("GalleryState", "INTEGER NOT NULL", All),
        column<&GalleryFileTable::IsLocalUpload>("IsLocalUpload", "INTEGER NOT NULL", All),
        column<&GalleryFileTable::Offset>("[Offset]", "INTEGER NOT NULL", All),
        column<&GalleryFileTable::LocalPath>("LocalPath", "TEXT NOT NULL", All),
        column<&GalleryFileTable::OperateTime>("OperateTime", "TEXT NOT NULL", All),
        column<&GalleryFileTable::ContinuousNo>("ContinuousNo", "INTEGER NOT NULL", All),
        column<&GalleryFileTable::ContinuousType>("ContinuousType", "INTEGER NOT NULL", All),
        column<&GalleryFileTable::ContinuousName>("ContinuousName", "TEXT NOT NULL", All),
        column<&GalleryFileTable::IsDeleted>("IsDeleted", "INTEGER NOT NULL", All),
        column<&GalleryFileTable::FileName>("FileName", "TEXT NOT NULL", All),
        column<&GalleryFileTable::AlbumId>("AlbumId", "TEXT NOT NULL", All),
        column<&GalleryFileTable::IsFavorite>("IsFavorite", "INTEGER NOT NULL", All),
        column<&GalleryFileTable::SavedFileType>("SavedFileType", "INTEGER NOT NULL", All),
        column<&GalleryFileTable::CheckSumn>("CheckSumn", "TEXT NOT NULL", All),
        column<&GalleryFileTable::Sdsmtime>("Sdsmtime", "TEXT NOT NULL", All),
        column<&GalleryFileTable::PictureMetadata>("PictureMetadata", "TEXT NOT NULL", All),
        column<&GalleryFileTable::VideoMetadata>("VideoMetadata", "TEXT NOT NULL", All),
        // clang-format on
    };
    static_assert(table.size() == 30);
};

struct DownloadTaskColumns {
    enum Group : unsigned { All = 1 };
    static constexpr std::string_view name = "DownloadTask";

    static constexpr std::array table{
        // clang-format off
        column<&DownloadTaskTable::FileName>("FileName", "TEXT NOT NULL", All),
        column<&DownloadTaskTable::AlbumId>("AlbumId", "TEXT NOT NULL", All),
        column<&DownloadTaskTable::FileId>("FileId", "TEXT NOT NULL", All),
        column<&DownloadTaskTable::UniqueId>("UniqueId", "TEXT NOT NULL", All),
        column<&DownloadTaskTable::TotalLength>("TotalLength", "INTEGER NOT NULL", All),
        column<&DownloadTaskTable::Position>("Position", "INTEGER NOT NULL", All),
        column<&DownloadTaskTable::LocalPath>("LocalPath", "TEXT NOT NULL", All),
        column<&DownloadTaskTable::OriginalFileLocalPath>("OriginalFileLocalPath", "TEXT NOT NULL", All),
        column<&DownloadTaskTable::TaskType>("TaskType", "INTEGER NOT NULL", All),
        column<&DownloadTaskTable::IsLocalFileDownload>("IsLocalFileDownload", "INTEGER NOT NULL", All),
        column<&DownloadTaskTable::Id>("Id", "INTEGER PRIMARY KEY NOT NULL", All),
        // clang-format on
    };
    static_assert(table.size() == 11);
};

struct TransferCompleteCloudTaskColumns {
    enum Group : unsigned { All = 1 };
    static constexpr std::string_view name = "TransferCompleteCloudTask";

    static constexpr std::array table{
        // clang-format off
        column<&TransferCompleteCloudTaskTable::FileName>("FileName", "TEXT NOT NULL", All),
        column<&TransferCompleteCloudTaskTable::FileId>("FileId", "TEXT NOT NULL", All),
        column<&TransferCompleteCloudTaskTable::UniqueId>("UniqueId", "TEXT NOT NULL", All),
        column<&TransferCompleteCloudTaskTable::TotalLength>("TotalLength", "INTEGER NOT NULL", All),
        column<&TransferCompleteCloudTaskTable::LocalPath>("LocalPath", "TEXT NOT NULL", All),
        column<&TransferCompleteCloudTaskTable::TaskType>("TaskType", "INTEGER NOT NULL", All),
        column<&TransferCompleteCloudTaskTable::EndTime>("EndTime", "INTEGER NOT NULL", All),
        column<&TransferCompleteCloudTaskTable::IsLocalFileDownload>("IsLocalFileDownload", "INTEGER NOT NULL", All),
        column<&TransferCompleteCloudTaskTable::Id>("Id", "INTEGER PRIMARY KEY NOT NULL", All),
        // clang-format on
    };
    static_assert(table.size() == 9);
};

struct UploadTaskColumns {
    enum Group : unsigned { All = 1 };
    static constexpr std::string_view name = "UploadTask";

    static constexpr std::array table{
        // clang-format off
        column<&UploadTaskTable::FileName>("FileName", "TEXT NOT NULL", All),
        column<&UploadTaskTable::AlbumId>("AlbumId", "TEXT NOT NULL", All),
        column<&UploadTaskTable::FileId>("FileId", "TEXT NOT NULL", All),
        column<&UploadTaskTable::UniqueId>("UniqueId", "TEXT NOT NULL", All),
        column<&UploadTaskTable::TotalLength>("TotalLength", "INTEGER NOT NULL", All),
        column<&UploadTaskTable::Position>("Position", "INTEGER NOT NULL", All),
        column<&UploadTaskTable::LocalPath>("LocalPath", "TEXT NOT NULL", All),
        column<&UploadTaskTable::OriginalFileLocalPath>("OriginalFileLocalPath", "TEXT NOT NULL", All),
        column<&UploadTaskTable::TaskStatus>("TaskStatus", "INTEGER NOT NULL", All),
        column<&UploadTaskTable::TaskType>("TaskType", "INTEGER NOT NULL", All),
        column<&UploadTaskTable::StartTime>("StartTime", "TEXT NOT NULL", All),
        column<&UploadTaskTable::EndTime>("EndTime", "TEXT NOT NULL", All),
        column<&UploadTaskTable::IsFastUpload>("IsFastUpload", "INTEGER NOT NULL", All),
        column<&UploadTaskTable::TransferId>("TransferId", "TEXT NOT NULL", All),
        column<&UploadTaskTable::IsLocalFileDownload>("IsLocalFileDownload", "INTEGER NOT NULL", All),
        column<&UploadTaskTable::Id>("Id", "INTEGER PRIMARY KEY NOT NULL", All),
        column<&UploadTaskTable::ServerPath>("ServerPath", "TEXT NOT NULL", All),
        // clang-format on
    };
    static_assert(table.size() == 17);
};

} // namespace DatabaseService
