#include "databaseservice/engine/firstcell.h"
#include "databaseservice/engine/recordio.h"
#include "databaseservice/handover/nullrecords.h"
#include "databaseservice/tables/transfercolumns.h"
#include "databaseservice/transdbconnthread.h"

#include <utility>

namespace DatabaseService::TransmissionDB {

namespace {

using Completed = CompletedTaskColumns;
using Download = DownloadTaskColumns;
using Upload = UploadTaskColumns;

constexpr auto completedKey = pick(Completed::table, Completed::Key);
constexpr auto completedData = pick(Completed::table, Completed::Data);
constexpr auto completedAll = pick(Completed::table, Completed::Key | Completed::Data);

constexpr auto downloadKey = pick(Download::table, Download::Key);
constexpr auto downloadData = pick(Download::table, Download::Data);
constexpr auto downloadAll = pick(Download::table, Download::Key | Download::Data);

constexpr auto uploadKey = pick(Upload::table, "id");
constexpr auto uploadAll = pick(Upload::table, Upload::All);
constexpr auto uploadStatus = pick(Upload::table, "taskStatus", "errorCode");
constexpr auto uploadSliceInfo = pick(Upload::table, "sliceInfo");
constexpr auto uploadSliceIndex = pick(Upload::table, "sliceIndex");
constexpr auto uploadOffsetOnly = pick(Upload::table, "uploadOffset");

using TaskTypes = std::pair<int, int>;

Statement<TaskTypes> ofEitherType(const std::string& head)
{
    return statementOf<int, int>(head + " FROM CompletedTaskTable WHERE taskType = :taskType OR taskType = :taskType1;",
                                 ":taskType", ":taskType1");
}

Statement<UploadTaskProperty> uploadUpdate(const ColumnList<UploadTaskProperty>& columns)
{
    return updateStatement("UPDATE UploadTaskTable", columns, "WHERE id = :id", uploadKey);
}

UploadTaskProperty uploadWithId(int id)
{
    UploadTaskProperty task{};
    task.id = id;
    return task;
}

} // namespace

void TransDbConnThread::InsertCompletedTasks(std::vector<CompletedTaskProperty> tasks)
{
    static const auto& insert = neverDestroyed(insertStatement("INSERT INTO CompletedTaskTable (", completedData));
    writeRecords(*this, insert, tasks);
}

void TransDbConnThread::UpdateCompletedTasks(std::vector<CompletedTaskProperty> tasks)
{
    static const auto& update =
        neverDestroyed(updateStatement("UPDATE CompletedTaskTable", completedData, "WHERE id = :id;", completedKey));
    writeRecords(*this, update, tasks);
}

void TransDbConnThread::DeleteCompletedTasks(std::vector<int> ids)
{
    static const auto& remove =
        neverDestroyed(statementOf<int>("DELETE FROM CompletedTaskTable WHERE id = :id ;", ":id"));
    writeRecords(*this, remove, ids);
}

void TransDbConnThread::DeleteAllCompletedTasks(int taskType, int otherTaskType)
{
    static const auto& remove = neverDestroyed(ofEitherType("DELETE"));
    writeRecords(*this, remove, std::vector{TaskTypes(taskType, otherTaskType)});
}

bool TransDbConnThread::GetAllCompletedTasks(std::vector<CompletedTaskProperty>& tasks, int taskType, int otherTaskType)
{
    static const auto& select = neverDestroyed(ofEitherType("SELECT " + names(completedAll)));
    const TaskTypes types(taskType, otherTaskType);
    auto values = oneValue(select, types);
    readRecords(*this, select.sql, &values, completedAll, tasks);
    return true;
}

int TransDbConnThread::GetCompletedTasksLastRowId()
{
    return static_cast<int>(readNumber(*this, "SELECT MAX(id) FROM CompletedTaskTable"));
}

void TransDbConnThread::InsertDownloadTasks(std::vector<std::shared_ptr<DownloadTaskProperty>> tasks)
{
    static const auto& insert = neverDestroyed(insertStatement("INSERT INTO DownloadTaskTable (", downloadData));
    reportNullRecords(tasks, "TransDbConnThread::InsertDownloadTasks");
    writeRecords(*this, insert, tasks);
}

void TransDbConnThread::UpdateDownloadTasks(std::vector<DownloadTaskProperty> tasks)
{
    static const auto& update =
        neverDestroyed(updateStatement("UPDATE DownloadTaskTable", downloadData, "WHERE id = :id;", downloadKey));
    writeRecords(*this, update, tasks);
}

void TransDbConnThread::DeleteDownloadTasks(std::vector<int> ids)
{
    static const auto& remove =
        neverDestroyed(statementOf<int>("DELETE FROM DownloadTaskTable WHERE id = :id ;", ":id"));
    writeRecords(*this, remove, ids);
}

void TransDbConnThread::DeleteAllDownloadTasks(int taskType)
{
    static const auto& remove =
        neverDestroyed(statementOf<int>("DELETE FROM DownloadTaskTable WHERE taskType = :taskType;", ":taskType"));
    writeRecords(*this, remove, std::vector{taskType});
}

std::shared_ptr<DownloadTaskProperty> TransDbConnThread::GetDownloadTask(int id)
{
    static const auto& select =
        neverDestroyed(statementOf<int>(selectText(downloadAll, "FROM DownloadTaskTable WHERE id = :id;"), ":id"));
    std::vector<std::shared_ptr<DownloadTaskProperty>> rows;
    auto key = oneValue(select, id);
    readRecords(*this, select.sql, &key, downloadAll, rows);
    return rows.empty() ? nullptr : rows.back();
}

bool TransDbConnThread::GetAllDownloadTasks(std::vector<DownloadTaskProperty>& tasks, int taskType)
{
    static const auto& select = neverDestroyed(
        statementOf<int>(selectText(downloadAll, "FROM DownloadTaskTable WHERE taskType = :taskType;"), ":taskType"));
    auto type = oneValue(select, taskType);
    readRecords(*this, select.sql, &type, downloadAll, tasks);
    return true;
}

int TransDbConnThread::GetDownloadTasksLastRowId()
{
    return static_cast<int>(readNumber(*this, "SELECT MAX(id) FROM DownloadTaskTable"));
}

int TransDbConnThread::CountDownloadTaskUnDone()
{
    return static_cast<int>(readNumber(*this, "SELECT COUNT(id) FROM DownloadTaskTable;"));
}

void TransDbConnThread::InsertUploadTasks(std::vector<UploadTaskProperty> tasks)
{
    static const auto& insert = neverDestroyed(insertStatement("INSERT INTO UploadTaskTable (", uploadAll));
    writeRecords(*this, insert, tasks);
}

void TransDbConnThread::DeleteUploadTask(int id)
{
    static const auto& remove = neverDestroyed(statementOf<int>("DELETE FROM UploadTaskTable WHERE id = :id ", ":id"));
    writeRecords(*this, remove, std::vector{id});
}

void TransDbConnThread::DeleteUploadTask()
{
    Execute("DELETE FROM UploadTaskTable");
}

void TransDbConnThread::UpdateUploadTaskStatus(int id, int taskStatus, int errorCode)
{
    static const auto& update = neverDestroyed(uploadUpdate(uploadStatus));
    UploadTaskProperty task = uploadWithId(id);
    task.taskStatus = taskStatus;
    task.errorCode = errorCode;
    writeRecords(*this, update, std::vector{&task});
}

void TransDbConnThread::UpdateUploadTaskSliceInfo(int id, std::string sliceInfo)
{
    static const auto& update = neverDestroyed(uploadUpdate(uploadSliceInfo));
    UploadTaskProperty task = uploadWithId(id);
    task.sliceInfo = std::move(sliceInfo);
    writeRecords(*this, update, std::vector{&task});
}

void TransDbConnThread::UpdateUploadTaskSliceIndex(int id, int sliceIndex)
{
    static const auto& update = neverDestroyed(uploadUpdate(uploadSliceIndex));
    UploadTaskProperty task = uploadWithId(id);
    task.sliceIndex = sliceIndex;
    writeRecords(*this, update, std::vector{&task});
}

void TransDbConnThread::UpdateUploadTaskUploadOffset(int id, int64 uploadOffset)
{
    static const auto& update = neverDestroyed(uploadUpdate(uploadOffsetOnly));
    UploadTaskProperty task = uploadWithId(id);
    task.uploadOffset = uploadOffset;
    writeRecords(*this, update, std::vector{&task});
}

void TransDbConnThread::GetAllUploadTaskProperties(std::vector<UploadTaskProperty>& tasks)
{
    static const auto& select = neverDestroyed(selectText(uploadAll, "FROM UploadTaskTable;"));
    readRecords(*this, select, nullptr, uploadAll, tasks);
}

int TransDbConnThread::GetUploadTaskLastRowId()
{
    // The word behind the function is the column's alias. Always 0; callers of `TransDbConn::InsertUploadTask` get it.
    return static_cast<int>(readNumber(*this, "SELECT LAST_INSERT_ROWID() UploadTaskTable"));
}

} // namespace DatabaseService::TransmissionDB
