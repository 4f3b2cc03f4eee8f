#include "databaseservice/transdbconnthread.h"

#include "databaseservice/storefiles.h"
#include "databaseservice/tables/transfercolumns.h"

namespace DatabaseService::TransmissionDB {

TransDbConnThread::TransDbConnThread() : DatabaseOperationBase(transferStoreFile) { }

TransDbConnThread* TransDbConnThread::GetInstance()
{
    // The module's thread may still write while the process exits.
    static auto& instance = neverDestroyed(new TransDbConnThread);
    return &instance;
}

bool TransDbConnThread::InitDatabase()
{
    CreateCompletedTaskTable();
    CreateUploadTaskTable();
    CreateDownloadTaskTable();
    return true;
}

void TransDbConnThread::CreateCompletedTaskTable()
{
    static const auto& create =
        neverDestroyed(createTable("CREATE TABLE IF NOT EXISTS CompletedTaskTable (", CompletedTaskColumns::table));
    Execute(create);
}

void TransDbConnThread::CreateUploadTaskTable()
{
    static const auto& create =
        neverDestroyed(createTable("CREATE TABLE IF NOT EXISTS UploadTaskTable (", UploadTaskColumns::table));
    Execute(create);
}

void TransDbConnThread::CreateDownloadTaskTable()
{
    static const auto& create =
        neverDestroyed(createTable("CREATE TABLE IF NOT EXISTS DownloadTaskTable (", DownloadTaskColumns::table));
    Execute(create);
}

void TransDbConnThread::CreateTransferTaskTable()
{
    static const auto& create =
        neverDestroyed(createTable("CREATE TABLE IF NOT EXISTS TransferTask (", TransferTaskColumns::table));
    Execute(create);
}

bool TransDbConnThread::DropCompletedTaskTable()
{
    return Execute("DROP TABLE IF EXISTS CompletedTaskTable");
}

bool TransDbConnThread::DropDownloadTaskTable()
{
    return Execute("DROP TABLE IF EXISTS DownloadTaskTable");
}

bool TransDbConnThread::DropTransferTaskTable()
{
    return Execute("DROP TABLE IF EXISTS TransferTask");
}

bool TransDbConnThread::DropUploadTaskTable()
{
    return Execute("DROP TABLE IF EXISTS UploadTaskTable");
}

bool TransDbConnThread::ExecuteSQL(const std::string& sql)
{
    Execute(sql);
    return true;
}

} // namespace DatabaseService::TransmissionDB
