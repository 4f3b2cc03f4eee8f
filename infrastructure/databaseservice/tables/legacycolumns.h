#pragma once

#include "databaseservice/engine/recordcolumns.h"
#include "databaseservice/legacyrecords.h"
#include "platform/leadingreal.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string_view>
#include <type_traits>

namespace DatabaseService::V10 {

/// The tables of the legacy file, column by column: `table` as it is laid down, `selected` as it is read.

template <auto Member> void readReal(typename MemberTraits<Member>::Record& record, CellReader& cells)
{
    static_assert(std::numeric_limits<float>::is_iec559, "what does not fit becomes infinite");
    const std::string_view text = cells.next() == CellReader::Kind::Text ? cells.text() : std::string_view();
    record.*Member = static_cast<float>(platform::leadingReal(text).value);
}

/// Throws where there is no number.
template <auto Member> void readTime(typename MemberTraits<Member>::Record& record, CellReader& cells)
{
    record.*Member = platform::requiredReal(cells.next() == CellReader::Kind::Text ? cells.text() : std::string_view());
}

/// A column of numbers with a fraction, whose cells are text as SQLite renders them. No number reads as 0.
template <auto Member> constexpr auto realColumn(std::string_view name, std::string_view declaration, unsigned groups)
{
    auto column = DatabaseService::column<Member>(name, declaration, groups);
    column.read = &readReal<Member>;
    return column;
}

/// The same, where anything but a number throws.
template <auto Member> constexpr auto timeColumn(std::string_view name, std::string_view declaration, unsigned groups)
{
    auto column = DatabaseService::column<Member>(name, declaration, groups);
    column.read = &readTime<Member>;
    return column;
}

struct GalleryFileColumns {
    enum Group : unsigned { All = 1 };

    static constexpr std::array table{
        // clang-format off
        strictColumn<&GalleryFile::UniqueId>("UniqueId", "VARCHAR PRIMARY KEY NOT NULL", All),
        strictColumn<&GalleryFile::FileId>("FileId", "VARCHAR", All),
        strictColumn<&GalleryFile::VideoThumbId>("VideoThumbId", "VARCHAR", All),
        strictColumn<&GalleryFile::Hash>("Hash", "VARCHAR", All),
        strictColumn<&GalleryFile::CreateTime>("CreateTime", "INTEGER", All),
        strictColumn<&GalleryFile::FirstUpdateTime>("FirstUpdateTime", "INTEGER", All),
        strictColumn<&GalleryFile::ThumbFileId>("ThumbFileId", "VARCHAR", All),
        strictColumn<&GalleryFile::LcdFileId>("LcdFileId", "VARCHAR", All),
        strictColumn<&GalleryFile::Size>("Size", "INTEGER", All),
        strictColumn<&GalleryFile::RecycleAlbumId>("RecycleAlbumId", "VARCHAR", All),
        strictColumn<&GalleryFile::RecycleTime>("RecycleTime", "INTEGER", All),
        strictColumn<&GalleryFile::Guid>("Guid", "VARCHAR", All),
        strictColumn<&GalleryFile::Expand>("Expand", "VARCHAR", All),
        strictColumn<&GalleryFile::GalleryState>("GalleryState", "INTEGER", All),
        strictColumn<&GalleryFile::IsLocalUpload>("IsLocalUpload", "INTEGER", All),
        strictColumn<&GalleryFile::LocalUploadTime>("LocalUploadTime", "INTEGER", All),
        strictColumn<&GalleryFile::OriginalAlbumId>("OriginalAlbumId", "VARCHAR", All),
        strictColumn<&GalleryFile::ServerAlbumId>("ServerAlbumId", "VARCHAR", All),
        strictColumn<&GalleryFile::Offset>("[Offset]", "INTEGER", All),
        strictColumn<&GalleryFile::LocalPath>("LocalPath", "VARCHAR", All),
        strictColumn<&GalleryFile::OperateTime>("OperateTime", "INTEGER", All),
        strictColumn<&GalleryFile::CoverUniqueId>("CoverUniqueId", "VARCHAR", All),
        strictColumn<&GalleryFile::ContinuousType>("ContinuousType", "INTEGER", All),
        strictColumn<&GalleryFile::ContinuousName>("ContinuousName", "VARCHAR", All),
        strictColumn<&GalleryFile::IsDeleted>("IsDeleted", "INTEGER", All),
        strictColumn<&GalleryFile::FileName>("FileName", "VARCHAR", All),
        strictColumn<&GalleryFile::AlbumId>("AlbumId", "VARCHAR", All),
        strictColumn<&GalleryFile::IsFavorite>("IsFavorite", "INTEGER", All),
        strictColumn<&GalleryFile::SavedFileType>("SavedFileType", "INTEGER", All),
        strictColumn<&GalleryFile::CheckSumn>("CheckSumn", "VARCHAR", All),
        strictColumn<&GalleryFile::Sdsmtime>("Sdsmtime", "DATETIME", All),
        strictColumn<&GalleryFile::VideoDownloadLocalPath>("VideoDownloadLocalPath", "VARCHAR", All),
        strictColumn<&GalleryFile::PictureMetadata>("PictureMetadata", "VARCHAR", All),
        strictColumn<&GalleryFile::VideoMetadata>("VideoMetadata", "VARCHAR", All),
        // clang-format on
    };
    static_assert(table.size() == 34);

    static constexpr auto selected = pick(table, All);
};

struct AlbumLocalVersionColumns {
    enum Group : unsigned { All = 1 };

    static constexpr std::array table{
        // clang-format off
        strictColumn<&AlbumLocalVersion::AlbumVersion>("AlbumVersion", "TEXT PRIMARY KEY NOT NULL", All),
        strictColumn<&AlbumLocalVersion::AlbumListVersion>("AlbumListVersion", "TEXT NOT NULL", All),
        strictColumn<&AlbumLocalVersion::LatestVersion>("LatestVersion", "INTEGER NOT NULL", All),
        strictColumn<&AlbumLocalVersion::ClearVersion>("ClearVersion", "TEXT NOT NULL", All),
        strictColumn<&AlbumLocalVersion::UpdateTime>("UpdateTime", "INTEGER NOT NULL", All),
        strictColumn<&AlbumLocalVersion::HasDownAll>("HasDownAll", "INTEGER NOT NULL", All),
        strictColumn<&AlbumLocalVersion::TempVersion>("TempVersion", "INTEGER NOT NULL", All),
        strictColumn<&AlbumLocalVersion::Cursor>("Cursor", "TEXT NOT NULL", All),
        strictColumn<&AlbumLocalVersion::RecyCursor>("RecyCursor", "TEXT NOT NULL", All),
        strictColumn<&AlbumLocalVersion::BriefingTime>("BriefingTime", "INTEGER NOT NULL", All),
        strictColumn<&AlbumLocalVersion::SyncToken>("SyncToken", "TEXT NOT NULL", All),
        strictColumn<&AlbumLocalVersion::CloudPhotoVersion>("CloudPhotoVersion", "TEXT NOT NULL", All),
        strictColumn<&AlbumLocalVersion::FileCursor>("FileCursor", "TEXT NOT NULL", All),
        // clang-format on
    };
    static_assert(table.size() == 13);

    static constexpr auto selected = pick(table, All);
};

struct AlbumColumns {
    enum Group : unsigned { All = 1 };

    static constexpr std::array table{
        // clang-format off
        strictColumn<&Album::AlbumId>("AlbumId", "TEXT PRIMARY KEY NOT NULL", All),
        strictColumn<&Album::AlbumName>("AlbumName", "TEXT NOT NULL", All),
        strictColumn<&Album::CreateTime>("CreateTime", "INTEGER NOT NULL", All),
        strictColumn<&Album::Lpath>("Lpath", "TEXT NOT NULL", All),
        strictColumn<&Album::AlbumType>("AlbumType", "TEXT NOT NULL", All),
        strictColumn<&Album::Operation>("Operation", "TEXT NOT NULL", All),
        strictColumn<&Album::IsDelete>("IsDelete", "INTEGER NOT NULL", All),
        strictColumn<&Album::Expand>("Expand", "TEXT NOT NULL", All),
        // clang-format on
    };
    static_assert(table.size() == 8);

    static constexpr auto selected = pick(table, All);
};

template <auto Member>
constexpr std::string_view textOrNumber =
    std::is_integral_v<typename MemberTraits<Member>::Type> ? "INTEGER NOT NULL" : "TEXT NOT NULL";

/// What the three task tables share; a start or an end is a number in one and a text in another.
template <class Task> struct TaskColumns {
    enum Group : unsigned { All = 1 };

    static constexpr std::array shared{
        // clang-format off
        strictColumn<&Task::Id>("Id", "INTEGER PRIMARY KEY AUTOINCREMENT NOT NULL", All),
        strictColumn<&Task::FileName>("FileName", "TEXT NOT NULL", All),
        strictColumn<&Task::RelativePath>("RelativePath", "TEXT NOT NULL", All),
        strictColumn<&Task::AlbumId>("AlbumId", "TEXT NOT NULL", All),
        strictColumn<&Task::FileId>("FileId", "TEXT NOT NULL", All),
        strictColumn<&Task::UniqueId>("UniqueId", "TEXT NOT NULL", All),
        strictColumn<&Task::TotalLength>("TotalLength", "INTEGER NOT NULL", All),
        strictColumn<&Task::Speed>("Speed", "INTEGER NOT NULL", All),
        strictColumn<&Task::OldPosition>("OldPosition", "INTEGER NOT NULL", All),
        strictColumn<&Task::Position>("Position", "INTEGER NOT NULL", All),
        strictColumn<&Task::LocalPath>("LocalPath", "TEXT NOT NULL", All),
        strictColumn<&Task::OriginalFileLocalPath>("OriginalFileLocalPath", "TEXT NOT NULL", All),
        strictColumn<&Task::TaskStatus>("TaskStatus", "INTEGER NOT NULL", All),
        strictColumn<&Task::TaskType>("TaskType", "INTEGER NOT NULL", All),
        strictColumn<&Task::StartTime>("StartTime", textOrNumber<&Task::StartTime>, All),
        strictColumn<&Task::EndTime>("EndTime", textOrNumber<&Task::EndTime>, All),
        realColumn<&Task::RealTime>("RealTime", "REAL NOT NULL", All),
        strictColumn<&Task::IsFastUpload>("IsFastUpload", "INTEGER NOT NULL", All),
        strictColumn<&Task::TransferId>("TransferId", "TEXT NOT NULL", All),
        strictColumn<&Task::IsLocalFileDownload>("IsLocalFileDownload", "INTEGER NOT NULL", All),
        // clang-format on
    };
    static_assert(shared.size() == 20);
};

struct DownloadTaskColumns : TaskColumns<DownloadTask> {
    static constexpr auto& table = shared;
    static constexpr auto selected = pick(table, All);
};

struct TransferCompleteCloudTaskColumns : TaskColumns<TransferCompleteCloudTask> {
    static constexpr auto& table = shared;
    static constexpr auto selected = pick(table, All);
};

template <class Record, std::size_t Size>
constexpr auto withColumn(const std::array<Column<Record>, Size>& columns, const Column<Record>& last)
{
    std::array<Column<Record>, Size + 1> all{};
    std::copy(columns.begin(), columns.end(), all.begin());
    all.back() = last;
    return all;
}

struct UploadTaskColumns : TaskColumns<UploadTask> {
    static constexpr auto table =
        withColumn(shared, strictColumn<&UploadTask::ServerPath>("ServerPath", "TEXT NOT NULL", All));
    static constexpr auto selected = pick(table, All);
};

struct UserPropertiesColumns {
    enum Group : unsigned { All = 1 };

    static constexpr std::array table{
        // clang-format off
        strictColumn<&UserProperties::Id>("Id", "INTEGER PRIMARY KEY AUTOINCREMENT NOT NULL", All),
        strictColumn<&UserProperties::key>("key", "TEXT NOT NULL", All),
        strictColumn<&UserProperties::Value>("Value", "TEXT NOT NULL", All),
        // clang-format on
    };

    // Words of SQL stand in brackets where they are read, and bare where they are declared.
    static constexpr auto bracketedKey = strictColumn<&UserProperties::key>("[key]", {}, All);
    static constexpr auto selected = pick(table, "Id", bracketedKey, "Value");
};

/// `UserLog` and `UBAUserLog`.
struct UserLogColumns {
    enum Group : unsigned {
        Front = 1, ///< what stands before the action
        Data = 2,  ///< what stands behind it
    };

    static constexpr std::array table{
        // clang-format off
        strictColumn<&UserLogFields::Id>("Id", "INTEGER PRIMARY KEY AUTOINCREMENT NOT NULL", Front),
        strictColumn<&UserLogFields::Time>("Time", "TEXT NOT NULL", Front),
        strictColumn<&UserLogFields::Action>("Action", "TEXT NOT NULL", 0),
        strictColumn<&UserLogFields::UserId>("UserId", "TEXT NOT NULL", Data),
        strictColumn<&UserLogFields::DevId>("DevId", "TEXT NOT NULL", Data),
        strictColumn<&UserLogFields::Code>("Code", "TEXT NOT NULL", Data),
        strictColumn<&UserLogFields::Info>("Info", "TEXT NOT NULL", Data),
        strictColumn<&UserLogFields::Extend>("Extend", "TEXT NOT NULL", Data),
        strictColumn<&UserLogFields::TraceId>("TraceId", "TEXT NOT NULL", Data),
        timeColumn<&UserLogFields::UseTime>("UseTime", "DOUBLE NOT NULL", Data),
        timeColumn<&UserLogFields::StartTime>("StartTime", "DOUBLE NOT NULL", Data),
        strictColumn<&UserLogFields::Model>("Model", "TEXT NOT NULL", Data),
        strictColumn<&UserLogFields::Romversion>("Romversion", "TEXT NOT NULL", Data),
        strictColumn<&UserLogFields::Appversion>("Appversion", "TEXT NOT NULL", Data),
        strictColumn<&UserLogFields::Reqsize>("Reqsize", "TEXT NOT NULL", Data),
        strictColumn<&UserLogFields::Rspsize>("Rspsize", "TEXT NOT NULL", Data),
        strictColumn<&UserLogFields::Logversion>("Logversion", "INTEGER NOT NULL", Data),
        strictColumn<&UserLogFields::TraceEndFlag>("TraceEndFlag", "INTEGER NOT NULL", Data),
        strictColumn<&UserLogFields::CurModule>("CurModule", "TEXT NOT NULL", Data),
        strictColumn<&UserLogFields::Actiontype>("Actiontype", "TEXT NOT NULL", Data),
        strictColumn<&UserLogFields::NextModule>("NextModule", "TEXT NOT NULL", Data),
        strictColumn<&UserLogFields::CountryCode>("CountryCode", "TEXT NOT NULL", Data),
        timeColumn<&UserLogFields::ResidenceTime>("ResidenceTime", "DOUBLE NOT NULL", Data),
        strictColumn<&UserLogFields::OprType>("OprType", "TEXT NOT NULL", Data),
        strictColumn<&UserLogFields::IsMaintenanceLog>("IsMaintenanceLog", "INTEGER NOT NULL", Data),
        // clang-format on
    };
    static_assert(table.size() == 25);

    static constexpr auto bracketedAction = strictColumn<&UserLogFields::Action>("[Action]", {}, 0);
    static constexpr auto selected = pick(table, Front, bracketedAction, Data);
};

} // namespace DatabaseService::V10
