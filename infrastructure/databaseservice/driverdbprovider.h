#pragma once

#include "databaseservice/driverdbproviderbase.h"

namespace DatabaseService {

/// The drive store as clients use it: construct one wherever it is needed, call `InitDatabase` once per user's folder,
/// then use the operations. The file `DriveModuleData.dat` lies in the folder that `GlobalParamWrapper` names at each
/// call; there is nothing to open and nothing to close.
///
/// ```cpp
/// GlobalParamWrapper::GetInstance()->SetUserDataBaseFolder(L"store"); // a folder that exists
/// DriverDBProvider drive;
/// drive.InitDatabase();
///
/// DriveDataTable photo;
/// photo.SetFileid("id-2");
/// photo.SetParentId("id-1");
/// photo.SetName("sunrise.jpg");
/// drive.ReplaceDriveAllData({photo}); // as many as you like: one transaction
///
/// for (const DriveDataTable& child : drive.GetDriveDataByParentId("id-1")) {
///     std::cout << child.GetName() << '\n';
/// }
/// ```
///
/// It adds nothing to `DriverDBProviderBase`, whose header says what each operation does, and holds nothing of its own.
/// Threads, ownership and failures are the base's. Before `InitDatabase` every statement fails for want of its table:
/// most writers answer true all the same, readers find nothing.
///
/// The base's operations that are not declared again here are called through this class just as well.
class DATABASESERVICE_EXPORT DriverDBProvider : public DriverDBProviderBase {
public:
    DriverDBProvider();
    DriverDBProvider(const DriverDBProvider&) = default;
    DriverDBProvider(DriverDBProvider&&) = default;
    DriverDBProvider& operator=(const DriverDBProvider&) = default;
    DriverDBProvider& operator=(DriverDBProvider&&) = default;
    ~DriverDBProvider() = default;

    /// As the base: creates what is missing, and always true.
    bool InitDatabase() override;

    ///@{
    /// Writers: as the base's operation of this name.
    bool InsertDriveData(const DriveDataTable& record);
    bool InsertDriveDataBatch(const std::vector<DriveDataTable>& records);
    bool ReplaceDriveData(const DriveDataTable& record);
    bool ReplaceDriveAllData(const std::vector<DriveDataTable>& records);
    bool UpdateDriveData(const DriveDataTable& record);
    bool UpdateDriveData(const std::vector<std::shared_ptr<DriveDataTable>>& records);
    bool UpdateDriveData(const std::string& fileId, const std::unordered_map<std::string, std::string>& values);
    bool UpdateDriveAllData(const std::vector<DriveDataTable>& records);
    bool UpdateDriveBaseData(const std::vector<DriveDataTable>& records);
    bool UpdateDriveSimpleData(const std::vector<DriveDataTable>& records);
    bool UpdateDriveOperData(const std::vector<DriveDataTable>& records);
    bool UpdateSimpleAllData(const std::vector<DriveDataTable>& records);
    bool UpdateFileLocalInfo(const std::vector<DriveDataTable>& records);
    bool DeleteDriveDataById(const std::string& fileId);
    bool DeleteDriveDataById(const std::vector<std::string>& fileIds);
    bool DeleteAllDriveData();
    bool DeleteDriveDataWithoutLocal();
    bool ExecuteSQL(const std::string& sql);
    bool ExecuteSQLList(std::vector<std::string>& statements);
    ///@}

    ///@{
    /// Markers of pending operations: as the base's operation of this name.
    bool NewDirDriveDataById(const std::vector<DriveDataTable>& records);
    bool UploadDriveDataById(const std::vector<DriveDataTable>& records);
    bool RenameDriveDataById(const std::vector<DriveDataTable>& records);
    bool MoveDriveDataToParent(const std::vector<DriveDataTable>& records);
    bool SoftDeleteDriveDataById(const std::vector<DriveDataTable>& records);
    bool HardDeleteDriveDataById(const std::vector<DriveDataTable>& records);
    bool RestoreDriveDataById(const std::vector<DriveDataTable>& records);
    ///@}

    ///@{
    /// Readers: as the base's operation of this name.
    DriveDataTable GetDriveDataById(std::string fileId);
    std::vector<DriveDataTable> GetALLDriveData();
    std::vector<DriveDataTable> GetDriveDataByParentId(std::string parentId);
    std::vector<DriveDataTable> GetDriveDataByWhereSql(std::string where, DatabaseBindParameter& bind);
    std::vector<std::shared_ptr<DriveDataTable>> GetDriveDataByRawSQL(const std::string& sql);
    std::vector<std::shared_ptr<DriveDataTable>> GetFileMetadataByRawSQL(const std::string& sql);
    void GetFileMetadataByRawSQL(void* context, std::function<bool(uint64, int64)> visit);
    std::vector<std::string> GetDriveDataNameByFieldId(const std::vector<std::string>& ids);
    std::vector<bool> CheckWhetherFileIdExistsInDriveData(const std::vector<std::string>& ids);
    bool CheckWhetherFileIdExistsInDriveData(const std::wstring& id, sqlite3_stmt* statement);
    int CountDriverData();
    int GetCountBySelectSQL(std::string& sql);
    bool GetFolderSubFile(const std::string& parentId, std::vector<std::string>& files,
                          std::vector<std::string>& folders, const unsigned& selNums, const unsigned& startPos);
    bool GetSourcesFolder(const std::unordered_set<std::string>& sources, std::unordered_set<std::string>& folders);
    int GetFilesChildNodeCount(const std::string& fileId);
    ///@}

    ///@{
    /// Mark and sweep: as the base's operation of this name.
    void SetDriveDataSyncFlag(const std::vector<std::string>& parentIds);
    void DelDriveDataBySyncFlag(const std::vector<std::string>& parentIds);
    ///@}

    ///@{
    /// Configuration of the synchronisation: as the base's operation of this name.
    void InsertDriverConfItem(DriveConfTable& configuration);
    int CountDriverConfItem();
    std::pair<bool, DriveConfTable> GetDriverConfItem();
    int UpdateIsFirstStartInDriverConf(int id, int value);
    bool UpdateIsFirstStartInDriverConfV2(int id, int value);
    bool UpdateRootFileIdInDriverConf(int id, const std::string& fileId);
    bool UpdateLastFullSyncTimestampInDriverConf(int id, const int64& timestamp);
    bool UpdateLastAutomaticSyncTimestampInDriverConf(int id, const int64& timestamp);
    bool UpdateLastSubscribeTimestampInDriverConf(int id, const int64& timestamp);
    bool UpdateStartCursorInDriverConf(int id, const std::string& cursor);
    bool UpdateFullSyncIntervalInDriverConf(int id, const int64& interval);
    bool UpdateAutomaticSyncIntervalInDriverConf(int id, const int64& interval);
    ///@}

    ///@{
    /// Tasks of a full synchronisation. The two batches take their list by a reference that is not const, unlike the
    /// base's, and leave it as it is.
    bool InsertFullTask(const DriveFullTask& task);
    bool InsertFullTaskBatch(std::vector<DriveFullTask>& tasks);
    bool RelaceFullTaskBatch(std::vector<DriveFullTask>& tasks);
    DriveFullTask GetFullTaskById(std::string fileId);
    std::vector<DriveFullTask> GetFullTask();
    bool UpdateCursorInFullSyncTask(const std::string& fileId, const std::string& cursor);
    bool UpdateStateInFullSyncTask(const std::string& fileId, int state);
    bool UpdateFullTaskWithValue(std::string fileId, int value);
    bool DeleteFullTask();
    bool DeleteFullTaskById(std::string fileId);
    bool DeleteFullTaskBatch(std::vector<std::string> fileIds);
    ///@}

    ///@{
    /// Kept for clients that link against them: these do nothing and touch no argument. `ResetDriverDB` resets nothing;
    /// rows are read by the operations above.
    void ResetDriverDB();
    void ConvertStmtToFileItem(sqlite3_stmt*& statement, DriveDataTable& record);
    void InitFieldFromDbStep1(sqlite3_stmt*& statement, DriveDataTable& record, int& column);
    void InitFieldFromDbStep2(sqlite3_stmt*& statement, DriveDataTable& record, int& column);
    ///@}
};

} // namespace DatabaseService
