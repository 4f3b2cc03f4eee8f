#include "databaseservice/legacyrecords.h"

// Defined here, and so exported, on every system.
namespace DatabaseService::V10 {

GalleryFile::GalleryFile() = default;
GalleryFile::GalleryFile(const GalleryFile&) = default;
GalleryFile::GalleryFile(GalleryFile&&) noexcept = default;
GalleryFile& GalleryFile::operator=(const GalleryFile&) = default;
GalleryFile& GalleryFile::operator=(GalleryFile&&) noexcept = default;
GalleryFile::~GalleryFile() = default;

AlbumLocalVersion::AlbumLocalVersion() = default;
AlbumLocalVersion::AlbumLocalVersion(const AlbumLocalVersion&) = default;
AlbumLocalVersion::AlbumLocalVersion(AlbumLocalVersion&&) noexcept = default;
AlbumLocalVersion& AlbumLocalVersion::operator=(const AlbumLocalVersion&) = default;
AlbumLocalVersion& AlbumLocalVersion::operator=(AlbumLocalVersion&&) noexcept = default;
AlbumLocalVersion::~AlbumLocalVersion() = default;

Album::Album() = default;
Album::Album(const Album&) = default;
Album::Album(Album&&) noexcept = default;
Album& Album::operator=(const Album&) = default;
Album& Album::operator=(Album&&) noexcept = default;
Album::~Album() = default;

DownloadTask::DownloadTask() = default;
DownloadTask::DownloadTask(const DownloadTask&) = default;
DownloadTask::DownloadTask(DownloadTask&&) noexcept = default;
DownloadTask& DownloadTask::operator=(const DownloadTask&) = default;
DownloadTask& DownloadTask::operator=(DownloadTask&&) noexcept = default;
DownloadTask::~DownloadTask() = default;

TransferCompleteCloudTask::TransferCompleteCloudTask() = default;
TransferCompleteCloudTask::TransferCompleteCloudTask(const TransferCompleteCloudTask&) = default;
TransferCompleteCloudTask::TransferCompleteCloudTask(TransferCompleteCloudTask&&) noexcept = default;
TransferCompleteCloudTask& TransferCompleteCloudTask::operator=(const TransferCompleteCloudTask&) = default;
TransferCompleteCloudTask& TransferCompleteCloudTask::operator=(TransferCompleteCloudTask&&) noexcept = default;
TransferCompleteCloudTask::~TransferCompleteCloudTask() = default;

UploadTask::UploadTask() = default;
UploadTask::UploadTask(const UploadTask&) = default;
UploadTask::UploadTask(UploadTask&&) noexcept = default;
UploadTask& UploadTask::operator=(const UploadTask&) = default;
UploadTask& UploadTask::operator=(UploadTask&&) noexcept = default;
UploadTask::~UploadTask() = default;

UserProperties::UserProperties() = default;
UserProperties::UserProperties(const UserProperties&) = default;
UserProperties::UserProperties(UserProperties&&) noexcept = default;
UserProperties& UserProperties::operator=(const UserProperties&) = default;
UserProperties& UserProperties::operator=(UserProperties&&) noexcept = default;
UserProperties::~UserProperties() = default;

UserLogFields::UserLogFields() = default;
UserLogFields::UserLogFields(const UserLogFields&) = default;
UserLogFields::UserLogFields(UserLogFields&&) noexcept = default;
UserLogFields& UserLogFields::operator=(const UserLogFields&) = default;
UserLogFields& UserLogFields::operator=(UserLogFields&&) noexcept = default;
UserLogFields::~UserLogFields() = default;

UserLog::UserLog() = default;
UserLog::UserLog(const UserLog&) = default;
UserLog::UserLog(UserLog&&) noexcept = default;
UserLog& UserLog::operator=(const UserLog&) = default;
UserLog& UserLog::operator=(UserLog&&) noexcept = default;
UserLog::~UserLog() = default;

UBAUserLog::UBAUserLog() = default;
UBAUserLog::UBAUserLog(const UBAUserLog&) = default;
UBAUserLog::UBAUserLog(UBAUserLog&&) noexcept = default;
UBAUserLog& UBAUserLog::operator=(const UBAUserLog&) = default;
UBAUserLog& UBAUserLog::operator=(UBAUserLog&&) noexcept = default;
UBAUserLog::~UBAUserLog() = default;

} // namespace DatabaseService::V10
