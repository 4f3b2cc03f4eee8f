// Markers of pending operations.

#include "support/drivetest.h"
#include "support/enginelines.h"

using namespace testsupport;
using DatabaseService::DriveDataTable;
using DatabaseService::DriverDBProvider;

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

TEST_F(DriveMarkers, EachTouchesExactlyItsColumns)
{
    for (const auto& [name, set, columns, tail] : markers) {
        const auto call = [set = set](DriverDBProvider& drive, const DriveDataTable& record) {
            return (drive.*set)({record});
        };
        expectExactly({name, call, columns, tail});
    }
}

TEST_F(DriveMarkers, BatchesAreOneTransactionAndAlwaysTrue)
{
    m_drive.InsertDriveDataBatch({treeRecord("a", ""), treeRecord("b", "")});
    m_drive.trace.take();
    for (const Marker& marker : markers) {
        SCOPED_TRACE(marker.name);
        EXPECT_TRUE((m_drive.*marker.set)({keyed("a", "a"), keyed("unknown", "unknown"), keyed("b", "b")}));
        EXPECT_EQ(m_drive.trace.take().size(), 5U);
        EXPECT_TRUE((m_drive.*marker.set)({}));
        EXPECT_EQ(m_drive.trace.take().size(), 2U);
    }
    EXPECT_EQ(ids(), "'a,b'");
    useFolder(path(L"missing"));
    for (const Marker& marker : markers) {
        EXPECT_TRUE((m_drive.*marker.set)({treeRecord("a", "")})) << marker.name;
    }
    EXPECT_EQ(failedOpens(), std::ssize(markers));
}

// Either way the middle row is to take a key that is there already.
TEST_F(DriveMarkers, ChangesOfKeyAreMirrorImages)
{
    const Records newIsFileId{keyed("new-a", "a"), keyed("taken", "b"), keyed("new-c", "c")};
    const Records newIsHelpData{keyed("a", "new-a"), keyed("b", "taken"), keyed("c", "new-c")};
    for (const bool newFolder : {true, false}) {
        m_file.exec("DELETE FROM DriveDataTable");
        m_drive.InsertDriveDataBatch({treeRecord("a", ""), treeRecord("b", ""), treeRecord("c", ""),
                                      treeRecord("taken", ""), treeRecord("child", "a")});
        EXPECT_TRUE(newFolder ? m_drive.NewDirDriveDataById(newIsFileId) : m_drive.UploadDriveDataById(newIsHelpData));
        EXPECT_TRUE(m_log.failuresWere({EngineLines("DriveModuleData.dat").step,
                                        EngineLines::bindMessage("UNIQUE constraint failed: DriveDataTable.fileId")}));
        EXPECT_EQ(
            m_file.value("SELECT group_concat(fileId || parentId) FROM (SELECT * FROM DriveDataTable ORDER BY 1)"),
            "'b,childa,new-a,new-c,taken'");
    }
    EXPECT_TRUE(m_drive.UploadDriveDataById({keyed("b", "")}));
    EXPECT_EQ(m_file.value("SELECT count(*) FROM DriveDataTable WHERE fileId = ''"), "1") << "nothing guards the key";
}
