// Files that are not what they should be: calls answer as their comments say, the log tells, nothing else is touched.

#include "databaseservice/keptconnections.h"
#include "support/drivefields.h"
#include "support/enginelines.h"
#include "support/filebytes.h"
#include "support/observed.h"
#include "support/storetest.h"

#include <map>

using namespace testsupport;
using DatabaseService::DatabaseBindParameter;
using DatabaseService::DriveDataTable;

namespace {

namespace fs = std::filesystem;

constexpr int rowCount = 500;

const EngineLines lines("DriveModuleData.dat");

class DamagedFiles : public StoreTest {
protected:
    DamagedFiles()
    {
        writeBytes(path(L"bystander.dat"), "not ours");
        m_drive.InitDatabase();
        std::vector<DriveDataTable> records;
        for (int row = 0; row < rowCount; ++row) {
            records.push_back(filledRecord(std::to_string(row), row));
        }
        m_drive.InsertDriveDataBatch(records);
        m_whole = bytesOf(m_file);
        m_log.take();
    }

    ~DamagedFiles() override { EXPECT_EQ(bytesOf(path(L"bystander.dat")), "not ours"); }

    /// Every reader once, on a file in which nothing can be found. None of them writes to it.
    void expectEveryReaderEmpty()
    {
        DatabaseBindParameter bind;
        std::unordered_set<std::string> set;
        std::vector<std::string> files;
        std::string count = "SELECT count(*) FROM DriveDataTable";
        EXPECT_TRUE(m_drive.GetDriveDataById("1").Empty());
        EXPECT_TRUE(m_drive.GetALLDriveData().empty());
        EXPECT_TRUE(m_drive.GetDriveDataByParentId("parentId-1").empty());
        EXPECT_TRUE(m_drive.GetDriveDataByWhereSql("1", bind).empty());
        EXPECT_TRUE(m_drive.GetDriveDataByRawSQL("SELECT " + driveColumnList() + " FROM DriveDataTable").empty());
        EXPECT_TRUE(m_drive.GetDriveDataNameByFieldId({"1"}).empty());
        EXPECT_TRUE(m_drive.CheckWhetherFileIdExistsInDriveData(std::vector<std::string>{"1"}).empty());
        EXPECT_EQ(m_drive.CountDriverData(), 0);
        EXPECT_EQ(m_drive.GetCountBySelectSQL(count), 0);
        EXPECT_TRUE(m_drive.GetFolderSubFile("parentId-1", files, files, 10, 0));
        EXPECT_TRUE(m_drive.GetSourcesFolder({"1"}, set));
        EXPECT_EQ(m_drive.GetFilesChildNodeCount("1"), 0);
        EXPECT_TRUE(files.empty() && set.empty());
        m_drive.GetFileMetadataByRawSQL(nullptr, {});
    }
    static constexpr int readers = 13;

    void callWriters()
    {
        EXPECT_TRUE(m_drive.InsertDriveData(filledRecord("new", 1)));
        EXPECT_TRUE(m_drive.UpdateDriveAllData({filledRecord("1", 2)}));
        EXPECT_FALSE(m_drive.UpdateCloudContentStatusById("1", 0));
        m_drive.SetDriveDataSyncFlag({"parentId-1"});
    }
    static constexpr int writers = 4;

    /// Whether the log shows that all of `calls` calls ended in the same failure and nothing else did.
    testing::AssertionResult allFailedAt(const std::vector<ExpectedLine>& failure, int calls)
    {
        std::vector<ExpectedLine> expected;
        for (int call = 0; call < calls; ++call) {
            expected.insert(expected.end(), failure.begin(), failure.end());
        }
        return m_log.failuresWere(expected);
    }

    const fs::path m_file = path(L"DriveModuleData.dat");
    const std::vector<ExpectedLine> m_open{lines.open, engine("OpenDatabase", "DriveModuleData.datexist.")};
    ObservedDrive m_drive;
    std::string m_whole;
};

} // namespace

TEST_F(DamagedFiles, NothingCanBeReadFromAFileThatIsNone)
{
    std::string header = m_whole;
    header.replace(0, 16, "Something else.\n");
    std::string schema = m_whole;
    schema.replace(100, 200, 200, '\xAA'); // the root of the schema behind the header
    const std::pair<const char*, std::string> files[] = {
        {"overwritten header", header},
        {"overwritten schema", schema},
        {"a foreign file", std::string("\x89PNG\r\n\x1A\n") + std::string(5000, 'p')},
        {"text",
         "just a few words, and far less than a page of them. But more than a header, at least for SQLite: "
         "a hundred bytes it is."},
        {"an empty file", ""},
    };
    for (const auto& [name, bytes] : files) {
        SCOPED_TRACE(name);
        writeBytes(m_file, bytes);
        expectEveryReaderEmpty();
        EXPECT_TRUE(allFailedAt({lines.prepare}, readers));
        callWriters();
        EXPECT_TRUE(allFailedAt({lines.prepare}, writers));
        EXPECT_TRUE(m_drive.ExecuteSQL("DELETE FROM DriveDataTable"));
        EXPECT_TRUE(allFailedAt({lines.prepare}, 1));
        EXPECT_EQ(bytesOf(m_file), bytes);
        EXPECT_EQ(m_drive.opened, m_drive.closed);
    }
}

TEST_F(DamagedFiles, AFolderInPlaceOfTheFile)
{
    fs::remove(m_file);
    fs::create_directory(m_file);
    expectEveryReaderEmpty();
    EXPECT_TRUE(allFailedAt(m_open, readers));
    callWriters();
    EXPECT_TRUE(allFailedAt(m_open, writers));
    EXPECT_TRUE(m_drive.InitDatabase());
    EXPECT_TRUE(allFailedAt(m_open, 10));
    EXPECT_TRUE(fs::is_empty(m_file));
}

TEST_F(DamagedFiles, AMissingFolderIsNotCreated)
{
    useFolder(path(L"missing"));
    expectEveryReaderEmpty();
    callWriters();
    EXPECT_TRUE(
        allFailedAt({lines.open, engine("OpenDatabase", "DriveModuleData.datdoes not exist.")}, readers + writers));
    EXPECT_FALSE(fs::exists(path(L"missing")));
}

// Whatever page is gone, reads give rows that were stored or nothing, and never more.
TEST_F(DamagedFiles, LostPagesLoseNoMoreThanTheirRows)
{
    std::map<std::string, std::vector<std::string>> stored;
    for (int row = 0; row < rowCount; ++row) {
        stored[std::to_string(row)] = cellsOf(filledRecord(std::to_string(row), row));
    }
    const std::size_t keptBefore = DatabaseService::ListKeptConnections().size();
    constexpr std::size_t page = 4096;
    ASSERT_GT(m_whole.size(), 40 * page);
    int damaged = 0;
    for (std::size_t at = page; at < m_whole.size(); at += 7 * page) {
        SCOPED_TRACE(at / page);
        std::string bytes = m_whole;
        bytes.replace(at, page, page, '\xAA');
        writeBytes(m_file, bytes);
        const std::vector<DriveDataTable> records = m_drive.GetALLDriveData();
        damaged += records.size() < rowCount;
        for (const DriveDataTable& record : records) {
            EXPECT_EQ(cellsOf(record), stored[record.GetFileid()]);
        }
        const std::vector<std::string> log = m_log.take();
        EXPECT_EQ(log.size() > 1, records.size() < rowCount) << "a walk that broke off is told by finalize";
        EXPECT_EQ(bytesOf(m_file), bytes);

        EXPECT_TRUE(m_drive.UpdateDriveAllData({filledRecord("0", 1), filledRecord("250", 1)}));
        EXPECT_TRUE(m_drive.DeleteAllDriveData());
        m_log.take();
    }
    EXPECT_GT(damaged, 5);
    const std::size_t kept = DatabaseService::ListKeptConnections().size() - keptBefore;
    EXPECT_EQ(static_cast<std::size_t>(m_drive.opened - m_drive.closed), kept) << "after failed commits";
}

TEST_F(DamagedFiles, ATruncatedFile)
{
    for (const std::size_t part : {1U, 2U, 3U, 7U}) {
        SCOPED_TRACE(part);
        writeBytes(m_file, m_whole.substr(0, m_whole.size() * part / 8));
        EXPECT_LT(m_drive.GetALLDriveData().size(), std::size_t{rowCount});
        EXPECT_TRUE(m_drive.GetDriveDataById("499").Empty());
        EXPECT_FALSE(m_log.take().empty());
        EXPECT_EQ(bytesOf(m_file).size(), m_whole.size() * part / 8);
    }
}

TEST_F(DamagedFiles, AReadOnlyFileCanBeRead)
{
    fs::permissions(m_file, fs::perms::owner_read);
    EXPECT_EQ(m_drive.CountDriverData(), rowCount);
    EXPECT_EQ(cellsOf(m_drive.GetDriveDataById("7")), cellsOf(filledRecord("7", 7)));
    EXPECT_TRUE(m_log.failuresWere({}));
    EXPECT_TRUE(m_drive.InsertDriveData(filledRecord("new", 1)));
    // Who may write all the same, as an administrator may, has written.
    if (m_drive.CountDriverData() == rowCount) {
        EXPECT_TRUE(m_log.failuresWere(
            {lines.step, lines.finalize, EngineLines::afterFinalize("attempt to write a readonly database")}));
        EXPECT_EQ(bytesOf(m_file), m_whole);
    }
    fs::permissions(m_file, fs::perms::owner_all);
}
