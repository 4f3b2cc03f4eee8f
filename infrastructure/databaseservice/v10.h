#pragma once

#include "databaseservice/export.h"
#include "databaseservice/legacyrecords.h"

#include <string>
#include <vector>

/// Reads the SQLite file of the earlier client generation, table by table, for whoever carries its rows over into the
/// stores of today. It writes no rows; it lays down the tables that the file lacks, empty, each time it opens it.
///
/// Threads: one at a time.
/// Ownership: what a reader appends belongs to the caller. Every call that reaches the file opens a connection and
/// leaves it open: see `ListKeptConnections`, and `CloseKeptConnections` for when all is read.
/// Failure: false and lines in the log. A row that cannot be read ends the table where it stands. Two readers throw,
/// as told there.
namespace DatabaseService::V10 {

/// Names the file, with its whole path, and lays down what it lacks. An empty path changes nothing and returns true.
/// False when there is no such file: the readers are then off, as they are before the first call. False also when
/// the file cannot be opened or its first table not be laid down; the readers then try once more each. A file that may
/// only be read is no failure, even if it lacks tables: each of them leaves lines in the log, and its reader gives
/// false.
///
/// `/` and `\` both end a folder, on every system. The path is kept with `\` and opened with what the system takes, so
/// where a name may itself hold a `\`, such a name cannot be reached.
DATABASESERVICE_EXPORT bool InitDB(std::wstring path);

// --- Readers ------------------------------------------------------------------------------------------------------
// Each appends a whole table in the order of its rows. False without a file; else whether the transaction was
// committed, and the rows that came before a failure stay.
//
// Cells fill the members in the order of the columns. One of the wrong kind, text for a number or a number for text,
// leaves its member empty or 0. NULL is empty or 0, unless the column is declared other than INTEGER, TEXT or VARCHAR:
// then it is no cell, and neither is a blob, and the next cell takes its place. In `GalleryFile` a NULL in `Sdsmtime`
// so moves the three texts behind it one member to the front.

///@{
/// Appends the whole table. False without a file; else whether the transaction was committed.
DATABASESERVICE_EXPORT bool GetAllGalleryFile(std::vector<GalleryFile>& records);
DATABASESERVICE_EXPORT bool GetAllAlbumLocalVersion(std::vector<AlbumLocalVersion>& records);
DATABASESERVICE_EXPORT bool GetAllAlbum(std::vector<Album>& records);
///@}
/// The rows whose `TaskType` is 1, or all others: two calls read the whole table.
DATABASESERVICE_EXPORT bool GetAllDownloadTask(std::vector<DownloadTask>& records, bool taskTypeIsOne);
/// As `GetAllDownloadTask`.
DATABASESERVICE_EXPORT bool GetAllTransferCompleteCloudTask(std::vector<TransferCompleteCloudTask>& records,
                                                            bool taskTypeIsOne);
///@{
/// As the readers above.
DATABASESERVICE_EXPORT bool GetAllUploadTask(std::vector<UploadTask>& records);
DATABASESERVICE_EXPORT bool GetAllUserProperties(std::vector<UserProperties>& records);
///@}

/// Throws `std::invalid_argument` with "invalid stod argument" when one of a row's three times does not begin with a
/// number, `std::out_of_range` with "stod argument out of range" when it is beyond what a `double` holds or between 0
/// and the smallest number that it holds. The transaction is over by then, and the rows before that one stay.
DATABASESERVICE_EXPORT bool GetAllUserLog(std::vector<UserLog>& records);
/// The rows of `UserLog`, as other records: nothing reads the table `UBAUserLog`. Throws as `GetAllUserLog` does.
DATABASESERVICE_EXPORT bool GetAllUBAUserLog(std::vector<UBAUserLog>& records);

} // namespace DatabaseService::V10
