// Writers and a reader that share one file: SQLite's locks and the engine's waiting are all there is between them.

#include "databaseservice/driverdbproviderbase.h"
#include "support/drivefields.h"
#include "support/storetest.h"

#include <atomic>
#include <thread>

using namespace testsupport;
using DatabaseService::DriveDataTable;
using DatabaseService::DriverDBProviderBase;

namespace {

constexpr int batches = 15;
constexpr int rowsPerBatch = 40;

using Concurrency = StoreTest;

} // namespace

// Every transaction is seen whole or not at all.
TEST_F(Concurrency, ThreadsOnOneProvider)
{
    DriverDBProviderBase drive;
    drive.InitDatabase();
    std::atomic<int> writing = 2;
    const auto write = [&](const std::string& prefix) {
        for (int batch = 0; batch < batches; ++batch) {
            std::vector<DriveDataTable> records;
            for (int row = 0; row < rowsPerBatch; ++row) {
                records.push_back(treeRecord(prefix + std::to_string(batch * rowsPerBatch + row), "root"));
            }
            drive.InsertDriveDataBatch(records);
        }
        --writing;
    };
    std::thread first(write, "a");
    std::thread second(write, "b");
    while (writing > 0) {
        EXPECT_EQ(drive.CountDriverData() % rowsPerBatch, 0);
    }
    first.join();
    second.join();
    EXPECT_EQ(drive.CountDriverData(), 2 * batches * rowsPerBatch);
    SqliteFile file(path(L"DriveModuleData.dat"), SqliteFile::Collation::NameCompare);
    EXPECT_EQ(file.value("PRAGMA integrity_check"), "'ok'");
}
