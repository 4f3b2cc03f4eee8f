#include "databaseservice/maindbsqlprovider.h"
#include "support/mainstoretest.h"
#include "support/recordfields.h"

using namespace testsupport;
using namespace DatabaseService;

namespace {

using R = T_CloudFileTable;

// clang-format off
const RecordFields<R> files{"T_CloudFileTable",
    FIELDS(R, &R::id, &R::fileId, &R::deleted, &R::changeType, &R::fromDevice, &R::kind, &R::fileName,
    &R::localFileName, &R::mimeType, &R::isFolder, &R::trashed, &R::parentId, &R::parentFolder, &R::localParentId,
    &R::localParentFolder, &R::createdTime, &R::modifiedTime, &R::localModifiedTime, &R::size,
    &R::thunbnailDownloadLink, &R::localThunbnailDownload, &R::status, &R::fileStatus, &R::isSyncDown, &R::isRiskFile,
    &R::imageRotate)};
// clang-format on

/// The higher the seed, the newer.
R filled(const std::string& fileId, const std::string& parentId, int seed, int64 id = 0)
{
    R record = files.filled(seed);
    record.id = id;
    record.fileId = fileId;
    record.parentId = parentId;
    return record;
}

struct MainCloudFiles : MainStoreTest {
    void insert(std::vector<R> records) { Main::InsertCloudDriveDataBatch(records); }
    void removeOldest(int count) { Main::DeleteCloudDriveDataBatchOrderBy(count); }
    Rows rows() { return files.rows(m_file); }
    std::string ids() const { return m_file.value("SELECT group_concat(id || fileId) FROM T_CloudFileTable"); }

    std::string a = "a";
    std::string parent = "parent";
    std::string unknown = "unknown";
};

} // namespace

TEST_F(MainCloudFiles, RecordsGoInAndComeOutWhole)
{
    insert({filled(a, parent, 1), filled("it's", parent, 2, 77)});
    EXPECT_TRUE(openedTimes(2)) << "one transaction per record";
    const R first = filled(a, parent, 1, 1);
    const R second = filled("it's", parent, 2, 2);
    std::string quoted = "it's";
    EXPECT_EQ(rows(), files.cells({first, second}));
    EXPECT_EQ(files.cells(Main::GetAllCloudDriveDataBatch()), files.cells({second, first})) << "the newest first";
    EXPECT_EQ(files.cells(Main::GetCloudDriveDataBatch(quoted)), files.cells(second));
    EXPECT_EQ(files.cells(Main::GetCloudDriveDataBatch(unknown)), files.cells(R()));
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
    EXPECT_EQ(rows(), (Rows{files.cells(records[0]), before[1], files.cells(records[2])}));
    T_CloudFileTable second = filled("small", "y", 7, 2);
    Main::UpdateCloudDriveDataSmallPicDown(second);
    EXPECT_EQ(rows()[1], files.cells(second));
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
    insert({filled("c", parent, 3), filled(a, parent, 1), filled("b", parent, 2), filled("d", parent, 4)});
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
    const R read = Main::GetCloudDriveDataBatch(a);
    EXPECT_EQ(std::tuple(read.isFolder, read.trashed, read.modifiedTime, read.size), std::tuple(0, 7, 0, 7));
}

TEST_F(MainCloudFiles, AnOlderTableStaysAndIsNotRead)
{
    Main::DeleteMainCloudFileTable();
    std::string file = platform::toUtf8(path(L"main.dat"));
    EXPECT_TRUE(MainDBSQLProvider::GetInstance().CreateTables(file));
    Main::InitMainDatabase();
    SqliteFile(path(L"main.dat")) // which knows the new table
        .exec("INSERT INTO T_CloudFileTable "
              "VALUES(1,'a','','','','','','','',0,0,'parent','','','',1,2,3,4,'','',5,6,7,8)");
    EXPECT_EQ(Main::GetAllCloudDriveDataBatchNum(), 1);
    EXPECT_TRUE(m_log.failuresWere({}));
    EXPECT_EQ(Main::GetCloudDriveDataBatch(a).fileId, "");
    insert({filled(a, parent, 1)});
    EXPECT_TRUE(m_log.failuresWere({lines.prepare, lines.prepare}));
    removeOldest(1);
    EXPECT_EQ(ids(), "NULL");
}
