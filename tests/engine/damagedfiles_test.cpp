// Files that are not what they should be: calls answer as their comments say, the log tells, nothing else is touched.

#include "databaseservice/keptconnections.h"
#include "support/drivefields.h"
#include "support/enginelines.h"
#include "support/filebytes.h"
#include "support/observed.h"
#include "support/storetest.h"

using namespace testsupport;
using DatabaseService::DriveDataTable;
using DatabaseService::ListKeptConnections;

namespace {

constexpr int rowCount = 500;

class DamagedFiles : public StoreTest {
protected:
    DamagedFiles()
    {
        m_drive.InitDatabase();
        std::vector<DriveDataTable> records;
        for (int row = 0; row < rowCount; ++row) {
            records.push_back(filledRecord(std::to_string(row), row));
        }
        m_drive.InsertDriveDataBatch(records);
        m_whole = bytesOf(m_file);
        m_log.take();
    }

    const std::filesystem::path m_file = path(L"DriveModuleData.dat");
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
    for (const std::string& bytes : {header, schema, std::string(5000, 'p'), std::string()}) {
        SCOPED_TRACE(bytes.substr(0, 16));
        writeBytes(m_file, bytes);
        EXPECT_TRUE(m_drive.GetDriveDataById("1").Empty());
        EXPECT_TRUE(m_drive.GetALLDriveData().empty());
        EXPECT_TRUE(m_drive.GetDriveDataNameByFieldId({"1"}).empty());
        EXPECT_EQ(m_drive.CountDriverData(), 0);
        EXPECT_TRUE(m_drive.InsertDriveData(filledRecord("new", 1)));
        EXPECT_FALSE(m_drive.UpdateCloudContentStatusById("1", 0));
        EXPECT_TRUE(m_drive.ExecuteSQL("DELETE FROM DriveDataTable"));
        EXPECT_TRUE(m_log.failuresWere(std::vector(7, EngineLines("DriveModuleData.dat").prepare)));
        EXPECT_EQ(bytesOf(m_file), bytes);
        EXPECT_EQ(m_drive.opened, m_drive.closed);
    }
}

// Whatever is gone, reads give rows that were stored or nothing, and never more.
TEST_F(DamagedFiles, LostPagesLoseNoMoreThanTheirRows)
{
    const std::size_t keptBefore = ListKeptConnections().size();
    constexpr std::size_t page = 4096;
    std::vector<std::string> files{m_whole.substr(0, m_whole.size() / 8), m_whole.substr(0, m_whole.size() * 7 / 8)};
    for (std::size_t at = page; at < m_whole.size(); at += 7 * page) {
        files.push_back(m_whole);
        files.back().replace(at, page, page, '\xAA');
    }
    ASSERT_GT(files.size(), 8U);
    int tried = 0;
    int damaged = 0;
    for (const std::string& bytes : files) {
        const std::wstring name = std::to_wstring(++tried); // a file of its own: others may still be held open
        m_drive.SetDatabasePath(name);
        writeBytes(path(name), bytes);
        const std::vector<DriveDataTable> records = m_drive.GetALLDriveData();
        damaged += records.size() < rowCount;
        for (const DriveDataTable& record : records) {
            EXPECT_EQ(cellsOf(record), cellsOf(filledRecord(record.GetFileid(), std::stoi(record.GetFileid()))));
        }
        EXPECT_EQ(m_log.take().size() > 1, records.size() < rowCount) << "a walk that broke off is told by finalize";
        EXPECT_EQ(bytesOf(path(name)), bytes);

        EXPECT_TRUE(m_drive.UpdateDriveAllData({filledRecord("0", 1), filledRecord("250", 1)}));
        EXPECT_TRUE(m_drive.DeleteAllDriveData());
        m_log.take();
    }
    EXPECT_GT(damaged, 5);
    const std::size_t kept = ListKeptConnections().size() - keptBefore;
    EXPECT_EQ(static_cast<std::size_t>(m_drive.opened - m_drive.closed), kept) << "after failed commits";
}
