#include "support/drivetest.h"

using namespace testsupport;
using namespace DatabaseService;

namespace {

constexpr int64 big = (int64{1} << 40) + 5; // 5 in 32 bits

struct DriveSync : DriveTest {
    Rows rows() const { return m_file.query("SELECT * FROM DriveConfTable ORDER BY 1"); }
};

DriveConfTable configuration(int64 id)
{
    return {id,     -2,      "start", 3,  -4,       5,       6,      big,  big + 1, big + 2, 7,   big + 3,
            "root", big + 4, "C:\\s", -8, "closed", big + 5, "lost", "d1", "d2",    "d3",    "d4"};
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

#define SET(method, value) [](auto& drive, int id) { return drive.method(id, value); }
const Setting settings[] = {
    {"isFirstStart", "-9", true, SET(UpdateIsFirstStartInDriverConf, -9)},
    {"isFirstStart", "8", false, SET(UpdateIsFirstStartInDriverConfV2, 8)},
    {"rootFileId", "'r'", false, SET(UpdateRootFileIdInDriverConf, "r")},
    {"lastFullSyncTimestamp", "1099511627781", true, SET(UpdateLastFullSyncTimestampInDriverConf, big)},
    {"lastAutomaticSyncTimestamp", "1099511627781", false, SET(UpdateLastAutomaticSyncTimestampInDriverConf, big)},
    {"lastSubscribeTimestamp", "1099511627781", false, SET(UpdateLastSubscribeTimestampInDriverConf, big)},
    {"startCursor", "'s'", false, SET(UpdateStartCursorInDriverConf, "s")},
    {"fullSyncInterval", "1099511627781", false, SET(UpdateFullSyncIntervalInDriverConf, big)},
    {"automaticSyncInterval", "1099511627781", false, SET(UpdateAutomaticSyncIntervalInDriverConf, big)},
    {"lastLostFileQueryTimestamp", "1099511627781", true, SET(UpdateLastLostFileQueryTimestampInDriverConf, big)},
    {"lostFileQueryCursor", "'l'", true, SET(UpdateLostFileQueryCursorInDriverConf, "l")},
};

} // namespace

TEST_F(DriveSync, ConfigurationGoesInAndOutWhole)
{
    EXPECT_EQ(m_drive.CountDriverConfItem(), 0);
    EXPECT_EQ(statement("BEGIN DEFERRED"), "SELECT COUNT(isFirstStart) FROM DriveConfTable;");
    EXPECT_FALSE(m_drive.GetDriverConfItem().first);

    DriveConfTable stored = configuration(big);
    m_drive.InsertDriverConfItem(stored);
    EXPECT_EQ(rows(), (Rows{cells(std::to_string(big))}));
    auto [found, read] = m_drive.GetDriverConfItem();
    EXPECT_TRUE(found);
    EXPECT_EQ(read.id, big);
    read.id = big + 1;
    m_drive.InsertDriverConfItem(read);
    EXPECT_EQ(rows().at(1), cells(std::to_string(big + 1))) << "read as it was written";
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
    for (const auto& [name, cell, reports, set] : settings) {
        SCOPED_TRACE(name);
        const std::string column = name;
        Rows expected = rows();
        expected[0].at(std::stoul(
            m_file.value("SELECT cid FROM pragma_table_info('DriveConfTable') WHERE name = '" + column + '\''))) = cell;
        EXPECT_EQ(set(m_drive, 1), 1);
        EXPECT_EQ(statement(), "UPDATE DriveConfTable SET " + column + " = :" + column + " WHERE id = :id ;");
        EXPECT_EQ(set(m_drive, 3), 1) << "an unknown id is no failure";
        EXPECT_EQ(rows(), expected);
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
    const DriveFullTask a{"a", "ca", -1, big, "1", "2", "3", "4"};
    const DriveFullTask b{"b", "cb", 2, -big, "5", "6", "7", "8"};
    DriveFullTask c = a;
    c.fileId = "c";
    const std::string fields = "fileId,cursor,state,updateTime,data1,data2,data3,data4";
    const std::string values = ":fileId,:cursor,:state,:updateTime,:data1,:data2,:data3,:data4";
    const std::string rowA = "'a'|'ca'|-1|1099511627781|'1'|'2'|'3'|'4'\n";
    const std::string all = "SELECT * FROM DriveFullTask ORDER BY 1";

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
    EXPECT_EQ(m_file.text(all), "");
    EXPECT_TRUE(m_drive.RelaceFullTaskBatch(batch));
    EXPECT_EQ(m_file.text(all), rowA + "'b'|'cb'|2|-1099511627781|'5'|'6'|'7'|'8'");
    m_drive.trace.take();
    batch = {{"b", "", 3, 4, "", "", "", "new"}};
    EXPECT_TRUE(m_drive.RelaceFullTaskBatch(batch));
    EXPECT_EQ(statement(), "REPLACE INTO DriveFullTask (" + fields + ") VALUES (" + values + ");");
    EXPECT_EQ(m_file.text(all), rowA + "'b'|''|3|4|''|''|''|'new'");

    EXPECT_TRUE(m_drive.UpdateFullTaskWithValue("b", 9));
    EXPECT_TRUE(m_drive.UpdateCursorInFullSyncTask("b", "cursor"));
    EXPECT_EQ(statement(), "UPDATE DriveFullTask SET cursor = :cursor WHERE fileId = :fileId ;");
    EXPECT_TRUE(m_drive.UpdateStateInFullSyncTask("b", -5));
    EXPECT_EQ(statement(), "UPDATE DriveFullTask SET state = :state WHERE fileId = :fileId;");
    EXPECT_EQ(m_file.text(all), rowA + "'b'|'cursor'|-5|4|''|''|''|'new'");

    EXPECT_EQ(m_drive.GetFullTaskById("unknown").fileId, "");
    EXPECT_TRUE(m_drive.DeleteFullTask() && m_drive.GetFullTask().empty());

    useFolder(path(L"missing"));
    EXPECT_TRUE(m_drive.InsertFullTask(a) && m_drive.RelaceFullTaskBatch(batch));
    EXPECT_TRUE(m_drive.UpdateCursorInFullSyncTask("a", "") && m_drive.UpdateStateInFullSyncTask("a", 1));
    EXPECT_TRUE(m_drive.DeleteFullTask() && m_drive.DeleteFullTaskById("a") && m_drive.DeleteFullTaskBatch({}));
    EXPECT_EQ(failedOpens(), 7);
}
