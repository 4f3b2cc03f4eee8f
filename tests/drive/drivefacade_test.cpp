// The drive's facade: the base over again, with a few differences.

#include "databaseservice/driverdbprovider.h"
#include "support/drivetest.h"
#include "support/enginelines.h"

#include <type_traits>

using namespace testsupport;
using namespace DatabaseService;

namespace {

using DriveFacade = StoreTest;

static_assert(std::is_same_v<decltype(&DriverDBProvider::InsertFullTaskBatch),
                             bool (DriverDBProvider::*)(std::vector<DriveFullTask>&)>);
static_assert(std::is_same_v<decltype(&DriverDBProvider::RelaceFullTaskBatch),
                             bool (DriverDBProvider::*)(std::vector<DriveFullTask>&)>);

/// Calls every operation that the facade has; gives the statements that ran and what they left.
template <class Drive> std::vector<std::string> callAll(SqliteFile& file)
{
    Observed<Drive> drive;
    const auto record = [](int seed) {
        DriveDataTable made = filledRecord("a", seed);
        made.SetHelpData("a");
        made.SetRecycled(0);
        return made;
    };
    std::string count = "SELECT 7";
    std::vector<std::string> ids{"INSERT INTO DriveDataTable(fileId) VALUES('list')"};
    std::vector<std::string> folders;
    std::unordered_set<std::string> below;
    std::vector<DriveFullTask> tasks{{"t", "c", 1, 2, "", "", "", ""}};
    DriveConfTable configuration{};
    DatabaseBindParameter bind;

    EXPECT_TRUE(drive.InitDatabase() && drive.InsertDriveData(record(1)) && drive.InsertDriveDataBatch({}) &&
                drive.ReplaceDriveData(record(2)) && drive.ReplaceDriveAllData({}) && drive.UpdateDriveData(record(3)));
    EXPECT_TRUE(drive.UpdateDriveData({std::make_shared<DriveDataTable>(record(4))}) &&
                drive.UpdateDriveData("a", {{"name", "patched"}}) && drive.UpdateDriveAllData({record(5)}) &&
                drive.UpdateDriveBaseData({record(6)}) && drive.UpdateDriveSimpleData({record(7)}) &&
                drive.UpdateDriveOperData({record(8)}) && drive.UpdateSimpleAllData({record(9)}));
    EXPECT_TRUE(drive.UpdateFileLocalInfo({record(10)}) && drive.ExecuteSQL("UPDATE DriveDataTable SET size = 11") &&
                drive.ExecuteSQLList(ids) && drive.RenameDriveDataById({record(12)}) &&
                drive.MoveDriveDataToParent({record(13)}) && drive.SoftDeleteDriveDataById({record(14)}) &&
                drive.HardDeleteDriveDataById({record(15)}) && drive.RestoreDriveDataById({record(16)}) &&
                drive.UploadDriveDataById({record(17)}) && drive.NewDirDriveDataById({record(18)}));

    EXPECT_EQ(drive.GetDriveDataById("a").GetName(), "name-18");
    EXPECT_EQ(drive.GetALLDriveData().size() + drive.GetDriveDataByParentId("none").size(), 2U);
    EXPECT_EQ(drive.GetDriveDataByWhereSql("1 LIMIT 1", bind).size(), 1U);
    EXPECT_EQ(drive.GetDriveDataByRawSQL("SELECT 'raw'").size() + drive.GetFileMetadataByRawSQL("SELECT 2").size(), 2U);
    drive.GetFileMetadataByRawSQL(&ids, [&](uint64 context, int64) {
        EXPECT_EQ(context, reinterpret_cast<std::uintptr_t>(&ids));
        return true;
    });
    EXPECT_EQ(drive.GetDriveDataNameByFieldId({"a"}), std::vector<std::string>{"name-18"});
    EXPECT_EQ(drive.CheckWhetherFileIdExistsInDriveData(std::vector<std::string>{"a"}), std::vector{true});
    EXPECT_EQ(drive.CountDriverData() + drive.GetCountBySelectSQL(count) + drive.GetFilesChildNodeCount("list"), 9);
    EXPECT_TRUE(drive.GetFolderSubFile("parentId-9", ids, folders, 2, 0) && drive.GetSourcesFolder({"a"}, below));
    EXPECT_EQ(ids.back(), "a");

    drive.InsertDriverConfItem(configuration);
    EXPECT_EQ(drive.CountDriverConfItem() + drive.UpdateIsFirstStartInDriverConf(0, 19), 2);
    EXPECT_TRUE(drive.UpdateIsFirstStartInDriverConfV2(0, 20) && drive.UpdateRootFileIdInDriverConf(0, "root") &&
                drive.UpdateLastFullSyncTimestampInDriverConf(0, 21) &&
                drive.UpdateLastAutomaticSyncTimestampInDriverConf(0, 22) &&
                drive.UpdateLastSubscribeTimestampInDriverConf(0, 23) && drive.UpdateStartCursorInDriverConf(0, "s") &&
                drive.UpdateFullSyncIntervalInDriverConf(0, 24) &&
                drive.UpdateAutomaticSyncIntervalInDriverConf(0, 25));
    EXPECT_EQ(drive.GetDriverConfItem().second.startCursor, "s");
    EXPECT_TRUE(drive.InsertFullTaskBatch(tasks) && drive.InsertFullTask({"u", "", 0, 0, "", "", "", ""}) &&
                drive.RelaceFullTaskBatch(tasks) && drive.UpdateCursorInFullSyncTask("t", "x") &&
                drive.UpdateStateInFullSyncTask("t", 26) && drive.UpdateFullTaskWithValue("t", 27));
    EXPECT_EQ(drive.GetFullTaskById("t").cursor, "x");
    EXPECT_EQ(drive.GetFullTask().size(), 2U);

    std::vector<std::string> told;
    for (const char* table : {"DriveDataTable", "DriveConfTable", "DriveFullTask"}) {
        for (const std::vector<std::string>& row : file.query(std::string("SELECT * FROM ") + table)) {
            told.insert(told.end(), row.begin(), row.end());
        }
    }
    drive.SetDriveDataSyncFlag({"a"});
    drive.DelDriveDataBySyncFlag({"a"});
    EXPECT_TRUE(drive.DeleteFullTaskById("t") && drive.DeleteFullTaskBatch({"u"}) && drive.DeleteFullTask() &&
                drive.DeleteDriveDataById("a") && drive.DeleteDriveDataById(std::vector<std::string>{"b"}) &&
                drive.DeleteDriveDataWithoutLocal() && drive.DeleteAllDriveData());
    for (const std::string& statement : drive.trace.take()) {
        told.push_back(statement);
    }
    return told;
}

} // namespace

TEST_F(DriveFacade, DoesWhatTheBaseDoes)
{
    SqliteFile file(path(L"DriveModuleData.dat"), SqliteFile::Collation::NameCompare);
    const std::vector<std::string> expected = callAll<DriverDBProviderBase>(file);
    file.exec("DELETE FROM DriveDataTable; DELETE FROM DriveConfTable");
    EXPECT_EQ(callAll<DriverDBProvider>(file), expected);
    m_log.take(); // the column that is missing
}

TEST_F(DriveFacade, FourMembersDoNothing)
{
    Observed<DriverDBProvider> drive;
    EXPECT_TRUE(drive.InsertDriveData(filledRecord("a", 1)) && drive.GetALLDriveData().empty()) << "no table yet";
    EXPECT_FALSE(drive.UpdateLastFullSyncTimestampInDriverConf(1, 2));
    const EngineLines lines("DriveModuleData.dat");
    EXPECT_TRUE(m_log.failuresWere({lines.prepare, lines.prepare, lines.prepare}));

    sqlite3_stmt* statement = nullptr;
    DriveDataTable record = filledRecord("b", 2);
    int column = 3;
    const int opened = drive.opened;
    drive.ResetDriverDB();
    drive.ConvertStmtToFileItem(statement, record);
    drive.InitFieldFromDbStep1(statement, record, column);
    drive.InitFieldFromDbStep2(statement, record, column);
    EXPECT_TRUE(statement == nullptr && column == 3 && drive.opened == opened);
    EXPECT_EQ(cellsOf(record), cellsOf(filledRecord("b", 2)));
}
