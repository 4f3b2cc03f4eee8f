#pragma once

#include "databaseservice/export.h"
#include "databaseservice/gallerytables.h"

#include <string>
#include <vector>

/// The gallery store: files, albums, their versions and three tables of tasks, in a file that the client names. It is
/// filled whole and read back one file at a time; there is no update and no delete.
///
/// Threads: any; each call opens its own connection. The name of the file is kept for the process and not locked:
/// another name must not be given while another thread is in a call.
/// Ownership: what a call returns belongs to the caller.
/// Failure: lines in the log. Before a name was given no call reaches a file.
namespace DatabaseService::GalleryDBProvider {

/// Takes the name of a file in the user's database folder, as it stands, and creates what is missing of the tables.
DATABASESERVICE_EXPORT void InitGalleryDatabase(std::wstring name);
/// Takes the name and drops the tables. They come back with the next `InitGalleryDatabase`.
DATABASESERVICE_EXPORT void ResetGalleryDatabase(std::wstring name);

// --- Writers ------------------------------------------------------------------------------------------------------
// A batch is one transaction. A record replaces the whole row of the same key, so the last one of a key wins. A row
// that fails is lost, and the others land. The vectors are not changed.

///@{
/// These three report whether the transaction was committed.
DATABASESERVICE_EXPORT bool InsertGalleryFileTable(std::vector<GalleryFileTable>& records);
DATABASESERVICE_EXPORT bool InsertAlbumVersionTable(std::vector<AlbumVersionTable>& records);
DATABASESERVICE_EXPORT bool InsertAlbumTable(std::vector<AlbumTable>& records);
///@}

///@{
/// These three report nothing.
DATABASESERVICE_EXPORT void InsertDownloadTaskTable(std::vector<DownloadTaskTable>& records);
DATABASESERVICE_EXPORT void InsertTransferCompleteCloudTaskTable(std::vector<TransferCompleteCloudTaskTable>& records);
DATABASESERVICE_EXPORT void InsertUploadTaskTable(std::vector<UploadTaskTable>& records);
///@}

// --- Readers ------------------------------------------------------------------------------------------------------
// A count is 0 for an empty table and after a failure alike.

///@{
/// The rows of the table behind the record.
DATABASESERVICE_EXPORT int CountAlbumTable();
DATABASESERVICE_EXPORT int CountAlbumVersionTable();
DATABASESERVICE_EXPORT int CountGalleryFileTable();
DATABASESERVICE_EXPORT int CountDownloadTaskTable();
DATABASESERVICE_EXPORT int CountTransferCompleteCloudTaskTable();
DATABASESERVICE_EXPORT int CountUploadTaskTable();
///@}

/// A record with an empty `UniqueId` when there is no such row, or when it could not be read.
DATABASESERVICE_EXPORT GalleryFileTable GetGalleryFileOneData(std::string& uniqueId);

} // namespace DatabaseService::GalleryDBProvider
