// The configuration of the drive's synchronisation and the tasks of a full one.

#include "support/drivetest.h"

using namespace testsupport;
using DatabaseService::DriveConfTable;
using DatabaseService::DriveFullTask;
using DatabaseService::DriverDBProvider;
using DatabaseService::int64;

namespace {

constexpr int64 wide = (int64{1} << 40) + 5; // 5 in 32 bits

class DriveSync : public DriveTest {
protected:
    Rows rows(const std::string& table) { return m_file.query("SELECT * FROM " + table + " ORDER BY 1"); }
};

DriveConfTable configuration(int64 id)
{
    return {id,     -2,       "start", 3,  -4,       5,        6,      wide, wide + 1, wide + 2, 7,   wide + 3,
            "root", wide + 4, "C:\\s", -8, "closed", wide + 5, "lost", "d1", "d2",     "d3",     "d4"};
}

// In the order of the table, which is not the structure's.
std::vector<std::string> cells(const std::string& id)
{
    return split(id +
                 " -2 'start' 3 -4 5 6 1099511627781 1099511627782 1099511627783 7 1099511627784 'root' "
                 "1099511627785 'C:\\s' -8 'closed' 'd1' 'd2' 'd3' 'd4' 1099511627786 'lost'");
}

struct Setting {
    const char* column;
    const char* cell;
    bool reports;
    std::function<int(DriverDBProvider&, int id)> set;
};

const Setting settings[] = {
    {"isFirstStart", "-9", true, [](auto& drive, int id) { return drive.UpdateIsFirstStartInDriverConf(id, -9); }},
    {"isFirstStart", "8", false, [](auto& drive, int id) { return drive.UpdateIsFirstStartInDriverConfV2(id, 8); }},
    {"rootFileId", "'r'", false, [](auto& drive, int id) { return drive.UpdateRootFileIdInDriverConf(id, "r"); }},
    {"lastFullSyncTimestamp", "1099511627781", true,
     [](auto& drive, int id) { return drive.UpdateLastFullSyncTimestampInDriverConf(id, wide); }},
    {"lastAutomaticSyncTimestamp", "1099511627781", false,
     [](auto& drive, int id) { return drive.UpdateLastAutomaticSyncTimestampInDriverConf(id, wide); }},
    {"lastSubscribeTimestamp", "1099511627781", false,
     [](auto& drive, int id) { return drive.UpdateLastSubscribeTimestampInDriverConf(id, wide); }},
    {"startCursor", "'s'", false, [](auto& drive, int id) { return drive.UpdateStartCursorInDriverConf(id, "s"); }},
    {"fullSyncInterval", "1099511627781", false,
     [](auto& drive, int id) { return drive.UpdateFullSyncIntervalInDriverConf(id, wide); }},
    {"automaticSyncInterval", "1099511627781", false,
     [](auto& drive, int id) { return drive.UpdateAutomaticSyncIntervalInDriverConf(id, wide); }},
    {"lastLostFileQueryTimestamp", "1099511627781", true,
     [](auto& drive, int id) { return drive.UpdateLastLostFileQueryTimestampInDriverConf(id, wide); }},
    {"lostFileQueryCursor", "'l'", true,
     [](auto& drive, int id) { return drive.UpdateLostFileQueryCursorInDriverConf(id, "l"); }},
};

} // namespace

TEST_F(DriveSync, ConfigurationGoesInAndOutWhole)
{
    EXPECT_EQ(m_drive.CountDriverConfItem(), 0);
    EXPECT_EQ(statement("BEGIN DEFERRED"), "SELECT COUNT(isFirstStart) FROM DriveConfTable;");
    EXPECT_FALSE(m_drive.GetDriverConfItem().first);

    DriveConfTable stored = configuration(wide);
    m_drive.InsertDriverConfItem(stored);
    EXPECT_EQ(rows("DriveConfTable"), (Rows{cells(std::to_string(wide))}));
    auto [found, read] = m_drive.GetDriverConfItem();
    EXPECT_TRUE(found);
    EXPECT_EQ(read.id, wide);
    read.id = wide + 1;
    m_drive.InsertDriverConfItem(read);
    EXPECT_EQ(rows("DriveConfTable").at(1), cells(std::to_string(wide + 1))) << "read as it was written";
    EXPECT_EQ(m_drive.CountDriverConfItem(), 2);

    m_file.exec("DELETE FROM DriveConfTable; INSERT INTO DriveConfTable(id) VALUES(3)");
    EXPECT_EQ(m_drive.CountDriverConfItem(), 0) << "NULL does not count";
    EXPECT_EQ(m_drive.GetDriverConfItem().second.id, 3);
}

TEST_F(DriveSync, EachSettingTouchesItsColumn)
{
    for (const int id : {1, 2}) {
        DriveConfTable stored = configuration(id);
        m_drive.InsertDriverConfItem(stored);
    }
    m_drive.trace.take();
    for (const auto& [column, cell, reports, set] : settings) {
        SCOPED_TRACE(column);
        Rows expected = rows("DriveConfTable");
        expected[0].at(std::stoul(m_file.value("SELECT cid FROM pragma_table_info('DriveConfTable') WHERE name = '" +
                                               std::string(column) + '\''))) = cell;
        EXPECT_EQ(set(m_drive, 1), 1);
        EXPECT_EQ(statement(),
                  "UPDATE DriveConfTable SET " + std::string(column) + " = :" + column + " WHERE id = :id ;");
        EXPECT_EQ(set(m_drive, 3), 1) << "an unknown id is no failure";
        EXPECT_EQ(rows("DriveConfTable"), expected);
        m_drive.trace.take();
    }
    EXPECT_EQ(m_drive.GetDriverConfItem().second.fullSyncInterval, 5);

    useFolder(path(L"missing"));
    for (const Setting& setting : settings) {
        EXPECT_EQ(setting.set(m_drive, 1), setting.reports ? 0 : 1) << setting.column;
    }
    EXPECT_FALSE(m_drive.GetDriverConfItem().first);
    EXPECT_EQ(m_drive.CountDriverConfItem(), 0);
    EXPECT_EQ(failedOpens(), std::ssize(settings) + 2);
}

TEST_F(DriveSync, Tasks)
{
    const DriveFullTask a{"a", "ca", -1, wide, "1", "2", "3", "4"};
    const DriveFullTask b{"b", "cb", 2, -wide, "5", "6", "7", "8"};
    DriveFullTask c = a;
    c.fileId = "c";
    const std::string fields = "fileId,cursor,state,updateTime,data1,data2,data3,data4";
    const std::string values = ":fileId,:cursor,:state,:updateTime,:data1,:data2,:data3,:data4";
    const std::vector<std::string> rowA{"'a'", "'ca'", "-1", "1099511627781", "'1'", "'2'", "'3'", "'4'"};
    std::vector<std::string> rowB{"'b'", "'cb'", "2", "-1099511627781", "'5'", "'6'", "'7'", "'8'"};

    EXPECT_TRUE(m_drive.InsertFullTask(a));
    EXPECT_EQ(statement(), "INSERT INTO DriveFullTask (" + fields + ") VALUES (" + values + ");");
    std::vector<DriveFullTask> batch{b, c};
    EXPECT_TRUE(m_drive.InsertFullTaskBatch(batch));
    EXPECT_EQ(m_drive.trace.take().size(), 4U);
    EXPECT_EQ(m_file.value("SELECT group_concat(fileId) FROM DriveFullTask"), "'a,b,c'");

    // Out and in again, so that a member that is read wrongly is written wrongly.
    EXPECT_EQ(m_drive.GetFullTaskById("b").fileId, "b");
    EXPECT_EQ(statement("BEGIN DEFERRED"), "SELECT " + fields + " FROM DriveFullTask WHERE fileId = :fileId ;");
    batch = {m_drive.GetFullTaskById("a"), m_drive.GetFullTask().at(1)};
    EXPECT_TRUE(m_drive.DeleteFullTaskBatch({"a", "unknown", "b"}));
    m_drive.trace.take();
    EXPECT_TRUE(m_drive.DeleteFullTaskById("c"));
    EXPECT_EQ(statement(), "DELETE FROM DriveFullTask WHERE fileId = :fileId;");
    EXPECT_EQ(rows("DriveFullTask"), Rows());
    EXPECT_TRUE(m_drive.RelaceFullTaskBatch(batch));
    EXPECT_EQ(rows("DriveFullTask"), (Rows{rowA, rowB}));
    m_drive.trace.take();
    batch = {{"b", "", 3, 4, "", "", "", "new"}};
    EXPECT_TRUE(m_drive.RelaceFullTaskBatch(batch));
    EXPECT_EQ(statement(), "REPLACE INTO DriveFullTask (" + fields + ") VALUES (" + values + ");");
    rowB = {"'b'", "''", "3", "4", "''", "''", "''", "'new'"};
    EXPECT_EQ(rows("DriveFullTask"), (Rows{rowA, rowB}));

    EXPECT_TRUE(m_drive.UpdateFullTaskWithValue("b", 9));
    EXPECT_TRUE(m_drive.UpdateCursorInFullSyncTask("b", "cursor"));
    EXPECT_EQ(statement(), "UPDATE DriveFullTask SET cursor = :cursor WHERE fileId = :fileId ;");
    EXPECT_TRUE(m_drive.UpdateStateInFullSyncTask("b", -5));
    EXPECT_EQ(statement(), "UPDATE DriveFullTask SET state = :state WHERE fileId = :fileId;");
    rowB[1] = "'cursor'";
    rowB[2] = "-5";
    EXPECT_EQ(rows("DriveFullTask"), (Rows{rowA, rowB}));

    EXPECT_EQ(m_drive.GetFullTaskById("unknown").fileId, "");
    EXPECT_TRUE(m_drive.DeleteFullTask() && m_drive.GetFullTask().empty());

    useFolder(path(L"missing"));
    EXPECT_TRUE(m_drive.InsertFullTask(a) && m_drive.RelaceFullTaskBatch(batch));
    EXPECT_TRUE(m_drive.UpdateCursorInFullSyncTask("a", "") && m_drive.UpdateStateInFullSyncTask("a", 1));
    EXPECT_TRUE(m_drive.DeleteFullTask() && m_drive.DeleteFullTaskById("a") && m_drive.DeleteFullTaskBatch({}));
    EXPECT_EQ(failedOpens(), 7);
}
