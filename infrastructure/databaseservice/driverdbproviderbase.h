#pragma once

#include "databaseservice/databaseoperationbase.h"
#include "databaseservice/driveconftable.h"
#include "databaseservice/drivedatatable.h"
#include "databaseservice/drivefulltask.h"
#include "databaseservice/export.h"
#include "databaseservice/integers.h"

#include <functional>
#include <memory>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace DatabaseService {

/// The drive's file tree and the state of its synchronisation, in `DriveModuleData.dat`. Clients use
/// `DriverDBProvider`, which stands on this.
///
/// Threads: any; a provider holds the file's name and nothing else, and each call opens its own connection. Callbacks
/// run on the calling thread, after the connection is closed.
/// Ownership: what a call returns belongs to the caller.
/// Failure: lines in the log. A writer returns true whatever happened unless its comment says otherwise; in a batch a
/// row that fails is lost, the others land, and an empty batch runs an empty transaction. Readers give what an empty
/// table would give. Who must know whether rows landed reads them back.
///
/// Every connection knows the collation `NameCompare`, without which names cannot be written or sorted. The order
/// behind it is stored in an index, so a file may be written only by builds that agree on it (`NameOrderVersion`).
class DATABASESERVICE_EXPORT DriverDBProviderBase : public DatabaseOperationBase {
public:
    DriverDBProviderBase();
    DriverDBProviderBase(const DriverDBProviderBase&) = default;
    DriverDBProviderBase(DriverDBProviderBase&&) = default;
    DriverDBProviderBase& operator=(const DriverDBProviderBase&) = default;
    DriverDBProviderBase& operator=(DriverDBProviderBase&&) = default;
    ~DriverDBProviderBase() = default;

    /// Creates what is missing of the tables and indexes; what is there stays as it is. Always true.
    bool InitDatabase() override;

    /// The six indexes, and then the table `DriveFolderSync`, which has no function of its own.
    void CreateIndexOnDriveDataTable();

    /// Registers the collation on a connection. On failure `error` takes SQLite's message.
    static bool BindNameCompare(sqlite3* db, std::string& error);
    /// "NameCompare", for SQL text of the caller's own.
    static std::string GetNameCompareName();

    // --- Writers --------------------------------------------------------------------------------------------------
    // A batch is one statement in one transaction. A column that an update does not name keeps its value.
    // `localAbsolutePath` is written by the inserts and by `UpdateFileLocalInfo` only.

    ///@{
    /// Adds whole rows. A row whose `fileId` is taken is lost with a line in the log; the others land.
    bool InsertDriveData(const DriveDataTable& record);
    bool InsertDriveDataBatch(const std::vector<DriveDataTable>& records);
    ///@}

    ///@{
    /// Replaces whole rows: `localAbsolutePath` is left NULL, on rows that were there too.
    bool ReplaceDriveData(const DriveDataTable& record);
    bool ReplaceDriveAllData(const std::vector<DriveDataTable>& records);
    ///@}

    ///@{
    /// Everything but `localAbsolutePath`. Null pointers are left out with a line in the log.
    bool UpdateDriveData(const DriveDataTable& record);
    bool UpdateDriveData(const std::vector<std::shared_ptr<DriveDataTable>>& records);
    ///@}

    /// Reads the row, overwrites what `values` names and writes it back with the update above. Eighteen keys count:
    /// batchOper, localAbsolutePath (read, but not stored), uploadTime, renameName, renameTime, moveParentId,
    /// moveTime, softDelete, deleteSrcPath, softDeleteSrcPath, softDelTime, hardDelete, hardDelTime, localRestore,
    /// restoreTime, parentId, name, version. Others are ignored; no key or value reaches the statement's text.
    /// Numbers are the digits at the front of the value, 0 without any. An unknown id changes nothing.
    bool UpdateDriveData(const std::string& fileId, const std::unordered_map<std::string, std::string>& values);

    /// All but `localAbsolutePath`, `fileExtSign`, `needToDisplay` and `classIndex`.
    bool UpdateDriveAllData(const std::vector<DriveDataTable>& records);
    /// All but `localAbsolutePath`, the batch ids, `fileExtSign` and `classIndex`.
    bool UpdateDriveBaseData(const std::vector<DriveDataTable>& records);
    /// What a listing shows: name, size, parent, bin, times, versions, risk, extension sign, display, class.
    bool UpdateDriveSimpleData(const std::vector<DriveDataTable>& records);
    /// The markers of pending operations and nothing else.
    bool UpdateDriveOperData(const std::vector<DriveDataTable>& records);
    /// The listing's columns less `contentVersion`, with `favorite` and the markers.
    bool UpdateSimpleAllData(const std::vector<DriveDataTable>& records);
    /// `localAbsolutePath` and `localFileSha256`.
    bool UpdateFileLocalInfo(const std::vector<DriveDataTable>& records);

    ///@{
    /// The column `needToDisplay`. These two report whether the transaction was committed.
    bool UpdateCloudContentStatusById(const std::string& fileId, int status);
    bool UpdateCloudContentStatusByIds(const std::vector<std::pair<std::string, int>>& statuses);
    ///@}

    ///@{
    /// The rows with these ids, and nothing of what is below them.
    bool DeleteDriveDataById(const std::string& fileId);
    bool DeleteDriveDataById(const std::vector<std::string>& fileIds);
    ///@}
    /// Leaves the table empty.
    bool DeleteAllDriveData();
    /// Deletes nothing: its statement tests a column that the table does not have, and fails. Callers rely on that.
    bool DeleteDriveDataWithoutLocal();

    /// Runs the caller's text, unchecked: quoting is the caller's business.
    bool ExecuteSQL(const std::string& sql);
    /// Each text alone, in its own transaction; one that fails does not stop the next.
    bool ExecuteSQLList(std::vector<std::string>& statements);

    // --- Markers of pending operations ----------------------------------------------------------------------------
    // What the user did here and the cloud does not know yet: a value, a time and a batch id, all of the caller's
    // making. A batch id of 0 means that nothing is pending. None of these takes a marker off: write the row again with
    // 0 in its batch id, through `UpdateDriveOperData` or `UpdateSimpleAllData`.

    /// Finds the row by `helpData` and gives it the key `fileId`, with name, kind, `contentVersion`, `modifiedTime`,
    /// `recycledTime` and `newBatchId`. Children keep the old id as their parent. If the new key is taken, the row
    /// stays as it was.
    bool NewDirDriveDataById(const std::vector<DriveDataTable>& records);
    /// The other way round: finds the row by `fileId` and gives it the key `helpData`, an empty one too, with
    /// `mimeType`, name, kind, `contentVersion`, `version` and `newBatchId`.
    bool UploadDriveDataById(const std::vector<DriveDataTable>& records);
    /// Writes `name` too, so that lists can show the new name at once.
    bool RenameDriveDataById(const std::vector<DriveDataTable>& records);
    /// The row stays in its old folder: `parentId` is left alone.
    bool MoveDriveDataToParent(const std::vector<DriveDataTable>& records);
    /// A move to the bin. The row is not recycled meanwhile.
    bool SoftDeleteDriveDataById(const std::vector<DriveDataTable>& records);
    /// A final deletion. The row stays meanwhile.
    bool HardDeleteDriveDataById(const std::vector<DriveDataTable>& records);
    /// A return from the bin. The row stays recycled meanwhile.
    bool RestoreDriveDataById(const std::vector<DriveDataTable>& records);

    // --- Readers --------------------------------------------------------------------------------------------------
    // Rows come in the order in which SQLite gives them.

    /// An empty record when there is no such row.
    DriveDataTable GetDriveDataById(std::string fileId);
    /// The whole table at once. Lists by page are in `CloudDriverDb`.
    std::vector<DriveDataTable> GetALLDriveData();
    /// A folder's direct children, recycled ones too.
    std::vector<DriveDataTable> GetDriveDataByParentId(std::string parentId);
    /// `where` goes into the statement's text as it is; write parameters there and give their values in `bind`.
    std::vector<DriveDataTable> GetDriveDataByWhereSql(std::string where, DatabaseBindParameter& bind);

    ///@{
    /// Both run the caller's text, unchecked. It must give the 53 columns of a full read in the order of the table,
    /// from `fileId` to `data4`: cells are read by position.
    std::vector<std::shared_ptr<DriveDataTable>> GetDriveDataByRawSQL(const std::string& sql);
    std::vector<std::shared_ptr<DriveDataTable>> GetFileMetadataByRawSQL(const std::string& sql);
    ///@}

    /// Takes no SQL, despite its name: reads the whole table into memory, then calls `visit` for each row with
    /// `context` and the record's address, both as integers. The address is good for the length of the call. What
    /// `visit` returns is ignored. An empty `visit` throws `std::bad_function_call` at the first row.
    void GetFileMetadataByRawSQL(void* context, std::function<bool(uint64, int64)> visit);

    /// One name per id, in order, an empty one for an unknown id. Empty when the file cannot be opened or read.
    std::vector<std::string> GetDriveDataNameByFieldId(const std::vector<std::string>& ids);

    /// One flag per id, in order. Empty when the file cannot be opened or read.
    std::vector<bool> CheckWhetherFileIdExistsInDriveData(const std::vector<std::string>& ids);
    /// For one id, with a statement prepared by the caller that counts the rows of `:fileId`.
    bool CheckWhetherFileIdExistsInDriveData(const std::wstring& id, sqlite3_stmt* statement);

    /// All rows, recycled ones too.
    int CountDriverData();
    /// The first cell of the first row of the caller's text, which is run unchecked: 0 without a row, -1 for text.
    int GetCountBySelectSQL(std::string& sql);

    /// One page of a folder's children that are not recycled: appends the ids of at most `selNums` of them, from
    /// `startPos` on, to `folders` or `files`. Always true.
    bool GetFolderSubFile(const std::string& parentId, std::vector<std::string>& files,
                          std::vector<std::string>& folders, const unsigned& selNums, const unsigned& startPos);

    /// Adds to `folders` the ids of all folders at and below the sources, recycled ones too. Always true. Runs
    /// without end if a row is its own ancestor.
    bool GetSourcesFolder(const std::unordered_set<std::string>& sources, std::unordered_set<std::string>& folders);

    /// How many rows at and below `fileId` are not recycled; children of recycled folders count. Runs without end if
    /// a row is its own ancestor.
    int GetFilesChildNodeCount(const std::string& fileId);

    // --- Mark and sweep -------------------------------------------------------------------------------------------
    // Mark the folders' children, write the rows that a fresh listing holds (each write of `data2` clears the mark),
    // then sweep what is still marked.

    /// Marks in `data2` the children that are neither recycled nor waiting for a soft delete, a move or a restore.
    void SetDriveDataSyncFlag(const std::vector<std::string>& parentIds);
    /// Deletes the children that carry the mark and are not recycled, whatever waits for them by now.
    void DelDriveDataBySyncFlag(const std::vector<std::string>& parentIds);

    // --- Configuration of the synchronisation ---------------------------------------------------------------------
    // One row, under an id of the caller's choice. Columns without an operation here change by the caller's own
    // statement. An unknown id changes nothing and is no failure.

    /// Loses the row when its id is taken, with a line in the log.
    void InsertDriverConfItem(DriveConfTable& configuration);
    /// Rows in which `isFirstStart` is NULL do not count.
    int CountDriverConfItem();
    /// The first row that SQLite gives, whatever its id; false when there is none, or on failure. Numbers are cut to
    /// their members.
    std::pair<bool, DriveConfTable> GetDriverConfItem();

    ///@{
    /// These four report whether the transaction was committed, the first as 1 or 0.
    int UpdateIsFirstStartInDriverConf(int id, int value);
    bool UpdateLastFullSyncTimestampInDriverConf(int id, const int64& timestamp);
    bool UpdateLastLostFileQueryTimestampInDriverConf(int id, const int64& timestamp);
    bool UpdateLostFileQueryCursorInDriverConf(int id, const std::string& cursor);
    ///@}

    /// As `UpdateIsFirstStartInDriverConf`, but always true.
    bool UpdateIsFirstStartInDriverConfV2(int id, int value);
    ///@{
    /// The column of this name in the row of this id. Always true.
    bool UpdateRootFileIdInDriverConf(int id, const std::string& fileId);
    bool UpdateLastAutomaticSyncTimestampInDriverConf(int id, const int64& timestamp);
    bool UpdateLastSubscribeTimestampInDriverConf(int id, const int64& timestamp);
    bool UpdateStartCursorInDriverConf(int id, const std::string& cursor);
    ///@}
    /// Both intervals are stored at 64 bits, although the members that they are read into have 32.
    bool UpdateFullSyncIntervalInDriverConf(int id, const int64& interval);
    /// As `UpdateFullSyncIntervalInDriverConf`.
    bool UpdateAutomaticSyncIntervalInDriverConf(int id, const int64& interval);

    // --- Tasks of a full synchronisation --------------------------------------------------------------------------
    // One row per folder.

    ///@{
    /// A row whose `fileId` is taken is lost with a line in the log.
    bool InsertFullTask(const DriveFullTask& task);
    bool InsertFullTaskBatch(const std::vector<DriveFullTask>& tasks);
    ///@}
    /// Replaces whole rows. The name is spelled so on purpose.
    bool RelaceFullTaskBatch(const std::vector<DriveFullTask>& tasks);

    /// A task with an empty `fileId` when there is no such row.
    DriveFullTask GetFullTaskById(std::string fileId);
    /// All of them.
    std::vector<DriveFullTask> GetFullTask();

    ///@{
    /// The one column of the row with this id.
    bool UpdateCursorInFullSyncTask(const std::string& fileId, const std::string& cursor);
    bool UpdateStateInFullSyncTask(const std::string& fileId, int state);
    ///@}
    /// Does nothing; `UpdateStateInFullSyncTask` is the one that works.
    bool UpdateFullTaskWithValue(std::string fileId, int value);

    /// All of them.
    bool DeleteFullTask();
    ///@{
    /// The rows with these ids.
    bool DeleteFullTaskById(std::string fileId);
    bool DeleteFullTaskBatch(std::vector<std::string> fileIds);
    ///@}

protected:
    /// Registers the order of names.
    void AfterOpen(sqlite3* db) override;

private:
    DATABASESERVICE_NO_EXPORT void CreateDriveFullTaskTable();
    DATABASESERVICE_NO_EXPORT void CreateDriveConfTable();
    DATABASESERVICE_NO_EXPORT void CreateDriveDataTable();
    DATABASESERVICE_NO_EXPORT void WithStatement(const std::string& sql, const std::function<void(sqlite3_stmt*)>& use);
};

} // namespace DatabaseService
