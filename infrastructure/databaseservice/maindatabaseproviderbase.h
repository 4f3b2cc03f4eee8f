// The library's own: not installed.
#pragma once

#include "databaseservice/carditems.h"
#include "databaseservice/cloudfiletable.h"
#include "databaseservice/databaseoperationbase.h"
#include "databaseservice/integers.h"
#include "databaseservice/userlog.h"
#include "databaseservice/userproperties.h"

#include <string>
#include <vector>

namespace DatabaseService {

class ElementSource;

/// The main store behind the functions of `MainDatabaseProvider`, which are its interface and say what each does.
///
/// Threads: any; a provider holds the file's name and nothing else, and each call opens its own connection.
/// Ownership: what a call returns belongs to the caller.
/// Failure: lines in the log.
class MainDatabaseProviderBase : public DatabaseOperationBase {
public:
    explicit MainDatabaseProviderBase(const std::wstring& name);

    /// Always true.
    bool InitDatabase() override;

    std::vector<UserProperties> GetAllUserProperties();
    std::wstring GetUserPropertieByKey(const std::wstring& key);
    void UpdateUserProperties(const std::wstring& key, const std::wstring& value);
    void UpdateUserProperties(std::vector<UserProperties>& properties);
    void InsertUserProperties(const std::wstring& key, const std::wstring& value);
    void InsertUserProperties(std::vector<UserProperties>& properties);
    void DeleteAllUserProperties();
    int CountUserProperties();

    void GetAllUserLog();
    void InsertUserUserLog(std::vector<UserLog> records);
    void InsertUserUBAUserLog(std::vector<UBAUserLog> records);

    void InsertOneCloudDriveDataBatch(T_CloudFileTable& record);
    void InsertCloudDriveDataBatch(std::vector<T_CloudFileTable>& records);
    void DeleteCloudDriveDataBatchOrderBy(int& num);
    void DeleteAllCloudDriveDataBatch();
    std::vector<T_CloudFileTable> GetAllCloudDriveDataBatch();
    T_CloudFileTable GetCloudDriveDataBatch(std::string& fileId);
    int GetAllCloudDriveDataBatchNum();
    bool SelectOneCloudDriveData(std::string& fileId);
    void DeleteOneCloudDriveDataBatchColumn(std::string& fileId);
    void DeleteSameColumnFromParentId(std::string& fileId);
    std::vector<T_CloudFileTable> SelectSameColumnFromParentId(std::string& id);
    void UpdateCloudDriveVec(std::vector<T_CloudFileTable>& records);
    void UpdateCloudDriveDataSmallPicDown(T_CloudFileTable& record);
    void UpdateSelectCloudDriveData(T_CloudFileTable& record);
    void UpdateSelectDelCloudDriveData(T_CloudFileTable& record);

    void InsertWaitHandleCardItem(int key, std::string value);
    void InsertNotepadCardItem(int key, std::string value);
    void RemoveWaitHandleCardItem();
    void RemoveNotepadCardItem();
    void GetWaitHandleCardItem(std::vector<T_WaitHandleCardItem>& items);
    void GetNotepadCardItem(std::vector<T_NotepadCard>& items);

    void DeleteMainDBTable();
    void DeleteMainCloudFileTable();
    void DeleteMainDBTableWithoutUserProperties();
    void DeleteCacheFile(std::wstring pattern, std::wstring folder);

private:
    std::vector<int64> ReadIds(const std::string& sql, ElementSource& elements);
    void DeleteCloudFileRows(const std::vector<int64>& ids);
};

} // namespace DatabaseService
