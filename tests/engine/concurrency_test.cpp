// Writers and readers that share one file: SQLite's locks and the engine's waiting are all there is between them.

#include "support/batches.h"
#include "support/process.h"
#include "support/storetest.h"

#include <atomic>
#include <thread>

using namespace testsupport;
using DatabaseService::DriverDBProviderBase;

namespace {

constexpr int batches = 15;
constexpr int rowsPerBatch = 40;

class Concurrency : public StoreTest {
protected:
    Concurrency() { m_drive.InitDatabase(); }

    /// Reads while the writers run: every transaction is seen whole or not at all.
    template <class Writers> void readWhile(Writers write)
    {
        std::atomic<bool> done = false;
        std::thread writers([&] {
            write();
            done = true;
        });
        while (!done) {
            EXPECT_EQ(m_drive.CountDriverData() % rowsPerBatch, 0);
        }
        writers.join();
    }

    void expectAllRowsOf(const std::vector<std::string>& prefixes)
    {
        SqliteFile file(path(L"DriveModuleData.dat"), SqliteFile::Collation::NameCompare);
        for (const std::string& prefix : prefixes) {
            EXPECT_EQ(file.value("SELECT count(*) FROM DriveDataTable WHERE fileId GLOB '" + prefix + "*'"),
                      std::to_string(batches * rowsPerBatch));
        }
        EXPECT_EQ(file.value("PRAGMA integrity_check"), "'ok'");
    }

    DriverDBProviderBase m_drive;
};

} // namespace

TEST_F(Concurrency, ThreadsOnOneProvider)
{
    readWhile([this] {
        std::thread first([this] { writeBatches(m_drive, "a", batches, rowsPerBatch); });
        writeBatches(m_drive, "b", batches, rowsPerBatch);
        first.join();
    });
    expectAllRowsOf({"a", "b"});
}

TEST_F(Concurrency, ProcessesOnOneFile)
{
    const auto run = [this](const std::string& prefix) {
        EXPECT_EQ(runProgram({WRITER_PROGRAM, platform::toUtf8(m_folder.path()), prefix, std::to_string(batches),
                              std::to_string(rowsPerBatch)}),
                  0);
    };
    readWhile([&] {
        std::thread first([&] { run("a"); });
        run("b");
        first.join();
    });
    expectAllRowsOf({"a", "b"});
}
