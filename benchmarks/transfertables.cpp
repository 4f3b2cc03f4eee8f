#include "transfertables.h"

#include "databaseservice/tables/transfercolumns.h"
#include "databaseservice/transdbconnthread.h"
#include "platform/text.h"
#include "random.h"

#include <fmt/format.h>
#include <list>
#include <memory>

namespace benchmarks {

using namespace DatabaseService;
using namespace DatabaseService::TransmissionDB;

namespace {

using Completed = CompletedTaskColumns;
using Download = DownloadTaskColumns;
using Upload = UploadTaskColumns;
using Transfer = TransferTaskColumns;

constexpr int taskType = 1;
constexpr int moduleType = 2;
constexpr int transferType = 1;
constexpr std::int64_t firstTime = 1'600'000'000'000; // milliseconds

TransDbConnThread& store()
{
    return *TransDbConnThread::GetInstance();
}

std::wstring wide(const std::string& text)
{
    return platform::toWide(text);
}

// What each transfer has: the number-th file of a camera.
std::string fileName(std::size_t number)
{
    return fmt::format("IMG_{:08}.JPG", number);
}

std::string localPath(std::size_t number)
{
    return fmt::format(R"(C:\Users\someone\Pictures\Camera\IMG_{:08}.JPG)", number);
}

CompletedTaskProperty completedTransfer(Random& random, std::size_t number)
{
    CompletedTaskProperty task;
    task.id = static_cast<std::int32_t>(number + 1);
    task.taskType = taskType;
    task.totalLength = static_cast<std::int64_t>(random.below(6'000'000));
    task.endTime = firstTime + static_cast<std::int64_t>(number);
    task.fileId = random.letters(idAlphabet, 30);
    task.fileName = wide(fileName(number));
    task.localPath = wide(localPath(number));
    task.pranteID = random.letters(idAlphabet, 30);
    return task;
}

DownloadTaskProperty download(Random& random, std::size_t number)
{
    DownloadTaskProperty task;
    task.id = static_cast<std::int32_t>(number + 1);
    task.taskType = taskType;
    task.sliceCount = 8;
    task.totalLength = static_cast<std::int64_t>(random.below(6'000'000));
    task.fileId = random.letters(idAlphabet, 30);
    task.fileName = wide(fileName(number));
    task.localPath = wide(localPath(number));
    task.relativePath = wide(fmt::format("/Photos/{}", 2000 + random.below(24)));
    task.RecordType = 1;
    return task;
}

UploadTaskProperty upload(Random& random, std::size_t number)
{
    UploadTaskProperty task{};
    task.id = static_cast<std::int32_t>(number + 1);
    task.fileName = fileName(number);
    task.fileId = random.letters(idAlphabet, 30);
    task.totalLength = static_cast<std::int64_t>(random.below(6'000'000));
    task.localPath = localPath(number);
    task.taskStatus = 1;
    task.startTime = std::to_string(firstTime + static_cast<std::int64_t>(number));
    task.transferId = random.letters(hexAlphabet, 32);
    task.serverPath = fmt::format("/upload/{}", task.transferId);
    task.sliceInfo = R"({"slices":[1,2,3]})";
    return task;
}

DbTransferTask transferTask(Random& random, std::size_t number)
{
    DbTransferTask task{};
    task.UniqueId = wide(fmt::format("{}{:010}", random.letters(hexAlphabet, 22), number));
    task.FileId = wide(random.letters(idAlphabet, 30));
    task.FileName = wide(fileName(number));
    task.StartTime = firstTime + static_cast<std::int64_t>(number);
    task.TotalSize = static_cast<std::int64_t>(random.below(6'000'000));
    task.TaskStatus = 1;
    task.ModuleType = moduleType;
    task.TransferType = transferType;
    task.LocalFilePath = wide(localPath(number));
    task.ParentId = wide(random.letters(idAlphabet, 30));
    task.Hash = wide(random.letters(hexAlphabet, 64));
    task.UpdateTime = task.StartTime;
    task.CloudFilePath = wide(fmt::format("/Photos/{}", 2000 + random.below(24)));
    return task;
}

template <class Record, class Columns, std::size_t N>
TableSubject<Record> subjectOf(const char* name, const char* title, const std::vector<Record>& records,
                               const std::array<Column<Record>, N>& table, const ColumnList<Record>& inserted,
                               const std::string& sqlTable, const std::string& readTail)
{
    TableSubject<Record> subject;
    subject.name = name;
    subject.title = title;
    subject.file = "transmission.dat";
    subject.records = records;
    subject.create = [] {
        store().InitDatabase();
        store().CreateTransferTaskTable();
    };
    subject.insertText = insertStatement("INSERT INTO " + sqlTable + " (", inserted).sql;
    subject.selectText = selectText(pick(table, ~0U), "FROM " + sqlTable + readTail);
    return subject;
}

// Other values of the same size.
template <class Record> std::vector<Record> moved(std::vector<Record> records, std::int64_t(Record::*time))
{
    for (Record& record : records) {
        record.*time += 1;
    }
    return records;
}

} // namespace

TableSubject<CompletedTaskProperty> completedTransfers(std::size_t rows)
{
    auto subject = subjectOf<CompletedTaskProperty, Completed>(
        "completed", "completed transfers", madeUp(rows, completedTransfer), Completed::table,
        pick(Completed::table, Completed::Data), "CompletedTaskTable",
        " WHERE taskType = :taskType OR taskType = :taskType1;");
    subject.givesKey = true;
    subject.insert = consuming<CompletedTaskProperty>(
        [](std::vector<CompletedTaskProperty> records) { store().InsertCompletedTasks(std::move(records)); });
    subject.update = consuming<CompletedTaskProperty>(
        [](std::vector<CompletedTaskProperty> records) { store().UpdateCompletedTasks(std::move(records)); });
    subject.updateText = updateStatement("UPDATE CompletedTaskTable", pick(Completed::table, Completed::Data),
                                         "WHERE id = :id;", pick(Completed::table, Completed::Key))
                             .sql;
    subject.changed = moved(subject.records, &CompletedTaskProperty::endTime);
    subject.readAll = [] {
        std::vector<CompletedTaskProperty> records;
        store().GetAllCompletedTasks(records, taskType, taskType);
        return records;
    };
    subject.selectValues = {taskType, taskType};
    return subject;
}

TableSubject<DownloadTaskProperty> downloads(std::size_t rows)
{
    auto subject = subjectOf<DownloadTaskProperty, Download>("download", "downloads", madeUp(rows, download),
                                                             Download::table, pick(Download::table, Download::Data),
                                                             "DownloadTaskTable", " WHERE taskType = :taskType;");
    subject.givesKey = true;
    subject.insert = [](const std::vector<DownloadTaskProperty>& records) {
        std::vector<std::shared_ptr<DownloadTaskProperty>> tasks;
        tasks.reserve(records.size());
        for (const DownloadTaskProperty& record : records) {
            tasks.push_back(std::make_shared<DownloadTaskProperty>(record));
        }
        return Run([tasks = std::move(tasks)]() mutable { store().InsertDownloadTasks(std::move(tasks)); });
    };
    subject.update = consuming<DownloadTaskProperty>(
        [](std::vector<DownloadTaskProperty> records) { store().UpdateDownloadTasks(std::move(records)); });
    subject.updateText = updateStatement("UPDATE DownloadTaskTable", pick(Download::table, Download::Data),
                                         "WHERE id = :id;", pick(Download::table, Download::Key))
                             .sql;
    subject.changed = moved(subject.records, &DownloadTaskProperty::position);
    subject.readAll = [] {
        std::vector<DownloadTaskProperty> records;
        store().GetAllDownloadTasks(records, taskType);
        return records;
    };
    subject.selectValues = {taskType};
    return subject;
}

TableSubject<UploadTaskProperty> uploads(std::size_t rows)
{
    auto subject = subjectOf<UploadTaskProperty, Upload>("upload", "uploads", madeUp(rows, upload), Upload::table,
                                                         pick(Upload::table, Upload::All), "UploadTaskTable", ";");
    subject.insert = consuming<UploadTaskProperty>(
        [](std::vector<UploadTaskProperty> records) { store().InsertUploadTasks(std::move(records)); });
    subject.readAll = [] {
        std::vector<UploadTaskProperty> records;
        store().GetAllUploadTaskProperties(records);
        return records;
    };
    return subject;
}

TableSubject<DbTransferTask> transferTasks(std::size_t rows)
{
    auto subject = subjectOf<DbTransferTask, Transfer>(
        "task", "transfer tasks", madeUp(rows, transferTask), Transfer::table, pick(Transfer::table, ~0U),
        "TransferTask",
        " WHERE ModuleType = :ModuleType AND TransferType = :TransferType AND TaskStatus != :TaskStatus;");
    subject.update = [](const std::vector<DbTransferTask>& records) {
        return Run([tasks = std::list(records.begin(), records.end())]() mutable {
            store().UpdateTask(tasks);
            tasks.clear();
        });
    };
    subject.updateText = updateStatement("UPDATE TransferTask", pick(Transfer::table, Transfer::Data),
                                         "WHERE UniqueId = :UniqueId;", pick(Transfer::table, Transfer::Key))
                             .sql;
    subject.changed = moved(subject.records, &DbTransferTask::UpdateTime);
    subject.readAll = [] {
        std::vector<DbTransferTask> records;
        store().GetAllTask(records, moduleType, transferType);
        return records;
    };
    subject.selectValues = {moduleType, transferType, 3};
    return subject;
}

} // namespace benchmarks
