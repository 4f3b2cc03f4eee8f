#pragma once

#include "databaseservice/gallerydbprovider.h"
#include "databaseservice/maindatabaseprovider.h"
#include "databaseservice/v10.h"
#include "filelook.h"
#include "legacymigration.h"
#include "rule.h"

#include <array>
#include <cstdint>
#include <limits>
#include <string_view>
#include <utility>
#include <vector>

/// The tables that come over, each from its reader through its rules to its writer.
///
/// Where `idColumn` is set, the key is a row's number and says nothing of what the row is: a row whose number is taken
/// by another comes over under a free one, up to `highestId`.
namespace migration {

namespace V10 = DatabaseService::V10;
namespace gallery = DatabaseService::GalleryDBProvider;
namespace mainstore = DatabaseService::MainDatabaseProvider;

enum class Store { Main, Gallery };

struct GalleryFiles {
    using Legacy = V10::GalleryFile;
    using Current = DatabaseService::GalleryFileTable;
    using RuleType = Rule<Legacy, Current>;

    static constexpr Store store = Store::Gallery;
    static constexpr std::string_view legacyTable = "GalleryFile";
    static constexpr std::string_view table = "GalleryFile";
    static constexpr std::array rules{
        // clang-format off
        same<&Legacy::UniqueId, &Current::UniqueId>("UniqueId", RuleType::Key),
        same<&Legacy::FileId, &Current::FileId>("FileId"),
        same<&Legacy::VideoThumbId, &Current::VideoThumbId>("VideoThumbId"),
        same<&Legacy::Hash, &Current::Hash>("Hash"),
        same<&Legacy::CreateTime, &Current::CreateTime>("CreateTime"),
        same<&Legacy::FirstUpdateTime, &Current::FirstUpdateTime>("FirstUpdateTime"),
        same<&Legacy::ThumbFileId, &Current::ThumbFileId>("ThumbFileId"),
        same<&Legacy::LcdFileId, &Current::LcdFileId>("LcdFileId"),
        same<&Legacy::Size, &Current::Size>("Size"),
        same<&Legacy::RecycleAlbumId, &Current::RecycleAlbumId>("RecycleAlbumId"),
        same<&Legacy::RecycleTime, &Current::RecycleTime>("RecycleTime"),
        same<&Legacy::Guid, &Current::Guid>("Guid"),
        same<&Legacy::Expand, &Current::Expand>("Expand"),
        same<&Legacy::GalleryState, &Current::GalleryState>("GalleryState"),
        same<&Legacy::IsLocalUpload, &Current::IsLocalUpload>("IsLocalUpload"),
        dropped<&Legacy::LocalUploadTime, Current>("LocalUploadTime"),
        dropped<&Legacy::OriginalAlbumId, Current>("OriginalAlbumId"),
        dropped<&Legacy::ServerAlbumId, Current>("ServerAlbumId"),
        same<&Legacy::Offset, &Current::Offset>("[Offset]"),
        same<&Legacy::LocalPath, &Current::LocalPath>("LocalPath"),
        digits<&Legacy::OperateTime, &Current::OperateTime>("OperateTime"),
        dropped<&Legacy::CoverUniqueId, Current>("CoverUniqueId"),
        zero<Legacy, &Current::ContinuousNo>("ContinuousNo"),
        same<&Legacy::ContinuousType, &Current::ContinuousType>("ContinuousType"),
        same<&Legacy::ContinuousName, &Current::ContinuousName>("ContinuousName"),
        same<&Legacy::IsDeleted, &Current::IsDeleted>("IsDeleted"),
        same<&Legacy::FileName, &Current::FileName>("FileName"),
        same<&Legacy::AlbumId, &Current::AlbumId>("AlbumId"),
        same<&Legacy::IsFavorite, &Current::IsFavorite>("IsFavorite"),
        same<&Legacy::SavedFileType, &Current::SavedFileType>("SavedFileType"),
        same<&Legacy::CheckSumn, &Current::CheckSumn>("CheckSumn"),
        same<&Legacy::Sdsmtime, &Current::Sdsmtime>("Sdsmtime"),
        dropped<&Legacy::VideoDownloadLocalPath, Current>("VideoDownloadLocalPath"),
        same<&Legacy::PictureMetadata, &Current::PictureMetadata>("PictureMetadata"),
        same<&Legacy::VideoMetadata, &Current::VideoMetadata>("VideoMetadata"),
        // clang-format on
    };
    static_assert(rules.size() == 30 + 5);

    static bool read(std::vector<Legacy>& rows) { return V10::GetAllGalleryFile(rows); }
    static bool write(std::vector<Current>& rows, bool) { return gallery::InsertGalleryFileTable(rows); }

    /// The column `Sdsmtime` is of a type that the engine does not know. A NULL in it gives the reader no cell, and the
    /// three texts behind have moved one member to the front; a number in it, which SQLite makes of digits, is passed
    /// over. Sets both right, and tells in how many rows.
    static int64 mend(std::vector<Legacy>& rows, FileLook& legacy);
};

struct AlbumVersions {
    using Legacy = V10::AlbumLocalVersion;
    using Current = DatabaseService::AlbumVersionTable;
    using RuleType = Rule<Legacy, Current>;

    static constexpr Store store = Store::Gallery;
    static constexpr std::string_view legacyTable = "AlbumLocalVersion";
    static constexpr std::string_view table = "AlbumLocalVersion";
    static constexpr std::array rules{
        // clang-format off
        same<&Legacy::AlbumVersion, &Current::AlbumVersion>("AlbumVersion", RuleType::Key),
        same<&Legacy::AlbumListVersion, &Current::AlbumListVersion>("AlbumListVersion"),
        clamped<&Legacy::LatestVersion, &Current::LatestVersion>("LatestVersion"),
        same<&Legacy::ClearVersion, &Current::ClearVersion>("ClearVersion"),
        same<&Legacy::UpdateTime, &Current::UpdateTime>("UpdateTime"),
        same<&Legacy::HasDownAll, &Current::HasDownAll>("HasDownAll"),
        clamped<&Legacy::TempVersion, &Current::TempVersion>("TempVersion"),
        same<&Legacy::Cursor, &Current::Cursor>("Cursor"),
        same<&Legacy::RecyCursor, &Current::RecyCursor>("RecyCursor"),
        digits<&Legacy::BriefingTime, &Current::BriefingTime>("BriefingTime"),
        same<&Legacy::SyncToken, &Current::SyncToken>("SyncToken"),
        same<&Legacy::CloudPhotoVersion, &Current::CloudPhotoVersion>("CloudPhotoVersion"),
        same<&Legacy::FileCursor, &Current::FileCursor>("FileCursor"),
        // clang-format on
    };
    static_assert(rules.size() == 13);

    static bool read(std::vector<Legacy>& rows) { return V10::GetAllAlbumLocalVersion(rows); }
    static bool write(std::vector<Current>& rows, bool) { return gallery::InsertAlbumVersionTable(rows); }
};

struct Albums {
    using Legacy = V10::Album;
    using Current = DatabaseService::AlbumTable;
    using RuleType = Rule<Legacy, Current>;

    static constexpr Store store = Store::Gallery;
    static constexpr std::string_view legacyTable = "Album";
    static constexpr std::string_view table = "Album";
    static constexpr std::array rules{
        // clang-format off
        same<&Legacy::AlbumId, &Current::AlbumId>("AlbumId", RuleType::Key),
        same<&Legacy::AlbumName, &Current::AlbumName>("AlbumName"),
        same<&Legacy::CreateTime, &Current::CreateTime>("CreateTime"),
        same<&Legacy::Lpath, &Current::Lpath>("Lpath"),
        same<&Legacy::AlbumType, &Current::AlbumType>("AlbumType"),
        same<&Legacy::Operation, &Current::Operation>("Operation"),
        same<&Legacy::IsDelete, &Current::IsDelete>("IsDelete"),
        same<&Legacy::Expand, &Current::Expand>("Expand"),
        // clang-format on
    };
    static_assert(rules.size() == 8);

    static bool read(std::vector<Legacy>& rows) { return V10::GetAllAlbum(rows); }
    static bool write(std::vector<Current>& rows, bool) { return gallery::InsertAlbumTable(rows); }
};

/// What the three task tables share; half of their columns go another way in one of them. A task is the same as long as
/// it is about the same file.
template <class LegacyRow, class Row> struct TaskTable {
    using Legacy = LegacyRow;
    using Current = Row;
    using RuleType = Rule<Legacy, Current>;

    static constexpr Store store = Store::Gallery;
    static constexpr std::string_view idColumn = "Id";
    static constexpr int64 highestId = std::numeric_limits<std::int32_t>::max();
    static void setId(Row& row, int64 id) { row.Id = static_cast<std::int32_t>(id); }

protected:
    /// With a reader that gives the tasks of type 1, or all others.
    static bool readBothTypes(bool (*read)(std::vector<Legacy>&, bool), std::vector<Legacy>& rows)
    {
        const bool first = read(rows, true);
        return read(rows, false) && first;
    }
};

struct DownloadTasks : TaskTable<V10::DownloadTask, DatabaseService::DownloadTaskTable> {
    static constexpr std::string_view legacyTable = "DownloadTask";
    static constexpr std::string_view table = "DownloadTask";
    static constexpr std::array rules{
        // clang-format off
        same<&Legacy::FileName, &Current::FileName>("FileName", RuleType::Key),
        dropped<&Legacy::RelativePath, Current>("RelativePath"),
        same<&Legacy::AlbumId, &Current::AlbumId>("AlbumId"),
        same<&Legacy::FileId, &Current::FileId>("FileId", RuleType::Key),
        same<&Legacy::UniqueId, &Current::UniqueId>("UniqueId", RuleType::Key),
        same<&Legacy::TotalLength, &Current::TotalLength>("TotalLength"),
        dropped<&Legacy::Speed, Current>("Speed"),
        dropped<&Legacy::OldPosition, Current>("OldPosition"),
        clamped<&Legacy::Position, &Current::Position>("Position"),
        same<&Legacy::LocalPath, &Current::LocalPath>("LocalPath", RuleType::Key),
        same<&Legacy::OriginalFileLocalPath, &Current::OriginalFileLocalPath>("OriginalFileLocalPath"),
        dropped<&Legacy::TaskStatus, Current>("TaskStatus"),
        same<&Legacy::TaskType, &Current::TaskType>("TaskType"),
        dropped<&Legacy::StartTime, Current>("StartTime"),
        dropped<&Legacy::EndTime, Current>("EndTime"),
        dropped<&Legacy::RealTime, Current>("RealTime"),
        dropped<&Legacy::IsFastUpload, Current>("IsFastUpload"),
        dropped<&Legacy::TransferId, Current>("TransferId"),
        same<&Legacy::IsLocalFileDownload, &Current::IsLocalFileDownload>("IsLocalFileDownload"),
        // clang-format on
    };
    static_assert(rules.size() == 10 + 9);

    static bool read(std::vector<Legacy>& rows) { return readBothTypes(V10::GetAllDownloadTask, rows); }
    static bool write(std::vector<Current>& rows, bool)
    {
        gallery::InsertDownloadTaskTable(rows);
        return true;
    }
};

struct CompletedTasks : TaskTable<V10::TransferCompleteCloudTask, DatabaseService::TransferCompleteCloudTaskTable> {
    static constexpr std::string_view legacyTable = "TransferCompleteCloudTask";
    static constexpr std::string_view table = "TransferCompleteCloudTask";
    static constexpr std::array rules{
        // clang-format off
        same<&Legacy::FileName, &Current::FileName>("FileName", RuleType::Key),
        dropped<&Legacy::RelativePath, Current>("RelativePath"),
        dropped<&Legacy::AlbumId, Current>("AlbumId"),
        same<&Legacy::FileId, &Current::FileId>("FileId", RuleType::Key),
        same<&Legacy::UniqueId, &Current::UniqueId>("UniqueId", RuleType::Key),
        same<&Legacy::TotalLength, &Current::TotalLength>("TotalLength"),
        dropped<&Legacy::Speed, Current>("Speed"),
        dropped<&Legacy::OldPosition, Current>("OldPosition"),
        dropped<&Legacy::Position, Current>("Position"),
        same<&Legacy::LocalPath, &Current::LocalPath>("LocalPath", RuleType::Key),
        dropped<&Legacy::OriginalFileLocalPath, Current>("OriginalFileLocalPath"),
        dropped<&Legacy::TaskStatus, Current>("TaskStatus"),
        same<&Legacy::TaskType, &Current::TaskType>("TaskType"),
        dropped<&Legacy::StartTime, Current>("StartTime"),
        number<&Legacy::EndTime, &Current::EndTime>("EndTime"),
        dropped<&Legacy::RealTime, Current>("RealTime"),
        dropped<&Legacy::IsFastUpload, Current>("IsFastUpload"),
        dropped<&Legacy::TransferId, Current>("TransferId"),
        same<&Legacy::IsLocalFileDownload, &Current::IsLocalFileDownload>("IsLocalFileDownload"),
        // clang-format on
    };
    static_assert(rules.size() == 8 + 11);

    static bool read(std::vector<Legacy>& rows) { return readBothTypes(V10::GetAllTransferCompleteCloudTask, rows); }
    static bool write(std::vector<Current>& rows, bool)
    {
        gallery::InsertTransferCompleteCloudTaskTable(rows);
        return true;
    }
};

struct UploadTasks : TaskTable<V10::UploadTask, DatabaseService::UploadTaskTable> {
    static constexpr std::string_view legacyTable = "UploadTask";
    static constexpr std::string_view table = "UploadTask";
    static constexpr std::array rules{
        // clang-format off
        same<&Legacy::FileName, &Current::FileName>("FileName", RuleType::Key),
        dropped<&Legacy::RelativePath, Current>("RelativePath"),
        same<&Legacy::AlbumId, &Current::AlbumId>("AlbumId"),
        same<&Legacy::FileId, &Current::FileId>("FileId", RuleType::Key),
        same<&Legacy::UniqueId, &Current::UniqueId>("UniqueId", RuleType::Key),
        same<&Legacy::TotalLength, &Current::TotalLength>("TotalLength"),
        dropped<&Legacy::Speed, Current>("Speed"),
        dropped<&Legacy::OldPosition, Current>("OldPosition"),
        clamped<&Legacy::Position, &Current::Position>("Position"),
        same<&Legacy::LocalPath, &Current::LocalPath>("LocalPath", RuleType::Key),
        same<&Legacy::OriginalFileLocalPath, &Current::OriginalFileLocalPath>("OriginalFileLocalPath"),
        same<&Legacy::TaskStatus, &Current::TaskStatus>("TaskStatus"),
        same<&Legacy::TaskType, &Current::TaskType>("TaskType"),
        same<&Legacy::StartTime, &Current::StartTime>("StartTime"),
        digits<&Legacy::EndTime, &Current::EndTime>("EndTime"),
        dropped<&Legacy::RealTime, Current>("RealTime"),
        same<&Legacy::IsFastUpload, &Current::IsFastUpload>("IsFastUpload"),
        same<&Legacy::TransferId, &Current::TransferId>("TransferId"),
        same<&Legacy::IsLocalFileDownload, &Current::IsLocalFileDownload>("IsLocalFileDownload"),
        same<&Legacy::ServerPath, &Current::ServerPath>("ServerPath"),
        // clang-format on
    };
    static_assert(rules.size() == 16 + 4);

    static bool read(std::vector<Legacy>& rows) { return V10::GetAllUploadTask(rows); }
    static bool write(std::vector<Current>& rows, bool)
    {
        gallery::InsertUploadTaskTable(rows);
        return true;
    }
};

struct Settings {
    using Legacy = V10::UserProperties;
    using Current = DatabaseService::UserProperties;
    using RuleType = Rule<Legacy, Current>;

    static constexpr Store store = Store::Main;
    static constexpr std::string_view legacyTable = "UserProperties";
    static constexpr std::string_view table = "UserProperties";
    static constexpr std::array rules{
        same<&Legacy::key, &Current::key>("[Key]", RuleType::Key),
        same<&Legacy::Value, &Current::value>("Value"),
    };

    static bool read(std::vector<Legacy>& rows) { return V10::GetAllUserProperties(rows); }
    static bool write(std::vector<Current>& rows, bool replace)
    {
        if (replace) {
            mainstore::UpdateUserProperties(rows);
        } else {
            mainstore::InsertUserProperties(rows);
        }
        return true;
    }

    /// The setting that remembers a run is the store's own.
    static bool isReserved(const Legacy& row) { return row.key == platform::toUtf8(rememberedKey); }
};

/// What both log tables share.
struct LogFields {
    using Legacy = V10::UserLogFields;
    using Current = DatabaseService::UserLogFields;

    static constexpr Store store = Store::Main;
    static constexpr std::string_view legacyTable = "UserLog";
    static constexpr std::string_view idColumn = "id";
    static constexpr int64 highestId = std::numeric_limits<int64>::max();
    static void setId(Current& row, int64 id) { row.id = id; }

    static constexpr std::array rules{
        // clang-format off
        same<&Legacy::Time, &Current::time>("time"),
        same<&Legacy::Action, &Current::action>("[action]"),
        same<&Legacy::UserId, &Current::userId>("userId"),
        same<&Legacy::DevId, &Current::devId>("devId"),
        same<&Legacy::Code, &Current::code>("code"),
        same<&Legacy::Info, &Current::info>("info"),
        same<&Legacy::Extend, &Current::extend>("extend"),
        same<&Legacy::TraceId, &Current::traceId>("traceId"),
        whole<&Legacy::UseTime, &Current::useTime>("useTime"),
        whole<&Legacy::StartTime, &Current::startTime>("startTime"),
        same<&Legacy::Model, &Current::model>("model"),
        same<&Legacy::Romversion, &Current::romversion>("romversion"),
        same<&Legacy::Appversion, &Current::appversion>("appversion"),
        same<&Legacy::Reqsize, &Current::reqsize>("reqsize"),
        same<&Legacy::Rspsize, &Current::rspsize>("rspsize"),
        clamped<&Legacy::Logversion, &Current::logversion>("logversion"),
        clamped<&Legacy::TraceEndFlag, &Current::traceEndFlag>("traceEndFlag"),
        same<&Legacy::CurModule, &Current::curModule>("curModule"),
        same<&Legacy::Actiontype, &Current::actionType>("actionType"),
        same<&Legacy::NextModule, &Current::nextModule>("nextModule"),
        same<&Legacy::CountryCode, &Current::countryCode>("countryCode"),
        whole<&Legacy::ResidenceTime, &Current::residenceTime>("residenceTime"),
        same<&Legacy::OprType, &Current::oprType>("oprType"),
        same<&Legacy::IsMaintenanceLog, &Current::isMainteranceLog>("isMainteranceLog"),
        // clang-format on
    };
    static_assert(rules.size() == 25 - 1);
};

struct UserLogs : LogFields {
    using Legacy = V10::UserLog;
    using Current = DatabaseService::UserLog;

    static constexpr std::string_view table = "UserLogTable";
    static bool read(std::vector<Legacy>& rows) { return V10::GetAllUserLog(rows); }
    static bool write(std::vector<Current>& rows, bool)
    {
        mainstore::InsertUserUserLog(std::move(rows));
        return true;
    }
};

/// The rows of the legacy `UserLog` once more: that is what the reader gives.
struct UbaLogs : LogFields {
    using Legacy = V10::UBAUserLog;
    using Current = DatabaseService::UBAUserLog;

    static constexpr std::string_view table = "UBAUserLog";
    static bool read(std::vector<Legacy>& rows) { return V10::GetAllUBAUserLog(rows); }
    static bool write(std::vector<Current>& rows, bool)
    {
        mainstore::InsertUserUBAUserLog(std::move(rows));
        return true;
    }
};

} // namespace migration
