#include "databaseservice/calltrace.h"
#include "databaseservice/driverdbprovider.h"
#include "support/drivefields.h"
#include "support/storetest.h"

#include <chrono>
#include <stdexcept>
#include <thread>

using namespace DatabaseService;
using namespace testsupport;
using namespace std::chrono_literals;

namespace {

struct CallTraces : StoreTest {
    CallTraces()
    {
        m_drive.InitDatabase();
        SetCallTrace([this](const CallTrace& call) {
            m_calls.push_back(call);
            m_texts.push_back(std::string(call.store) + ": " + std::string(call.statement));
        });
    }
    ~CallTraces() override { SetCallTrace({}); }

    DriverDBProvider m_drive;
    std::vector<CallTrace> m_calls;
    std::vector<std::string> m_texts; ///< of the calls, which have them no longer
};

TEST_F(CallTraces, EachCallTellsItsStoreItsStatementAndItsRows)
{
    EXPECT_TRUE(m_drive.InsertDriveDataBatch({treeRecord("a", ""), treeRecord("b", ""), treeRecord("c", "")}));
    EXPECT_EQ(m_drive.GetALLDriveData().size(), 3U);
    m_drive.ExecuteSQL("UPDATE none SET x = 1"); // gives true whatever happens
    EXPECT_FALSE(m_log.take().empty());
    SetCallTrace({});
    m_drive.CountDriverData();

    ASSERT_EQ(m_calls.size(), 3U);
    EXPECT_TRUE(m_texts[0].starts_with("DriveModuleData.dat: INSERT INTO")) << m_texts[0];
    EXPECT_EQ(m_calls[0].rowsIn, 3U);
    EXPECT_EQ(m_calls[1].rowsOut, 3U);
    EXPECT_TRUE(m_calls[1].succeeded);
    EXPECT_FALSE(m_calls[2].succeeded);
    EXPECT_GT(m_calls[0].opening + m_calls[0].working, 0ns);
    EXPECT_GT(m_calls[0].committing, 0ns);
}

TEST_F(CallTraces, TheWaitForALockIsToldApart)
{
    SqliteFile other(path(L"DriveModuleData.dat"));
    other.exec("BEGIN IMMEDIATE");
    std::thread release([&] {
        std::this_thread::sleep_for(200ms);
        other.exec("COMMIT");
    });
    m_drive.DeleteAllDriveData();
    release.join();
    ASSERT_EQ(m_calls.size(), 1U);
    EXPECT_GT(m_calls[0].waiting, 100ms);
    EXPECT_LT(m_calls[0].working, m_calls[0].waiting);
}

TEST_F(CallTraces, ACallbackThatThrowsChangesNothing)
{
    SetCallTrace([](const CallTrace&) { throw std::runtime_error("not now"); });
    EXPECT_TRUE(m_drive.DeleteAllDriveData());
}

} // namespace
