#pragma once

#include "databaseservice/commonsqlitedb.h"
#include "databaseservice/drivedatatable.h"
#include "databaseservice/drivefulltask.h"
#include "databaseservice/export.h"
#include "databaseservice/integers.h"

#include <string>
#include <vector>

namespace DatabaseService {

/// Any other value leaves a list unsorted. Names break ties, ascending.
enum CLOUD_DB_SORT_TYPE : int {
    CLOUD_DB_SORT_MODIFIED_ASC = 1,
    CLOUD_DB_SORT_MODIFIED_DESC = 2,
    CLOUD_DB_SORT_SIZE_ASC = 3,
    CLOUD_DB_SORT_SIZE_DESC = 4,
    CLOUD_DB_SORT_NAME_DESC = 5,
    CLOUD_DB_SORT_NAME_ASC = 6,
    CLOUD_DB_SORT_EXT_ASC = 7,
    CLOUD_DB_SORT_EXT_DESC = 8,
};

/// The files of one `classIndex` each, and the recycle bin.
enum CLOUD_DB_VIEW_TYPE : int {
    CLOUD_DB_VIEW_CLASS2 = 1,
    CLOUD_DB_VIEW_CLASS4 = 2,
    CLOUD_DB_VIEW_CLASS8 = 3,
    CLOUD_DB_VIEW_CLASS16 = 4,
    CLOUD_DB_VIEW_CLASS32 = 5,
    CLOUD_DB_VIEW_RECYCLE = 6, ///< counted, not listed
};

/// The queries behind the client's file lists, on `DriveModuleData.dat`.
///
/// ```cpp
/// CloudDriverDb::InitDatabasePath(L"store/DriveModuleData.dat"); // once; `DriverDBProvider` makes the file
/// CloudDriverDb lists;
/// std::vector<DriveDataTable> page; // the first twenty files of a folder, by name
/// lists.QueryChildFile("id-1", 0, 20, CLOUD_DB_SORT_NAME_ASC, page);
/// for (const DriveDataTable& file : page) {
///     std::cout << file.GetName() << '\n';
/// }
/// ```
///
/// Ids and names go into the statements' text between single quotes as they are: give it only what was read from
/// rows of the store, never what a person or a file system chose. A quote in one makes the statement fail or mean
/// something else. For untrusted values there are the bound readers of `DriverDBProviderBase`
/// (`GetDriveDataByParentId`, `GetDriveDataByWhereSql`, `GetFolderSubFile`, `GetDriveDataById`).
///
/// A list shows a row only while nothing hides it: rows in the bin, rows with a pending soft delete, rows that move
/// elsewhere, and, unless the setting `GetEnableShowLostDiskFile` is on, rows whose `needToDisplay` is neither 0 nor 1.
/// An empty parent id stands for the recycle bin: rows recycled by the user themselves, not yet expired, without a
/// pending restore or final deletion.
///
/// Folders and files are paged apart: for one list the caller asks `QueryChildFolder` first and `QueryChildFile` for
/// what is left of the page, with the number of folders taken off the offset. A negative `offset` or `count` is taken
/// for the unsigned number of its bits: as an offset it skips 4 billion rows, as a count it is no limit.
///
/// Threads: one at a time has an object, which keeps one connection open; a locked file is waited for up to 30
/// seconds. The path is set before the first object is made.
/// Ownership: records are appended to the caller's vectors.
/// Failure: lines in the log. A list is then empty or cut short, a count gives its default. A list's result is true
/// whenever its statement could be built, whatever became of the query.
class DATABASESERVICE_EXPORT CloudDriverDb : public CommonSqliteDb {
public:
    /// The full path of the file, for all objects made from then on.
    static void InitDatabasePath(std::wstring path);

    /// Opens the file, unless the path is still empty.
    CloudDriverDb();

    ///@{
    /// One page of a folder's folders or files: at most `count` of them, from the one with the number `offset` on,
    /// which counts from 0.
    bool QueryChildFolder(std::string parentId, int offset, int count, CLOUD_DB_SORT_TYPE sort,
                          std::vector<DriveDataTable>& out);
    bool QueryChildFile(std::string parentId, int offset, int count, CLOUD_DB_SORT_TYPE sort,
                        std::vector<DriveDataTable>& out);
    ///@}
    /// What was recycled at `time` or before, in seconds since 1970-01-01 UTC on the server's clock.
    bool QueryRecycleExpiredFile(int offset, int count, int64 time, std::vector<DriveDataTable>& out);
    /// False, without a query, for a view outside the five classes.
    bool QueryTypeFile(CLOUD_DB_VIEW_TYPE view, int offset, int count, CLOUD_DB_SORT_TYPE sort,
                       std::vector<DriveDataTable>& out);
    /// The child folders that went into the bin with their parent; all of them, unsorted.
    void QueryRecycleFolder(const std::string& parentId, std::vector<DriveDataTable>& out);
    /// Sets `recycled` on the children that were not recycled by themselves. Does nothing for an empty id, nor for one
    /// so long that the statement would not fit into 259 bytes.
    void UpdateRecycleChild(const std::string& parentId, int recycled);
    /// False, and `out` left alone, when there is no such row.
    bool QueryFileInfo(const std::string& fileId, DriveDataTable& out);
    /// Whether a visible child has exactly that name, case included.
    bool GetDuplicateName(const std::string& parentId, const std::string& name);
    /// Runs the caller's text, which must give the columns of a list in their order. False for null.
    bool GetSqlResult(const char* sql, std::vector<DriveDataTable>& out);
    /// The newest row of `DriveFolderSync`; false, and `out` left alone, when it is empty.
    bool GetFirstSyncFolder(DriveFullTask& out);
    /// The state of a full task; -1 for an empty or unknown id.
    int64 GetFullTaskStatus(const std::string& fileId);

    /// All that is neither in the bin nor on its way there or back, folders included.
    int64 GetTotalNumber();
    /// The folders among them.
    int64 GetTotalFolderNumber();
    /// All that is recycled, folders included.
    int64 GetRecycleTotalNumber();
    /// The folders among them.
    int64 GetRecycleFolderNumber();
    /// All rows under a folder, hidden ones too; 0 for an empty id.
    int64 GetSubAllNumber(std::string parentId);
    /// 0 for an empty id.
    int64 GetSubFolderNumber(std::string parentId);
    /// An empty id is asked for like any other.
    int64 GetSubFileNumber(std::string parentId);
    /// `GetSubFolderNumber` and `GetSubFileNumber` in one call.
    void GetFolderChildNumber(std::string parentId, int64& folders, int64& files);
    /// `folders` counts expired ones too, which no list shows; `files` does not.
    void GetRecycleChildNumber(int64& folders, int64& files);
    /// For the bin every row recycled by itself counts, expired or not. 0 for a view outside the six.
    int64 GetTypeTotalNumber(CLOUD_DB_VIEW_TYPE view);

protected:
    /// Registers the order of names.
    void OpenAfter(sqlite3* db) override;

private:
    DATABASESERVICE_NO_EXPORT bool QueryChildren(const std::string& parentId, const char* kind, int offset, int count,
                                                 CLOUD_DB_SORT_TYPE sort, std::vector<DriveDataTable>& out);
    DATABASESERVICE_NO_EXPORT void Collect(const std::string& sql, std::vector<DriveDataTable>& out);
    DATABASESERVICE_NO_EXPORT int64 Count(const std::string& conditions);
    DATABASESERVICE_NO_EXPORT int64 CountChildren(const std::string& parentId, const char* kind);
    DATABASESERVICE_NO_EXPORT void AddDisplayQuery(std::string& sql);
    DATABASESERVICE_NO_EXPORT void AddLimitQuery(std::string& sql, int offset, int count);
    DATABASESERVICE_NO_EXPORT void AddSortTypeQuery(std::string& sql, CLOUD_DB_SORT_TYPE sort);
    DATABASESERVICE_NO_EXPORT void InitFieldFromDbStep1(sqlite3_stmt*& statement, DriveDataTable& record, int& column);
    DATABASESERVICE_NO_EXPORT void InitFieldFromDbStep2(sqlite3_stmt*& statement, DriveDataTable& record, int& column);
    DATABASESERVICE_NO_EXPORT void GetAllResult(sqlite3_stmt*& statement, int64 context);
    DATABASESERVICE_NO_EXPORT void GetFolderResult(sqlite3_stmt*& statement, int64 context);
    DATABASESERVICE_NO_EXPORT int64 GetRecycleMaxValidTime() const;
};

} // namespace DatabaseService
