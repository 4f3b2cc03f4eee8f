#include "transfers/transfertables.h"

#include "databaseservice/transdbconnthread.h"
#include "terminal/failure.h"
#include "terminal/recordfields.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

namespace dbservice {

using namespace DatabaseService::TransmissionDB;

namespace {

using Upload = MemberField<UploadTaskProperty>;
constexpr std::array uploadFields{
    Upload{"id", &UploadTaskProperty::id},
    Upload{"fileName", &UploadTaskProperty::fileName},
    Upload{"fileId", &UploadTaskProperty::fileId},
    Upload{"totalLength", &UploadTaskProperty::totalLength},
    Upload{"localPath", &UploadTaskProperty::localPath},
    Upload{"taskStatus", &UploadTaskProperty::taskStatus},
    Upload{"errorCode", &UploadTaskProperty::errorCode},
    Upload{"startTime", &UploadTaskProperty::startTime},
    Upload{"transferId", &UploadTaskProperty::transferId},
    Upload{"serverPath", &UploadTaskProperty::serverPath},
    Upload{"sliceIndex", &UploadTaskProperty::sliceIndex},
    Upload{"uploadOffset", &UploadTaskProperty::uploadOffset},
    Upload{"sliceInfo", &UploadTaskProperty::sliceInfo},
    Upload{"isBatch", &UploadTaskProperty::isBatch},
    Upload{"isMoveData", &UploadTaskProperty::isMoveData},
};

using Download = MemberField<DownloadTaskProperty>;
constexpr std::array downloadFields{
    Download{"id", &DownloadTaskProperty::id},
    Download{"fileName", &DownloadTaskProperty::fileName},
    Download{"relativePath", &DownloadTaskProperty::relativePath},
    Download{"fileId", &DownloadTaskProperty::fileId},
    Download{"totalLength", &DownloadTaskProperty::totalLength},
    Download{"position", &DownloadTaskProperty::position},
    Download{"sliceIdx", &DownloadTaskProperty::sliceIdx},
    Download{"sliceCount", &DownloadTaskProperty::sliceCount},
    Download{"localPath", &DownloadTaskProperty::localPath},
    Download{"taskType", &DownloadTaskProperty::taskType},
    Download{"isFastTrans", &DownloadTaskProperty::isFastTrans},
    Download{"isMoveData", &DownloadTaskProperty::isMoveData},
    Download{"RecordType", &DownloadTaskProperty::RecordType},
};

using Completed = MemberField<CompletedTaskProperty>;
constexpr std::array completedFields{
    Completed{"id", &CompletedTaskProperty::id},
    Completed{"fileName", &CompletedTaskProperty::fileName},
    Completed{"fileId", &CompletedTaskProperty::fileId},
    Completed{"totalLength", &CompletedTaskProperty::totalLength},
    Completed{"localPath", &CompletedTaskProperty::localPath},
    Completed{"taskType", &CompletedTaskProperty::taskType},
    Completed{"endTime", &CompletedTaskProperty::endTime},
    Completed{"isFastTrans", &CompletedTaskProperty::isFastTrans},
    Completed{"pranteID", &CompletedTaskProperty::pranteID},
    Completed{"isMoveData", &CompletedTaskProperty::isMoveData},
};

using Task = MemberField<DbTransferTask>;
constexpr std::array taskFields{
    Task{"UniqueId", &DbTransferTask::UniqueId},
    Task{"FileId", &DbTransferTask::FileId},
    Task{"FileName", &DbTransferTask::FileName},
    Task{"StartTime", &DbTransferTask::StartTime},
    Task{"EndTime", &DbTransferTask::EndTime},
    Task{"ErrorCode", &DbTransferTask::ErrorCode},
    Task{"TimeoutLimit", &DbTransferTask::TimeoutLimit},
    Task{"TransferSize", &DbTransferTask::TransferSize},
    Task{"TotalSize", &DbTransferTask::TotalSize},
    Task{"TaskStatus", &DbTransferTask::TaskStatus},
    Task{"BatchCreateTime", &DbTransferTask::BatchCreateTime},
    Task{"BatchIndex", &DbTransferTask::BatchIndex},
    Task{"ModuleType", &DbTransferTask::ModuleType},
    Task{"TransferType", &DbTransferTask::TransferType},
    Task{"LocalFilePath", &DbTransferTask::LocalFilePath},
    Task{"ParentId", &DbTransferTask::ParentId},
    Task{"AssetId", &DbTransferTask::AssetId},
    Task{"VersionId", &DbTransferTask::VersionId},
    Task{"Hash", &DbTransferTask::Hash},
    Task{"UpdateTime", &DbTransferTask::UpdateTime},
    Task{"SliceIndex", &DbTransferTask::SliceIndex},
    Task{"UploadOffset", &DbTransferTask::UploadOffset},
    Task{"ObjectBucketId", &DbTransferTask::ObjectBucketId},
    Task{"RecordCursor", &DbTransferTask::RecordCursor},
    Task{"ObsVersion", &DbTransferTask::ObsVersion},
    Task{"Priority", &DbTransferTask::Priority},
    Task{"IsMoveData", &DbTransferTask::IsMoveData},
    Task{"IsLoadedForSuccessList", &DbTransferTask::IsLoadedForSuccessList},
    Task{"CloudFilePath", &DbTransferTask::CloudFilePath},
    Task{"ThumbnailUrl", &DbTransferTask::ThumbnailUrl},
    Task{"CloudBatch", &DbTransferTask::CloudBatch},
    Task{"ExpandStr1", &DbTransferTask::ExpandStr1},
    Task{"ExpandStr2", &DbTransferTask::ExpandStr2},
    Task{"ExpandStr3", &DbTransferTask::ExpandStr3},
    Task{"ExpandInt1", &DbTransferTask::ExpandInt1},
    Task{"ExpandInt2", &DbTransferTask::ExpandInt2},
    Task{"ExpandInt3", &DbTransferTask::ExpandInt3},
    Task{"Expand", &DbTransferTask::Expand},
};

template <class Record> std::vector<Json> toJson(const std::vector<Record>& rows)
{
    std::vector<Json> json;
    json.reserve(rows.size());
    for (const Record& row : rows) {
        json.push_back(dbservice::toJson(row));
    }
    return json;
}

std::vector<Json> readUploads(StoreFile& /*file*/)
{
    std::vector<UploadTaskProperty> rows;
    TransDbConnThread::GetInstance()->GetAllUploadTaskProperties(rows);
    return toJson(rows);
}

/// The library gives these rows by their type only, so each type that is there is asked for.
template <class Record, class Read> std::vector<Json> readByType(StoreFile& file, const std::string& table, Read read)
{
    std::vector<Record> rows;
    for (const std::string& text :
         file.texts("SELECT DISTINCT taskType FROM " + table + " WHERE typeof(taskType) = 'integer'")) {
        int type = 0;
        if (std::from_chars(text.data(), text.data() + text.size(), type).ec == std::errc()) {
            read(*TransDbConnThread::GetInstance(), rows, type);
        }
    }
    std::sort(rows.begin(), rows.end(), [](const Record& left, const Record& right) { return left.id < right.id; });
    return toJson(rows);
}

std::vector<Json> readDownloads(StoreFile& file)
{
    return readByType<DownloadTaskProperty>(
        file, downloadTable.name,
        [](TransDbConnThread& store, auto& rows, int type) { store.GetAllDownloadTasks(rows, type); });
}

std::vector<Json> readCompleted(StoreFile& file)
{
    return readByType<CompletedTaskProperty>(
        file, completedTable.name,
        [](TransDbConnThread& store, auto& rows, int type) { store.GetAllCompletedTasks(rows, type, type); });
}

/// One by one, since the library's lists leave out rows of some states, or columns.
std::vector<Json> readTasks(StoreFile& file)
{
    std::vector<Json> json;
    for (const std::string& id : file.texts("SELECT UniqueId FROM TransferTask ORDER BY rowid")) {
        std::wstring uniqueId = platform::toWide(id);
        DbTransferTask task{};
        TransDbConnThread::GetInstance()->GetTask(uniqueId, task);
        if (task.UniqueId == uniqueId) {
            json.push_back(dbservice::toJson(task));
        }
    }
    return json;
}

} // namespace

const TransferTable uploadTable{
    "UploadTaskTable",
    {"id", "fileName", "totalLength", "uploadOffset", "taskStatus", "errorCode", "localPath"},
    readUploads};
const TransferTable downloadTable{
    "DownloadTaskTable", {"id", "fileName", "totalLength", "position", "taskType", "localPath"}, readDownloads};
const TransferTable completedTable{
    "CompletedTaskTable", {"id", "fileName", "totalLength", "endTime", "taskType", "localPath"}, readCompleted};
const TransferTable taskTable{"TransferTask",
                              {"UniqueId", "FileName", "TotalSize", "TransferSize", "TaskStatus", "ErrorCode",
                               "ModuleType", "TransferType", "LocalFilePath"},
                              readTasks};

int highestId(StoreFile& file, const TransferTable& table)
{
    return std::max(0, file.number("SELECT MAX(id) FROM " + std::string(table.name)));
}

int freeUploadIds(StoreFile& file, int count)
{
    const int last = highestId(file, uploadTable);
    if (last > std::numeric_limits<int>::max() - count) {
        throw Failure("cannot add uploads: the store has no ids left for them");
    }
    return last + 1;
}

Json toJson(const UploadTaskProperty& row)
{
    return toJson(uploadFields, row);
}

Json toJson(const DownloadTaskProperty& row)
{
    return toJson(downloadFields, row);
}

Json toJson(const CompletedTaskProperty& row)
{
    return toJson(completedFields, row);
}

Json toJson(const DbTransferTask& row)
{
    return toJson(taskFields, row);
}

} // namespace dbservice
