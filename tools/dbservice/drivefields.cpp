#include "drivefields.h"

#include "displaytext.h"

#include <array>
#include <variant>

namespace dbservice {

namespace {

using Row = DatabaseService::DriveDataTable;

enum class Shown { Plain, Bytes, Seconds };

struct Field {
    const char* name;
    std::variant<std::string (Row::*)() const, DatabaseService::int64 (Row::*)() const, std::int32_t (Row::*)() const>
        get;
    Shown shown = Shown::Plain;
};

constexpr std::array fields{
    Field{"fileId", &Row::GetFileid},
    Field{"name", &Row::GetName},
    Field{"kind", &Row::GetKind},
    Field{"mimeType", &Row::GetMimeType},
    Field{"description", &Row::GetDescription},
    Field{"size", &Row::GetSize, Shown::Bytes},
    Field{"attachmentSize", &Row::GetAttachmentSize},
    Field{"hash", &Row::GetHash},
    Field{"contentVersion", &Row::GetContentVersion},
    Field{"parentId", &Row::GetParentId},
    Field{"favorite", &Row::GetFavorite},
    Field{"recycled", &Row::GetRecycled},
    Field{"directlyRecycled", &Row::GetDirectlyRecycled},
    Field{"createdTime", &Row::GetCreatedTime, Shown::Seconds},
    Field{"modifiedTime", &Row::GetModifiedTime, Shown::Seconds},
    Field{"recycledTime", &Row::GetRecycledTime, Shown::Seconds},
    Field{"isSync", &Row::GetIsSync},
    Field{"thumbnailDownloadLink", &Row::GetThumbnailDownloadLink},
    Field{"LCDImageDownloadLink", &Row::GetLcdImageDownloadLink},
    Field{"version", &Row::GetVersion},
    Field{"batchOper", &Row::GetBatchOper},
    Field{"localAbsolutePath", &Row::GetLocalAbsolutePath},
    Field{"localFileSha256", &Row::GetLocalFileSha256},
    Field{"deleteSrcPath", &Row::GetDeleteSrcPath},
    Field{"uploadTime", &Row::GetUploadTime},
    Field{"renameName", &Row::GetRenameName},
    Field{"renameTime", &Row::GetRenameTime},
    Field{"moveParentId", &Row::GetMoveParentId},
    Field{"moveTime", &Row::GetMoveTime},
    Field{"softDelete", &Row::GetSoftDelete},
    Field{"softDeleteSrcPath", &Row::GetSoftDeleteSrcPath},
    Field{"softDelTime", &Row::GetSoftDelTime},
    Field{"hardDelete", &Row::GetHardDelete},
    Field{"hardDelTime", &Row::GetHardDelTime},
    Field{"localRestore", &Row::GetLocalRestore},
    Field{"restoreTime", &Row::GetRestoreTime},
    Field{"uploadBatchId", &Row::GetUploadBatchId},
    Field{"renameBatchId", &Row::GetRenameBatchId},
    Field{"moveBatchId", &Row::GetMoveBatchId},
    Field{"softDelBatchId", &Row::GetSoftDelBatchId},
    Field{"hardDelBatchId", &Row::GetHardDelBatchId},
    Field{"restoreBatchId", &Row::GetRestoreBatchId},
    Field{"newBatchId", &Row::GetNewBatchId},
    Field{"autoUpload", &Row::GetAutoUpload},
    Field{"riskFileSign", &Row::GetRiskFileSign},
    Field{"riskFileType", &Row::GetRiskFileType},
    Field{"fileExtSign", &Row::GetFileExtSign},
    Field{"needToDisplay", &Row::GetCloudContentStatus},
    Field{"classIndex", &Row::GetClassIndex},
    Field{"data1", &Row::GetData1},
    Field{"data2", &Row::GetData2},
    Field{"data3", &Row::GetData3},
    Field{"data4", &Row::GetData4},
};

std::string readable(const std::string& value, Shown)
{
    return value;
}

std::string readable(std::int64_t value, Shown shown)
{
    if (value == 0) {
        return {};
    }
    switch (shown) {
    case Shown::Bytes:
        return grouped(value) + (value == 1 ? " byte" : " bytes");
    case Shown::Seconds:
        return humanTime(value) + " UTC (" + std::to_string(value) + ")";
    case Shown::Plain:
        break;
    }
    return std::to_string(value);
}

} // namespace

nlohmann::ordered_json toJson(const Row& row)
{
    nlohmann::ordered_json json;
    for (const Field& field : fields) {
        std::visit([&](auto get) { json[field.name] = (row.*get)(); }, field.get);
    }
    return json;
}

void forEachField(const Row& row, const std::function<void(const std::string& name, const std::string& value)>& visit)
{
    for (const Field& field : fields) {
        visit(field.name, std::visit([&](auto get) { return readable((row.*get)(), field.shown); }, field.get));
    }
}

std::string toLine(const nlohmann::ordered_json& value)
{
    return value.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

} // namespace dbservice
