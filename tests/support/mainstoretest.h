#pragma once

#include "databaseservice/maindatabaseprovider.h"
#include "support/enginelines.h"
#include "support/storetest.h"

#include <string>

namespace testsupport {

namespace Main = DatabaseService::MainDatabaseProvider;

/// A test with a fresh `main.dat`.
struct MainStoreTest : StoreTest {
    MainStoreTest()
    {
        Main::InitMainDatabase();
        m_log.take();
    }

    /// Whether the store was opened so many times since the last look, and nothing failed.
    testing::AssertionResult openedTimes(std::size_t times)
    {
        return m_log.linesWere({times, ExpectedLine{"DatabaseOperationBase::OpenDatabase", "OpenDataBase:*", 1}});
    }

    const EngineLines lines{"main.dat"};
    const std::string allTables =
        "T_CloudFileTable,T_NotepadCard,T_WaitHandleCardItem,UBAUserLog,UserLogTable,UserProperties";
    SqliteFile m_file{path(L"main.dat")};
};

} // namespace testsupport
