#include "databaseservice/maindatabaseprovider.h"

#include "databaseservice/cachefiles.h"
#include "databaseservice/maindatabaseproviderbase.h"
#include "databaseservice/storefiles.h"
#include "platform/neverdestroyed.h"

#include <utility>

namespace DatabaseService::MainDatabaseProvider {

namespace {

MainDatabaseProviderBase& provider()
{
    static auto& instance = platform::neverDestroyed(MainDatabaseProviderBase(mainStoreFile));
    return instance;
}

} // namespace

void InitMainDatabase()
{
    provider().InitDatabase();
}

std::vector<UserProperties> GetAllUserProperties()
{
    return provider().GetAllUserProperties();
}

std::wstring GetUserPropertieByKey(const std::wstring& key)
{
    return provider().GetUserPropertieByKey(key);
}

void UpdateUserProperties(const std::wstring& key, const std::wstring& value)
{
    provider().UpdateUserProperties(key, value);
}

void UpdateUserProperties(std::vector<UserProperties>& properties)
{
    provider().UpdateUserProperties(properties);
}

void InsertUserProperties(const std::wstring& key, const std::wstring& value)
{
    provider().InsertUserProperties(key, value);
}

void InsertUserProperties(std::vector<UserProperties>& properties)
{
    provider().InsertUserProperties(properties);
}

void DeleteAllUserProperties()
{
    provider().DeleteAllUserProperties();
}

int CountUserProperties()
{
    return provider().CountUserProperties();
}

void GetAllUserLog()
{
    provider().GetAllUserLog();
}

void InsertUserUserLog(std::vector<UserLog> records)
{
    provider().InsertUserUserLog(std::move(records));
}

void InsertUserUBAUserLog(std::vector<UBAUserLog> records)
{
    provider().InsertUserUBAUserLog(std::move(records));
}

void InsertOneCloudDriveDataBatch(T_CloudFileTable& record)
{
    provider().InsertOneCloudDriveDataBatch(record);
}

void InsertCloudDriveDataBatch(std::vector<T_CloudFileTable>& records)
{
    provider().InsertCloudDriveDataBatch(records);
}

void DeleteCloudDriveDataBatchOrderBy(int& num)
{
    provider().DeleteCloudDriveDataBatchOrderBy(num);
}

void DeleteAllCloudDriveDataBatch()
{
    provider().DeleteAllCloudDriveDataBatch();
}

std::vector<T_CloudFileTable> GetAllCloudDriveDataBatch()
{
    return provider().GetAllCloudDriveDataBatch();
}

T_CloudFileTable GetCloudDriveDataBatch(std::string& fileId)
{
    return provider().GetCloudDriveDataBatch(fileId);
}

int GetAllCloudDriveDataBatchNum()
{
    return provider().GetAllCloudDriveDataBatchNum();
}

bool SelectOneCloudDriveData(std::string& fileId)
{
    return provider().SelectOneCloudDriveData(fileId);
}

void DeleteOneCloudDriveDataBatchColumn(std::string& fileId)
{
    provider().DeleteOneCloudDriveDataBatchColumn(fileId);
}

void DeleteSameColumnFromParentId(std::string& fileId)
{
    provider().DeleteSameColumnFromParentId(fileId);
}

std::vector<T_CloudFileTable> SelectSameColumnFromParentId(std::string& id)
{
    return provider().SelectSameColumnFromParentId(id);
}

void UpdateCloudDriveVec(std::vector<T_CloudFileTable>& records)
{
    provider().UpdateCloudDriveVec(records);
}

void UpdateCloudDriveDataSmallPicDown(T_CloudFileTable& record)
{
    provider().UpdateCloudDriveDataSmallPicDown(record);
}

void UpdateSelectCloudDriveData(T_CloudFileTable& record)
{
    provider().UpdateSelectCloudDriveData(record);
}

void UpdateSelectDelCloudDriveData(T_CloudFileTable& record)
{
    provider().UpdateSelectDelCloudDriveData(record);
}

void InsertWaitHandleCardItem(int key, std::string value)
{
    provider().InsertWaitHandleCardItem(key, std::move(value));
}

void InsertNotepadCardItem(int key, std::string value)
{
    provider().InsertNotepadCardItem(key, std::move(value));
}

void RemoveWaitHandleCardItem()
{
    provider().RemoveWaitHandleCardItem();
}

void RemoveNotepadCardItem()
{
    provider().RemoveNotepadCardItem();
}

void GetWaitHandleCardItem(std::vector<T_WaitHandleCardItem>& items)
{
    provider().GetWaitHandleCardItem(items);
}

void GetNotepadCardItem(std::vector<T_NotepadCard>& items)
{
    provider().GetNotepadCardItem(items);
}

void DeleteMainDBTable()
{
    provider().DeleteMainDBTable();
}

void DeleteMainCloudFileTable()
{
    provider().DeleteMainCloudFileTable();
}

void DeleteMainDBTableWithoutUserProperties()
{
    provider().DeleteMainDBTableWithoutUserProperties();
}

void DeleteCacheFile(std::wstring pattern, std::wstring folder)
{
    removeCacheFiles(pattern, folder);
}

} // namespace DatabaseService::MainDatabaseProvider
