#include "databaseservice/driverdbproviderbase.h"
#include "databaseservice/engine/recordio.h"
#include "databaseservice/tables/drivecolumns.h"

namespace DatabaseService {

namespace {

using Drive = DriveDataColumns;

// The two that change the key are mirror images: one finds the row by `helpData` and sets `fileId`, the other finds it
// by `fileId` and sets `helpData`. Callers fill the two members accordingly.
constexpr auto helpDataKey = pick(Drive::table, Drive::keyFromHelpData);
constexpr auto newFolderColumns =
    pick(Drive::table, "fileId", "name", "kind", "contentVersion", "modifiedTime", "recycledTime", "newBatchId");
constexpr auto uploadColumns =
    pick(Drive::table, "mimeType", "name", "kind", "contentVersion", "version", "newBatchId", Drive::keyFromHelpData);

constexpr auto renameColumns = pick(Drive::table, "renameName", "name", "renameBatchId", "renameTime");
constexpr auto moveColumns = pick(Drive::table, "moveParentId", "moveBatchId", "moveTime");
constexpr auto softDeleteColumns =
    pick(Drive::table, "softDelete", "softDeleteSrcPath", "softDelBatchId", "softDelTime");
constexpr auto hardDeleteColumns = pick(Drive::table, "hardDelete", "hardDelBatchId", "hardDelTime");
constexpr auto restoreColumns = pick(Drive::table, "localRestore", "restoreBatchId", "restoreTime");

Statement<DriveDataTable> markerOf(const ColumnList<DriveDataTable>& columns)
{
    return updateStatement("UPDATE DriveDataTable", columns, "WHERE fileId = :fileId ;", Drive::key);
}

} // namespace

// Every one answers true whatever the engine reported.

bool DriverDBProviderBase::NewDirDriveDataById(const std::vector<DriveDataTable>& records)
{
    static const auto& update = neverDestroyed(
        updateStatement("UPDATE DriveDataTable", newFolderColumns, "WHERE fileId = :helpData;", helpDataKey));
    writeRecords(*this, update, records);
    return true;
}

bool DriverDBProviderBase::UploadDriveDataById(const std::vector<DriveDataTable>& records)
{
    static const auto& update =
        neverDestroyed(updateStatement("UPDATE DriveDataTable", uploadColumns, "WHERE fileId = :fileId;", Drive::key));
    writeRecords(*this, update, records);
    return true;
}

bool DriverDBProviderBase::RenameDriveDataById(const std::vector<DriveDataTable>& records)
{
    static const auto& update = neverDestroyed(markerOf(renameColumns));
    writeRecords(*this, update, records);
    return true;
}

bool DriverDBProviderBase::MoveDriveDataToParent(const std::vector<DriveDataTable>& records)
{
    static const auto& update = neverDestroyed(markerOf(moveColumns));
    writeRecords(*this, update, records);
    return true;
}

bool DriverDBProviderBase::SoftDeleteDriveDataById(const std::vector<DriveDataTable>& records)
{
    static const auto& update = neverDestroyed(markerOf(softDeleteColumns));
    writeRecords(*this, update, records);
    return true;
}

bool DriverDBProviderBase::HardDeleteDriveDataById(const std::vector<DriveDataTable>& records)
{
    static const auto& update = neverDestroyed(markerOf(hardDeleteColumns));
    writeRecords(*this, update, records);
    return true;
}

bool DriverDBProviderBase::RestoreDriveDataById(const std::vector<DriveDataTable>& records)
{
    static const auto& update = neverDestroyed(markerOf(restoreColumns));
    writeRecords(*this, update, records);
    return true;
}

} // namespace DatabaseService
