#include "databaseservice/driverdbprovider.h"

namespace DatabaseService {

namespace {

using Base = DriverDBProviderBase;

} // namespace

DriverDBProvider::DriverDBProvider() = default;

bool DriverDBProvider::InitDatabase()
{
    return Base::InitDatabase();
}

bool DriverDBProvider::InsertDriveData(const DriveDataTable& record)
{
    return Base::InsertDriveData(record);
}

bool DriverDBProvider::InsertDriveDataBatch(const std::vector<DriveDataTable>& records)
{
    return Base::InsertDriveDataBatch(records);
}

bool DriverDBProvider::ReplaceDriveData(const DriveDataTable& record)
{
    return Base::ReplaceDriveData(record);
}

bool DriverDBProvider::ReplaceDriveAllData(const std::vector<DriveDataTable>& records)
{
    return Base::ReplaceDriveAllData(records);
}

bool DriverDBProvider::UpdateDriveData(const DriveDataTable& record)
{
    return Base::UpdateDriveData(record);
}

bool DriverDBProvider::UpdateDriveData(const std::vector<std::shared_ptr<DriveDataTable>>& records)
{
    return Base::UpdateDriveData(records);
}

bool DriverDBProvider::UpdateDriveData(const std::string& fileId,
                                       const std::unordered_map<std::string, std::string>& values)
{
    return Base::UpdateDriveData(fileId, values);
}

bool DriverDBProvider::UpdateDriveAllData(const std::vector<DriveDataTable>& records)
{
    return Base::UpdateDriveAllData(records);
}

bool DriverDBProvider::UpdateDriveBaseData(const std::vector<DriveDataTable>& records)
{
    return Base::UpdateDriveBaseData(records);
}

bool DriverDBProvider::UpdateDriveSimpleData(const std::vector<DriveDataTable>& records)
{
    return Base::UpdateDriveSimpleData(records);
}

bool DriverDBProvider::UpdateDriveOperData(const std::vector<DriveDataTable>& records)
{
    return Base::UpdateDriveOperData(records);
}

bool DriverDBProvider::UpdateSimpleAllData(const std::vector<DriveDataTable>& records)
{
    return Base::UpdateSimpleAllData(records);
}

bool DriverDBProvider::UpdateFileLocalInfo(const std::vector<DriveDataTable>& records)
{
    return Base::UpdateFileLocalInfo(records);
}

bool DriverDBProvider::DeleteDriveDataById(const std::string& fileId)
{
    return Base::DeleteDriveDataById(fileId);
}

bool DriverDBProvider::DeleteDriveDataById(const std::vector<std::string>& fileIds)
{
    return Base::DeleteDriveDataById(fileIds);
}

bool DriverDBProvider::DeleteAllDriveData()
{
    return Base::DeleteAllDriveData();
}

bool DriverDBProvider::DeleteDriveDataWithoutLocal()
{
    return Base::DeleteDriveDataWithoutLocal();
}

bool DriverDBProvider::ExecuteSQL(const std::string& sql)
{
    Execute(sql);
    return true;
}

bool DriverDBProvider::ExecuteSQLList(std::vector<std::string>& statements)
{
    return Base::ExecuteSQLList(statements);
}

bool DriverDBProvider::NewDirDriveDataById(const std::vector<DriveDataTable>& records)
{
    return Base::NewDirDriveDataById(records);
}

bool DriverDBProvider::UploadDriveDataById(const std::vector<DriveDataTable>& records)
{
    return Base::UploadDriveDataById(records);
}

bool DriverDBProvider::RenameDriveDataById(const std::vector<DriveDataTable>& records)
{
    return Base::RenameDriveDataById(records);
}

bool DriverDBProvider::MoveDriveDataToParent(const std::vector<DriveDataTable>& records)
{
    return Base::MoveDriveDataToParent(records);
}

bool DriverDBProvider::SoftDeleteDriveDataById(const std::vector<DriveDataTable>& records)
{
    return Base::SoftDeleteDriveDataById(records);
}

bool DriverDBProvider::HardDeleteDriveDataById(const std::vector<DriveDataTable>& records)
{
    return Base::HardDeleteDriveDataById(records);
}

bool DriverDBProvider::RestoreDriveDataById(const std::vector<DriveDataTable>& records)
{
    return Base::RestoreDriveDataById(records);
}

DriveDataTable DriverDBProvider::GetDriveDataById(std::string fileId)
{
    return Base::GetDriveDataById(fileId);
}

std::vector<DriveDataTable> DriverDBProvider::GetALLDriveData()
{
    return Base::GetALLDriveData();
}

std::vector<DriveDataTable> DriverDBProvider::GetDriveDataByParentId(std::string parentId)
{
    return Base::GetDriveDataByParentId(parentId);
}

std::vector<DriveDataTable> DriverDBProvider::GetDriveDataByWhereSql(std::string where, DatabaseBindParameter& bind)
{
    return Base::GetDriveDataByWhereSql(where, bind);
}

std::vector<std::shared_ptr<DriveDataTable>> DriverDBProvider::GetDriveDataByRawSQL(const std::string& sql)
{
    return Base::GetDriveDataByRawSQL(sql);
}

std::vector<std::shared_ptr<DriveDataTable>> DriverDBProvider::GetFileMetadataByRawSQL(const std::string& sql)
{
    return Base::GetFileMetadataByRawSQL(sql);
}

void DriverDBProvider::GetFileMetadataByRawSQL(void* context, std::function<bool(uint64, int64)> visit)
{
    Base::GetFileMetadataByRawSQL(context, visit);
}

std::vector<std::string> DriverDBProvider::GetDriveDataNameByFieldId(const std::vector<std::string>& ids)
{
    return Base::GetDriveDataNameByFieldId(ids);
}

std::vector<bool> DriverDBProvider::CheckWhetherFileIdExistsInDriveData(const std::vector<std::string>& ids)
{
    return Base::CheckWhetherFileIdExistsInDriveData(ids);
}

bool DriverDBProvider::CheckWhetherFileIdExistsInDriveData(const std::wstring& id, sqlite3_stmt* statement)
{
    return Base::CheckWhetherFileIdExistsInDriveData(id, statement);
}

int DriverDBProvider::CountDriverData()
{
    return Base::CountDriverData();
}

int DriverDBProvider::GetCountBySelectSQL(std::string& sql)
{
    return Base::GetCountBySelectSQL(sql);
}

bool DriverDBProvider::GetFolderSubFile(const std::string& parentId, std::vector<std::string>& files,
                                        std::vector<std::string>& folders, const unsigned& selNums,
                                        const unsigned& startPos)
{
    return Base::GetFolderSubFile(parentId, files, folders, selNums, startPos);
}

bool DriverDBProvider::GetSourcesFolder(const std::unordered_set<std::string>& sources,
                                        std::unordered_set<std::string>& folders)
{
    return Base::GetSourcesFolder(sources, folders);
}

int DriverDBProvider::GetFilesChildNodeCount(const std::string& fileId)
{
    return Base::GetFilesChildNodeCount(fileId);
}

void DriverDBProvider::SetDriveDataSyncFlag(const std::vector<std::string>& parentIds)
{
    Base::SetDriveDataSyncFlag(parentIds);
}

void DriverDBProvider::DelDriveDataBySyncFlag(const std::vector<std::string>& parentIds)
{
    Base::DelDriveDataBySyncFlag(parentIds);
}

void DriverDBProvider::InsertDriverConfItem(DriveConfTable& configuration)
{
    Base::InsertDriverConfItem(configuration);
}

int DriverDBProvider::CountDriverConfItem()
{
    return Base::CountDriverConfItem();
}

std::pair<bool, DriveConfTable> DriverDBProvider::GetDriverConfItem()
{
    return Base::GetDriverConfItem();
}

int DriverDBProvider::UpdateIsFirstStartInDriverConf(int id, int value)
{
    return Base::UpdateIsFirstStartInDriverConf(id, value);
}

bool DriverDBProvider::UpdateIsFirstStartInDriverConfV2(int id, int value)
{
    return Base::UpdateIsFirstStartInDriverConfV2(id, value);
}

bool DriverDBProvider::UpdateRootFileIdInDriverConf(int id, const std::string& fileId)
{
    return Base::UpdateRootFileIdInDriverConf(id, fileId);
}

bool DriverDBProvider::UpdateLastFullSyncTimestampInDriverConf(int id, const int64& timestamp)
{
    return Base::UpdateLastFullSyncTimestampInDriverConf(id, timestamp);
}

bool DriverDBProvider::UpdateLastAutomaticSyncTimestampInDriverConf(int id, const int64& timestamp)
{
    return Base::UpdateLastAutomaticSyncTimestampInDriverConf(id, timestamp);
}

bool DriverDBProvider::UpdateLastSubscribeTimestampInDriverConf(int id, const int64& timestamp)
{
    return Base::UpdateLastSubscribeTimestampInDriverConf(id, timestamp);
}

bool DriverDBProvider::UpdateStartCursorInDriverConf(int id, const std::string& cursor)
{
    return Base::UpdateStartCursorInDriverConf(id, cursor);
}

bool DriverDBProvider::UpdateFullSyncIntervalInDriverConf(int id, const int64& interval)
{
    return Base::UpdateFullSyncIntervalInDriverConf(id, interval);
}

bool DriverDBProvider::UpdateAutomaticSyncIntervalInDriverConf(int id, const int64& interval)
{
    return Base::UpdateAutomaticSyncIntervalInDriverConf(id, interval);
}

bool DriverDBProvider::InsertFullTask(const DriveFullTask& task)
{
    return Base::InsertFullTask(task);
}

bool DriverDBProvider::InsertFullTaskBatch(std::vector<DriveFullTask>& tasks)
{
    return Base::InsertFullTaskBatch(tasks);
}

bool DriverDBProvider::RelaceFullTaskBatch(std::vector<DriveFullTask>& tasks)
{
    return Base::RelaceFullTaskBatch(tasks);
}

DriveFullTask DriverDBProvider::GetFullTaskById(std::string fileId)
{
    return Base::GetFullTaskById(fileId);
}

std::vector<DriveFullTask> DriverDBProvider::GetFullTask()
{
    return Base::GetFullTask();
}

bool DriverDBProvider::UpdateCursorInFullSyncTask(const std::string& fileId, const std::string& cursor)
{
    return Base::UpdateCursorInFullSyncTask(fileId, cursor);
}

bool DriverDBProvider::UpdateStateInFullSyncTask(const std::string& fileId, int state)
{
    return Base::UpdateStateInFullSyncTask(fileId, state);
}

bool DriverDBProvider::UpdateFullTaskWithValue(std::string fileId, int value)
{
    return Base::UpdateFullTaskWithValue(fileId, value);
}

bool DriverDBProvider::DeleteFullTask()
{
    return Base::DeleteFullTask();
}

bool DriverDBProvider::DeleteFullTaskById(std::string fileId)
{
    return Base::DeleteFullTaskById(fileId);
}

bool DriverDBProvider::DeleteFullTaskBatch(std::vector<std::string> fileIds)
{
    return Base::DeleteFullTaskBatch(fileIds);
}

// Clients link against these four and expect nothing of them.

void DriverDBProvider::ResetDriverDB() { }

void DriverDBProvider::ConvertStmtToFileItem(sqlite3_stmt*& /*statement*/, DriveDataTable& /*record*/) { }

void DriverDBProvider::InitFieldFromDbStep1(sqlite3_stmt*& /*statement*/, DriveDataTable& /*record*/, int& /*column*/)
{
}

void DriverDBProvider::InitFieldFromDbStep2(sqlite3_stmt*& /*statement*/, DriveDataTable& /*record*/, int& /*column*/)
{
}

} // namespace DatabaseService
