#pragma once

#include "databaseservice/carditems.h"
#include "databaseservice/cloudfiletable.h"
#include "databaseservice/export.h"
#include "databaseservice/userlog.h"
#include "databaseservice/userproperties.h"

#include <string>
#include <vector>

/// The main store, `main.dat`: the client's settings, two logs of usage, changes of files in the cloud drive, and
/// cards.
///
/// Threads: any; each call opens its own connection.
/// Ownership: what a call returns belongs to the caller.
/// Failure: lines in the log and nothing else. In a batch a row that fails is lost and the others land; a read that
/// fails gives what an empty table would give. A table that was dropped is missing until the next `InitMainDatabase`.
namespace DatabaseService::MainDatabaseProvider {

/// Creates the tables that are missing; what is there stays as it is, older columns included.
DATABASESERVICE_EXPORT void InitMainDatabase();

// --- Settings -----------------------------------------------------------------------------------------------------
// An update replaces or adds. An insert fails on a key that is there. A vector is one transaction.

/// The value of "SyncCloudFolder" comes as the long form of its path where the system knows one.
DATABASESERVICE_EXPORT std::vector<UserProperties> GetAllUserProperties();
/// As stored. Empty for an unknown key.
DATABASESERVICE_EXPORT std::wstring GetUserPropertieByKey(const std::wstring& key);
///@{
/// Replaces or adds.
DATABASESERVICE_EXPORT void UpdateUserProperties(const std::wstring& key, const std::wstring& value);
DATABASESERVICE_EXPORT void UpdateUserProperties(std::vector<UserProperties>& properties);
///@}

///@{
/// Adds, and loses what is there already with a line in the log.
DATABASESERVICE_EXPORT void InsertUserProperties(const std::wstring& key, const std::wstring& value);
DATABASESERVICE_EXPORT void InsertUserProperties(std::vector<UserProperties>& properties);
///@}
/// Leaves the table empty.
DATABASESERVICE_EXPORT void DeleteAllUserProperties();
/// 0 also after a failure.
DATABASESERVICE_EXPORT int CountUserProperties();

// --- Logs of usage ------------------------------------------------------------------------------------------------

/// Reads `UBAUserLog`, despite its name, and gives nothing back: a check that the table can be read.
DATABASESERVICE_EXPORT void GetAllUserLog();
///@{
/// In one transaction, under the ids of the records. The three times lose their fractions; what is beyond 64 bits is
/// stored as the nearest number within, and what is no number as 0.
DATABASESERVICE_EXPORT void InsertUserUserLog(std::vector<UserLog> records);
DATABASESERVICE_EXPORT void InsertUserUBAUserLog(std::vector<UBAUserLog> records);
///@}

// --- Changes of files ---------------------------------------------------------------------------------------------
// The store gives each inserted row its `id`, which is never given again. One file id may have several rows.

/// One transaction. The record's own `id` does not count and stays.
DATABASESERVICE_EXPORT void InsertOneCloudDriveDataBatch(T_CloudFileTable& record);
/// One transaction per record.
DATABASESERVICE_EXPORT void InsertCloudDriveDataBatch(std::vector<T_CloudFileTable>& records);
/// Deletes the `num` rows with the lowest `modifiedTime`; a negative number deletes all.
DATABASESERVICE_EXPORT void DeleteCloudDriveDataBatchOrderBy(int& num);
/// Leaves the table empty.
DATABASESERVICE_EXPORT void DeleteAllCloudDriveDataBatch();
/// The highest `modifiedTime` first.
DATABASESERVICE_EXPORT std::vector<T_CloudFileTable> GetAllCloudDriveDataBatch();
/// The first row of the file. A record with an empty `fileId` when there is none.
DATABASESERVICE_EXPORT T_CloudFileTable GetCloudDriveDataBatch(std::string& fileId);
/// The number of rows, 0 also after a failure.
DATABASESERVICE_EXPORT int GetAllCloudDriveDataBatchNum();
/// Whether the file has a row.
DATABASESERVICE_EXPORT bool SelectOneCloudDriveData(std::string& fileId);
/// Deletes the first row of the file and leaves its others.
DATABASESERVICE_EXPORT void DeleteOneCloudDriveDataBatchColumn(std::string& fileId);
/// Deletes the rows of which `fileId` is the parent.
DATABASESERVICE_EXPORT void DeleteSameColumnFromParentId(std::string& fileId);
/// The rows of which `id` is the parent's file id.
DATABASESERVICE_EXPORT std::vector<T_CloudFileTable> SelectSameColumnFromParentId(std::string& id);
/// Rewrites the rows that have the records' `id`, in one transaction; a record without a row is passed over.
DATABASESERVICE_EXPORT void UpdateCloudDriveVec(std::vector<T_CloudFileTable>& records);
/// As `UpdateCloudDriveVec`, for one record: all columns, not those of the preview alone.
DATABASESERVICE_EXPORT void UpdateCloudDriveDataSmallPicDown(T_CloudFileTable& record);
/// Deletes the first row of the record's file, if there is one, and inserts the record under a new `id`, in two
/// transactions.
DATABASESERVICE_EXPORT void UpdateSelectCloudDriveData(T_CloudFileTable& record);
/// Deletes the first row of the record's file.
DATABASESERVICE_EXPORT void UpdateSelectDelCloudDriveData(T_CloudFileTable& record);

// --- Cards --------------------------------------------------------------------------------------------------------

///@{
/// Replaces the card of that key.
DATABASESERVICE_EXPORT void InsertWaitHandleCardItem(int key, std::string value);
DATABASESERVICE_EXPORT void InsertNotepadCardItem(int key, std::string value);
///@}
/// All of them.
DATABASESERVICE_EXPORT void RemoveWaitHandleCardItem();
/// All of them.
DATABASESERVICE_EXPORT void RemoveNotepadCardItem();
/// Appends to `items`.
DATABASESERVICE_EXPORT void GetWaitHandleCardItem(std::vector<T_WaitHandleCardItem>& items);
/// Appends to `items`.
DATABASESERVICE_EXPORT void GetNotepadCardItem(std::vector<T_NotepadCard>& items);

// --- Clean-up -----------------------------------------------------------------------------------------------------
// The cards survive all of it.

/// Drops settings, logs and changes.
DATABASESERVICE_EXPORT void DeleteMainDBTable();
/// Drops the changes.
DATABASESERVICE_EXPORT void DeleteMainCloudFileTable();
/// Drops logs and changes.
DATABASESERVICE_EXPORT void DeleteMainDBTableWithoutUserProperties();

/// Removes from `folder`, with all that is below it, every name that `pattern` finds: a whole path with wildcards in
/// its last part, which need not lie in `folder`. Nothing is removed when `folder` does not exist.
DATABASESERVICE_EXPORT void DeleteCacheFile(std::wstring pattern, std::wstring folder);

} // namespace DatabaseService::MainDatabaseProvider
