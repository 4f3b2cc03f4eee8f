// The changes of files in the main store.

#include "databaseservice/maindbsqlprovider.h"
#include "support/mainstoretest.h"

#include <tuple>

using namespace testsupport;
using namespace DatabaseService;

namespace {

template <class Record> auto members(Record& r)
{
    return std::tie(r.id, r.fileId, r.deleted, r.changeType, r.fromDevice, r.kind, r.fileName, r.localFileName,
                    r.mimeType, r.isFolder, r.trashed, r.parentId, r.parentFolder, r.localParentId, r.localParentFolder,
                    r.createdTime, r.modifiedTime, r.localModifiedTime, r.size, r.thunbnailDownloadLink,
                    r.localThunbnailDownload, r.status, r.fileStatus, r.isSyncDown, r.isRiskFile, r.imageRotate);
}

struct Fill {
    void operator()(std::string& text) { text = "text" + std::to_string(number++); }
    void operator()(int64& wide) { wide = -(int64{number++} << 40); }
    void operator()(std::int32_t& narrow) { narrow = number++; }
    std::int32_t number;
};

/// The higher the seed, the older: no two members are alike.
T_CloudFileTable filled(const std::string& fileId, const std::string& parentId, int seed, int64 id = 0)
{
    T_CloudFileTable record;
    std::apply([fill = Fill{seed * 100}](auto&... each) mutable { (fill(each), ...); }, members(record));
    record.id = id;
    record.fileId = fileId;
    record.parentId = parentId;
    return record;
}

std::string cell(const std::string& text)
{
    return textCell(text);
}

std::string cell(int64 number)
{
    return std::to_string(number);
}

std::vector<std::string> cellsOf(const T_CloudFileTable& record)
{
    return std::apply([](const auto&... each) { return std::vector{cell(each)...}; }, members(record));
}

class MainCloudFiles : public MainStoreTest {
protected:
    void insert(std::vector<T_CloudFileTable> records) { Main::InsertCloudDriveDataBatch(records); }
    void removeOldest(int count) { Main::DeleteCloudDriveDataBatchOrderBy(count); }
    Rows rows() { return m_file.query("SELECT * FROM T_CloudFileTable ORDER BY id"); }
    std::string ids() { return m_file.value("SELECT group_concat(id || fileId) FROM T_CloudFileTable"); }

    std::string a = "a";
    std::string parent = "parent";
    std::string unknown = "unknown";
};

} // namespace

TEST_F(MainCloudFiles, RecordsGoInAndComeOutWhole)
{
    insert({filled(a, parent, 2), filled("it's", parent, 1, 77)});
    EXPECT_TRUE(openedTimes(2)) << "one transaction per record";
    const T_CloudFileTable first = filled(a, parent, 2, 1);
    const T_CloudFileTable second = filled("it's", parent, 1, 2);
    std::string quoted = "it's";
    EXPECT_EQ(rows(), (Rows{cellsOf(first), cellsOf(second)}));
    const std::vector<T_CloudFileTable> all = Main::GetAllCloudDriveDataBatch();
    ASSERT_EQ(all.size(), 2U);
    EXPECT_EQ(cellsOf(all[0]), cellsOf(second)) << "the newest first";
    EXPECT_EQ(cellsOf(all[1]), cellsOf(first));
    EXPECT_EQ(cellsOf(Main::GetCloudDriveDataBatch(quoted)), cellsOf(second));
    EXPECT_EQ(cellsOf(Main::GetCloudDriveDataBatch(unknown)), cellsOf(T_CloudFileTable()));
    EXPECT_EQ(Main::SelectSameColumnFromParentId(parent).size(), 2U);
    EXPECT_EQ(Main::SelectSameColumnFromParentId(unknown).size(), 0U);
    EXPECT_TRUE(Main::SelectOneCloudDriveData(quoted));
    EXPECT_FALSE(Main::SelectOneCloudDriveData(unknown));
    EXPECT_EQ(Main::GetAllCloudDriveDataBatchNum(), 2);
    Main::DeleteAllCloudDriveDataBatch();
    insert({first});
    EXPECT_EQ(ids(), "'3a'") << "ids are not given again";
}

TEST_F(MainCloudFiles, UpdateRewritesTheRowsOfTheIds)
{
    insert({filled(a, parent, 1), filled("b", parent, 2), filled("c", parent, 3)});
    const Rows before = rows();
    m_log.take();
    std::vector records{filled("x", "y", 4, 1), filled("none", "y", 5, 9), filled("z", "y", 6, 3)};
    Main::UpdateCloudDriveVec(records);
    EXPECT_TRUE(openedTimes(1));
    EXPECT_EQ(rows(), (Rows{cellsOf(records[0]), before[1], cellsOf(records[2])}));
    T_CloudFileTable second = filled("small", "y", 7, 2);
    Main::UpdateCloudDriveDataSmallPicDown(second);
    EXPECT_EQ(rows()[1], cellsOf(second));
}

TEST_F(MainCloudFiles, ReplaceTakesTheFirstRowOfTheFile)
{
    insert({filled(a, parent, 1), filled("b", parent, 2), filled(a, parent, 3)});
    T_CloudFileTable record = filled(a, "moved", 4);
    Main::UpdateSelectCloudDriveData(record);
    EXPECT_EQ(ids(), "'2b,3a,4a'");
    Main::UpdateSelectDelCloudDriveData(record);
    EXPECT_EQ(ids(), "'2b,4a'");
    Main::DeleteOneCloudDriveDataBatchColumn(a);
    m_log.take();
    Main::DeleteOneCloudDriveDataBatchColumn(a);
    EXPECT_TRUE(openedTimes(1)) << "nothing found, nothing to delete";
    Main::UpdateSelectCloudDriveData(record);
    EXPECT_EQ(ids(), "'2b,5a'");
    Main::DeleteSameColumnFromParentId(parent);
    EXPECT_EQ(ids(), "'5a'");
}

TEST_F(MainCloudFiles, TheOldestRowsGo)
{
    insert({filled("c", parent, 2), filled(a, parent, 4), filled("b", parent, 3), filled("d", parent, 1)});
    m_log.take();
    removeOldest(0);
    EXPECT_TRUE(openedTimes(2)) << "an empty transaction";
    EXPECT_EQ(ids(), "'1c,2a,3b,4d'");
    removeOldest(2);
    EXPECT_EQ(ids(), "'1c,4d'");
    removeOldest(100);
    EXPECT_EQ(rows(), Rows());
    insert({filled(a, parent, 1)});
    removeOldest(-1);
    EXPECT_EQ(rows(), Rows()) << "a negative number is no limit";
}

TEST_F(MainCloudFiles, CellsOfTheOtherKindArePassedOver)
{
    insert({filled(a, parent, 1)});
    m_file.exec("UPDATE T_CloudFileTable SET isFolder = 'text', trashed = 4294967303, modifiedTime = 2.5, size = 7");
    const T_CloudFileTable read = Main::GetCloudDriveDataBatch(a);
    EXPECT_EQ(std::tuple(read.isFolder, read.trashed, read.modifiedTime, read.size), std::tuple(0, 7, 0, 7));
}

TEST_F(MainCloudFiles, AnOlderTableStaysAndIsNotRead)
{
    Main::DeleteMainCloudFileTable();
    std::string file = platform::toUtf8(path(L"main.dat"));
    EXPECT_TRUE(MainDBSQLProvider::GetInstance().CreateTables(file));
    Main::InitMainDatabase();
    m_file.exec("INSERT INTO T_CloudFileTable VALUES(1,'a','','','','','','','',0,0,'parent','','','',1,2,3,4,'','',"
                "5,6,7,8)");
    EXPECT_EQ(Main::GetAllCloudDriveDataBatchNum(), 1);
    EXPECT_TRUE(m_log.failuresWere({}));
    EXPECT_EQ(Main::GetCloudDriveDataBatch(a).fileId, "");
    insert({filled(a, parent, 1)});
    EXPECT_TRUE(m_log.failuresWere({lines.prepare, lines.prepare}));
    removeOldest(1);
    EXPECT_EQ(rows(), Rows());
}
