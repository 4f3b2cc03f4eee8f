#include "databaseservice/driverdbproviderbase.h"
#include "databaseservice/engine/recordio.h"
#include "databaseservice/handover/nullrecords.h"
#include "databaseservice/tables/drivecolumns.h"

namespace DatabaseService {

namespace {

using Drive = DriveDataColumns;

constexpr auto insertColumns = pick(Drive::table, Drive::All);
static_assert(insertColumns.size() == 53);

// Without the local path, which the replaced row therefore loses; callers that keep it use an update.
constexpr auto replaceColumns = pick(Drive::table, Drive::All & ~Drive::Path);
static_assert(replaceColumns.size() == 52);

constexpr auto fullUpdateColumns = pick(Drive::table, Drive::All & ~(Drive::Key | Drive::Path));
static_assert(fullUpdateColumns.size() == 51);

constexpr auto allDataUpdateColumns = pick(Drive::table, Drive::Cloud | Drive::Local | Drive::Batch, "autoUpload",
                                           "riskFileSign", "riskFileType", Drive::Spare);

constexpr auto baseUpdateColumns = pick(Drive::table, Drive::Cloud | Drive::Local, "autoUpload", "needToDisplay",
                                        "riskFileSign", "riskFileType", Drive::Spare);

constexpr auto simpleUpdateColumns =
    pick(Drive::table, "name", "size", "parentId", "recycled", "directlyRecycled", "modifiedTime", "recycledTime",
         "contentVersion", "version", "riskFileSign", "fileExtSign", "needToDisplay", "classIndex", "riskFileType",
         "deleteSrcPath");

constexpr auto markerUpdateColumns = pick(
    Drive::table, "renameName", "renameTime", "renameBatchId", "moveParentId", "moveTime", "moveBatchId", "softDelete",
    "softDeleteSrcPath", "softDelTime", "softDelBatchId", "hardDelete", "hardDelTime", "hardDelBatchId", "localRestore",
    "restoreTime", "uploadTime", "uploadBatchId", "newBatchId", "restoreBatchId");

constexpr auto simpleAndMarkerUpdateColumns =
    pick(Drive::table, "name", "size", "parentId", "favorite", "recycled", "directlyRecycled", "modifiedTime",
         "recycledTime", "version", markerUpdateColumns, "riskFileSign", "riskFileType", "fileExtSign", "needToDisplay",
         "classIndex", "deleteSrcPath");

constexpr auto localInformationColumns = pick(Drive::table, "localAbsolutePath", "localFileSha256");

Statement<DriveDataTable> updateOf(const ColumnList<DriveDataTable>& columns)
{
    return updateStatement("UPDATE DriveDataTable", columns, "WHERE fileId = :fileId", Drive::key);
}

const Statement<DriveDataTable>& fullUpdate()
{
    static const auto& update = neverDestroyed(updateOf(fullUpdateColumns));
    return update;
}

// What the map form of the update may overwrite.
constexpr auto patchableColumns =
    pick(Drive::table, "batchOper", "localAbsolutePath", "uploadTime", "renameName", "renameTime", "moveParentId",
         "moveTime", "softDelete", "deleteSrcPath", "softDeleteSrcPath", "softDelTime", "hardDelete", "hardDelTime",
         "localRestore", "restoreTime", "parentId", "name", "version");
static_assert(patchableColumns.size() == 18);

} // namespace

// Every writer answers true whatever the engine reported, but for the display flag's two.

bool DriverDBProviderBase::InsertDriveData(const DriveDataTable& record)
{
    return InsertDriveDataBatch({record});
}

bool DriverDBProviderBase::InsertDriveDataBatch(const std::vector<DriveDataTable>& records)
{
    static const auto& insert = neverDestroyed(insertStatement("INSERT INTO DriveDataTable (", insertColumns));
    writeRecords(*this, insert, records);
    return true;
}

bool DriverDBProviderBase::ReplaceDriveData(const DriveDataTable& record)
{
    return ReplaceDriveAllData({record});
}

bool DriverDBProviderBase::ReplaceDriveAllData(const std::vector<DriveDataTable>& records)
{
    static const auto& replace = neverDestroyed(insertStatement("REPLACE INTO DriveDataTable (", replaceColumns));
    writeRecords(*this, replace, records);
    return true;
}

bool DriverDBProviderBase::UpdateDriveData(const DriveDataTable& record)
{
    writeRecords(*this, fullUpdate(), std::vector{&record});
    return true;
}

bool DriverDBProviderBase::UpdateDriveData(const std::vector<std::shared_ptr<DriveDataTable>>& records)
{
    reportNullRecords(records, "DriverDBProviderBase::UpdateDriveData");
    writeRecords(*this, fullUpdate(), records);
    return true;
}

bool DriverDBProviderBase::UpdateDriveData(const std::string& fileId,
                                           const std::unordered_map<std::string, std::string>& values)
{
    // The same update without a value for its key, which matches no row; the empty record's own key might.
    static const auto& updateNothing =
        neverDestroyed(Statement<DriveDataTable>{fullUpdate().sql, parametersOf(fullUpdateColumns)});
    DriveDataTable record = GetDriveDataById(fileId);
    const bool isThere = record.GetFileid() == fileId;
    for (const Column<DriveDataTable>* column : patchableColumns) {
        if (const auto found = values.find(std::string(column->name)); found != values.end()) {
            column->assign(record, found->second);
        }
    }
    writeRecords(*this, isThere ? fullUpdate() : updateNothing, std::vector{&record});
    return true;
}

bool DriverDBProviderBase::UpdateDriveAllData(const std::vector<DriveDataTable>& records)
{
    static const auto& update = neverDestroyed(updateOf(allDataUpdateColumns));
    writeRecords(*this, update, records);
    return true;
}

bool DriverDBProviderBase::UpdateDriveBaseData(const std::vector<DriveDataTable>& records)
{
    static const auto& update = neverDestroyed(updateOf(baseUpdateColumns));
    writeRecords(*this, update, records);
    return true;
}

bool DriverDBProviderBase::UpdateDriveSimpleData(const std::vector<DriveDataTable>& records)
{
    static const auto& update = neverDestroyed(updateOf(simpleUpdateColumns));
    writeRecords(*this, update, records);
    return true;
}

bool DriverDBProviderBase::UpdateDriveOperData(const std::vector<DriveDataTable>& records)
{
    static const auto& update = neverDestroyed(updateOf(markerUpdateColumns));
    writeRecords(*this, update, records);
    return true;
}

bool DriverDBProviderBase::UpdateSimpleAllData(const std::vector<DriveDataTable>& records)
{
    static const auto& update = neverDestroyed(updateOf(simpleAndMarkerUpdateColumns));
    writeRecords(*this, update, records);
    return true;
}

bool DriverDBProviderBase::UpdateFileLocalInfo(const std::vector<DriveDataTable>& records)
{
    static const auto& update = neverDestroyed(updateOf(localInformationColumns));
    writeRecords(*this, update, records);
    return true;
}

bool DriverDBProviderBase::UpdateCloudContentStatusById(const std::string& fileId, int status)
{
    return UpdateCloudContentStatusByIds({{fileId, status}});
}

bool DriverDBProviderBase::UpdateCloudContentStatusByIds(const std::vector<std::pair<std::string, int>>& statuses)
{
    static const auto& update = neverDestroyed(statementOf<std::string, int>(
        "UPDATE DriveDataTable SET needToDisplay = :needToDisplay WHERE fileId = :fileId;", ":fileId",
        ":needToDisplay"));
    return writeRecords(*this, update, statuses);
}

bool DriverDBProviderBase::DeleteDriveDataById(const std::string& fileId)
{
    return DeleteDriveDataById(std::vector{fileId});
}

bool DriverDBProviderBase::DeleteDriveDataById(const std::vector<std::string>& fileIds)
{
    static const auto& remove =
        neverDestroyed(statementOf<std::string>("DELETE FROM DriveDataTable WHERE fileId = :fileId ;", ":fileId"));
    writeRecords(*this, remove, fileIds);
    return true;
}

bool DriverDBProviderBase::DeleteAllDriveData()
{
    Execute("DELETE FROM DriveDataTable;");
    return true;
}

bool DriverDBProviderBase::DeleteDriveDataWithoutLocal()
{
    // The table has no column of that name, so nothing is deleted; callers rely on the rows staying.
    Execute("DELETE FROM DriveDataTable WHERE local = 1;");
    return true;
}

bool DriverDBProviderBase::ExecuteSQL(const std::string& sql)
{
    Execute(sql);
    return true;
}

bool DriverDBProviderBase::ExecuteSQLList(std::vector<std::string>& statements)
{
    for (const std::string& sql : statements) {
        Execute(sql);
    }
    return true;
}

void DriverDBProviderBase::SetDriveDataSyncFlag(const std::vector<std::string>& parentIds)
{
    static const auto& mark = neverDestroyed(statementOf<std::string>(
        "UPDATE DriveDataTable SET data2 = 1 WHERE parentId = :parentId and recycled = 0 and softDelBatchId = 0 "
        "and moveBatchId = 0 and restoreBatchId = 0;",
        ":parentId"));
    writeRecords(*this, mark, parentIds);
}

void DriverDBProviderBase::DelDriveDataBySyncFlag(const std::vector<std::string>& parentIds)
{
    // Without the tests of the mark: a row that has gained a pending operation since is swept all the same.
    static const auto& sweep = neverDestroyed(statementOf<std::string>(
        "DELETE FROM DriveDataTable WHERE data2 = 1 and parentId = :parentId and recycled = 0;", ":parentId"));
    writeRecords(*this, sweep, parentIds);
}

} // namespace DatabaseService
