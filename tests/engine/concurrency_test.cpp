// Writers and a reader that share one file: SQLite's locks and the engine's waiting are all there is between them.

#include "databaseservice/driverdbproviderbase.h"
#include "support/drivefields.h"
#include "support/runonthreads.h"
#include "support/storetest.h"

#include <atomic>

using namespace testsupport;
using namespace DatabaseService;

using Concurrency = StoreTest;

// Every transaction is seen whole or not at all.
TEST_F(Concurrency, ThreadsOnOneProvider)
{
    constexpr int batches = 15;
    constexpr int rowsPerBatch = 40;
    DriverDBProviderBase drive;
    drive.InitDatabase();
    std::atomic<int> writing = 2;
    runOnThreads(3, [&](int thread) {
        while (thread == 0 && writing > 0) {
            EXPECT_EQ(drive.CountDriverData() % rowsPerBatch, 0);
        }
        for (int batch = 0; thread > 0 && batch < batches; ++batch) {
            std::vector<DriveDataTable> records;
            for (int row = 0; row < rowsPerBatch; ++row) {
                records.push_back(treeRecord(std::to_string((batch * rowsPerBatch + row) * 2 + thread), "root"));
            }
            drive.InsertDriveDataBatch(records);
        }
        --writing;
    });
    EXPECT_EQ(drive.CountDriverData(), 2 * batches * rowsPerBatch);
    SqliteFile file(path(L"DriveModuleData.dat"), SqliteFile::Collation::NameCompare);
    EXPECT_EQ(file.value("PRAGMA integrity_check"), "'ok'");
}
