#include "support/drivetest.h"
#include "support/enginelines.h"

using namespace testsupport;
using namespace DatabaseService;

namespace {

using DriveMarkers = DriveTest;
using Records = std::vector<DriveDataTable>;

struct Marker {
    const char* name;
    bool (DriverDBProvider::*set)(const Records&);
    const char* columns;
    const char* tail = "WHERE fileId = :fileId ;";
};

const Marker markers[] = {
    {"new folder", &DriverDBProvider::NewDirDriveDataById,
     "fileId name kind contentVersion modifiedTime recycledTime newBatchId", "WHERE fileId = :helpData;"},
    {"upload", &DriverDBProvider::UploadDriveDataById,
     "mimeType name kind contentVersion version newBatchId fileId=helpData", "WHERE fileId = :fileId;"},
    {"rename", &DriverDBProvider::RenameDriveDataById, "renameName name renameBatchId renameTime"},
    {"move", &DriverDBProvider::MoveDriveDataToParent, "moveParentId moveBatchId moveTime"},
    {"soft delete", &DriverDBProvider::SoftDeleteDriveDataById,
     "softDelete softDeleteSrcPath softDelBatchId softDelTime"},
    {"hard delete", &DriverDBProvider::HardDeleteDriveDataById, "hardDelete hardDelBatchId hardDelTime"},
    {"restore", &DriverDBProvider::RestoreDriveDataById, "localRestore restoreBatchId restoreTime"},
};

DriveDataTable keyed(const std::string& fileId, const std::string& helpData)
{
    DriveDataTable record = treeRecord(fileId, "");
    record.SetHelpData(helpData);
    return record;
}

} // namespace

TEST_F(DriveMarkers, EachTouchesExactlyItsColumnsInOneTransactionAndIsTrue)
{
    for (const auto& [name, set, columns, tail] : markers) {
        const auto call = [set = set](DriverDBProvider& drive, const DriveDataTable& record) {
            return (drive.*set)({record});
        };
        expectExactly({name, call, columns, tail});
        m_drive.trace.take();
        EXPECT_TRUE((m_drive.*set)({keyed("id", "id"), keyed("unknown", "unknown"), keyed("other", "other")}));
        EXPECT_EQ(m_drive.trace.take().size(), 5U) << name;
        EXPECT_TRUE((m_drive.*set)({}));
        EXPECT_EQ(m_drive.trace.take().size(), 2U) << name;
    }
    useFolder(path(L"missing"));
    for (const Marker& marker : markers) {
        EXPECT_TRUE((m_drive.*marker.set)({treeRecord("a", "")})) << marker.name;
    }
    EXPECT_EQ(failedOpens(), std::ssize(markers));
}

TEST_F(DriveMarkers, NothingGuardsTheKey)
{
    m_drive.InsertDriveDataBatch({treeRecord("a", ""), treeRecord("taken", ""), treeRecord("child", "a")});
    EXPECT_TRUE(m_drive.UploadDriveDataById({keyed("a", "taken"), keyed("a", "")}));
    const EngineLines lines("DriveModuleData.dat");
    EXPECT_TRUE(m_log.failuresWere({lines.step, lines.bindMessage("UNIQUE constraint failed: DriveDataTable.fileId")}));
    EXPECT_EQ(m_file.text("SELECT fileId, parentId FROM DriveDataTable ORDER BY 1"), "''|''\n'child'|'a'\n'taken'|''");
}
