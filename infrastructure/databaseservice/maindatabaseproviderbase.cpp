#include "databaseservice/maindatabaseproviderbase.h"

#include "databaseservice/cachefiles.h"
#include "databaseservice/tables/maincolumns.h"

namespace DatabaseService {

MainDatabaseProviderBase::MainDatabaseProviderBase(const std::wstring& name) : DatabaseOperationBase(name) { }

bool MainDatabaseProviderBase::InitDatabase()
{
    Execute(createTable("CREATE TABLE IF NOT EXISTS T_CloudFileTable (", CloudFileColumns::table));
    Execute(createTable("CREATE TABLE IF NOT EXISTS T_NotepadCard (", CardColumns<T_NotepadCard>::table));
    Execute(createTable("CREATE TABLE IF NOT EXISTS T_WaitHandleCardItem (", CardColumns<T_WaitHandleCardItem>::table));
    Execute(createTable("CREATE TABLE IF NOT EXISTS UBAUserLog (", UserLogColumns::table));
    Execute(createTable("CREATE TABLE IF NOT EXISTS UserLogTable (", UserLogColumns::table));
    Execute(createTable("CREATE TABLE IF NOT EXISTS UserProperties (", UserPropertiesColumns::table));
    return true;
}

// None of the three drops the cards.

void MainDatabaseProviderBase::DeleteMainDBTable()
{
    Execute("drop table if exists T_CloudFileTable");
    Execute("drop table if exists UserProperties");
    Execute("drop table if exists UserLogTable");
    Execute("drop table if exists UBAUserLog");
}

void MainDatabaseProviderBase::DeleteMainCloudFileTable()
{
    Execute("drop table if exists T_CloudFileTable");
}

void MainDatabaseProviderBase::DeleteMainDBTableWithoutUserProperties()
{
    Execute("drop table if exists T_CloudFileTable");
    Execute("drop table if exists UserLogTable");
    Execute("drop table if exists UBAUserLog");
}

void MainDatabaseProviderBase::DeleteCacheFile(std::wstring pattern, std::wstring folder)
{
    removeCacheFiles(pattern, folder);
}

} // namespace DatabaseService
