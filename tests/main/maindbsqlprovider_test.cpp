// The main store's tables in their older shape.

#include "databaseservice/keptconnections.h"
#include "databaseservice/maindbsqlprovider.h"
#include "support/limitedmemory.h"
#include "support/mainstoretest.h"

#include <chrono>
#include <sqlite3.h>

using namespace testsupport;
using DatabaseService::MainDBSQLProvider;

namespace {

/// Beside `main.dat` in its present shape there is a file without tables.
struct MainDBSQL : MainStoreTest {
    bool createTables(const wchar_t* name = L"older.dat")
    {
        std::string file = platform::toUtf8(path(name));
        return m_provider.CreateTables(file);
    }

    static ExpectedLine failed(const std::string& reason)
    {
        return {"MainDBSQLProvider::ExecuteMulitNoQuerySQL",
                "ExecuteNonQueryTransaction failed,error code is " + reason};
    }
    static ExpectedLine commitFailed(const std::string& reason)
    {
        return {"MainDBSQLProvider::CommitTransaction", "Commit transaction failed,error code is " + reason};
    }

    SqliteFile m_older{path(L"older.dat")};
    MainDBSQLProvider& m_provider = MainDBSQLProvider::GetInstance();
};

} // namespace

TEST_F(MainDBSQL, Tables)
{
    EXPECT_TRUE(createTables());
    EXPECT_EQ(m_older.tables(), allTables);
    for (const char* same : {"T_NotepadCard", "T_WaitHandleCardItem", "UBAUserLog", "UserLogTable"}) {
        EXPECT_EQ(m_older.columns(same), m_file.columns(same));
    }
    EXPECT_EQ(m_older.columns("T_CloudFileTable") + " imageRotate", m_file.columns("T_CloudFileTable"));
    EXPECT_EQ(m_older.columns("UserProperties"), "TEXT NOT NULL KEY: Key\nTEXT NOT NULL: Value");
    EXPECT_EQ(m_older.value("SELECT count(*) FROM sqlite_master WHERE sql LIKE '%AUTOINCREMENT%' OR sql LIKE '%[%'"),
              "0");
    const std::string version = m_older.value("PRAGMA data_version");
    EXPECT_TRUE(createTables());
    EXPECT_EQ(m_older.value("PRAGMA data_version"), version) << "a complete file is not written to";
}

TEST_F(MainDBSQL, AMissingFileIsNotCreated)
{
    // The statements fail on what the open left, and the close ends it.
    const std::string reason = ",reason:unable to open database file";
    std::vector<ExpectedLine> expected{8, failed("21" + reason)};
    expected.front() = {"MainDBSQLProvider::ConnectDb", "Open database failed,error code is 14" + reason};
    expected.back() = commitFailed("21" + reason);
    for (int time = 0; time < 2; ++time) {
        EXPECT_FALSE(createTables(L"missing.dat"));
        EXPECT_TRUE(m_log.failuresWere(expected));
        EXPECT_FALSE(std::filesystem::exists(path(L"missing.dat")));
    }
    EXPECT_TRUE(createTables()) << "nothing is left of the failure";
    EXPECT_TRUE(DatabaseService::ListKeptConnections().empty());
}

TEST_F(MainDBSQL, AFailedStatementDoesNotStopTheOthers)
{
    m_older.exec("CREATE TABLE other(a); CREATE INDEX T_NotepadCard ON other(a)");
    EXPECT_FALSE(createTables());
    EXPECT_TRUE(m_log.failuresWere({failed("1,reason:there is already an index named T_NotepadCard")}));
    EXPECT_EQ(m_older.value("SELECT count(*) FROM sqlite_master WHERE type = 'table'"), "6");
}

TEST_F(MainDBSQL, ALockIsWaitedForFourTimes)
{
    // A reader lets the statements pass and the commit not: it is rolled back, and yet no failure.
    m_older.exec("CREATE TABLE read(a); BEGIN; SELECT * FROM read");
    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(createTables());
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(400));
    EXPECT_TRUE(m_log.failuresWere({commitFailed("5,reason:database is locked")}));
    m_older.exec("COMMIT");
    EXPECT_EQ(m_older.tables(), "read");
}

// Out of memory from some allocation on, for each there is. (Under Windows a library has an `operator new` of its own.)
TEST_F(MainDBSQL, MemoryThatRunsOutLeavesNothingOpen)
{
    m_older.exec("CREATE TABLE other(a); CREATE INDEX T_NotepadCard ON other(a)"); // for a line in the middle
    std::string file = platform::toUtf8(path(L"older.dat"));
    m_provider.CreateTables(file);
    const auto inUse = sqlite3_memory_used();
    bool ranOut = true;
    for (int allocations = 0; ranOut; ++allocations) {
        setAllocationsLeft(allocations);
        m_provider.CreateTables(file);
        ranOut = allocationsLeft() == 0;
        setAllocationsLeft(-1);
        ASSERT_EQ(sqlite3_memory_used(), inUse) << "after " << allocations << " allocations";
        ASSERT_NO_THROW(m_older.exec("BEGIN EXCLUSIVE; ROLLBACK"));
    }
    m_log.take();
}
