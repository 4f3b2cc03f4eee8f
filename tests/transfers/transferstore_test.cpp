#include "databaseservice/transdbconnthread.h"
#include "support/enginelines.h"
#include "support/observed.h"
#include "support/recordfields.h"
#include "support/storetest.h"

#include <limits>
#include <stdexcept>

using namespace testsupport;
using namespace DatabaseService;
using namespace DatabaseService::TransmissionDB;

namespace {

const EngineLines lines("transmission.dat");

using C = CompletedTaskProperty;
using D = DownloadTaskProperty;
using U = UploadTaskProperty;
using T = DbTransferTask;

// clang-format off
const RecordFields<C> completed{"CompletedTaskTable",
    FIELDS(C, &C::id, &C::fileName, &C::fileId, &C::totalLength, &C::localPath, &C::taskType, &C::endTime,
    &C::isFastTrans, &C::pranteID, &C::isMoveData)};

const RecordFields<D> download{"DownloadTaskTable",
    FIELDS(D, &D::id, &D::fileName, &D::relativePath, &D::fileId, &D::totalLength, &D::position, &D::sliceIdx,
    &D::sliceCount, &D::localPath, &D::taskType, &D::isFastTrans, &D::isMoveData, &D::RecordType)};

const RecordFields<U> upload{"UploadTaskTable",
    FIELDS(U, &U::id, &U::fileName, &U::fileId, &U::totalLength, &U::localPath, &U::taskStatus, &U::errorCode,
    &U::startTime, &U::transferId, &U::serverPath, &U::sliceIndex, &U::uploadOffset, &U::sliceInfo, &U::isBatch,
    &U::isMoveData)};

const RecordFields<T> transfer{"TransferTask",
    FIELDS(T, &T::UniqueId, &T::FileId, &T::FileName, &T::StartTime, &T::EndTime, &T::ErrorCode, &T::TimeoutLimit,
    &T::TransferSize, &T::TotalSize, &T::TaskStatus, &T::BatchCreateTime, &T::BatchIndex, &T::ModuleType,
    &T::TransferType, &T::LocalFilePath, &T::ParentId, &T::AssetId, &T::VersionId, &T::Hash, &T::UpdateTime,
    &T::SliceIndex, &T::UploadOffset, &T::ObjectBucketId, &T::RecordCursor, &T::ObsVersion, &T::Priority,
    &T::IsMoveData, &T::IsLoadedForSuccessList, &T::CloudFilePath, &T::ThumbnailUrl, &T::CloudBatch, &T::ExpandStr1,
    &T::ExpandStr2, &T::ExpandStr3, &T::ExpandInt1, &T::ExpandInt2, &T::ExpandInt3, &T::Expand)};
// clang-format on

struct TransferStore : StoreTest {
    TransferStore()
    {
        m_store.InitDatabase();
        m_store.CreateTransferTaskTable();
        m_store.trace.take();
        m_type.ModuleType = 1;
        m_type.TransferType = 2;
    }

    template <class Record> Rows rows(const RecordFields<Record>& fields) { return fields.rows(m_file); }

    /// Adds rows to `TransferTask` as a client does.
    void addTasks(const std::string& values)
    {
        m_store.ExecuteSQL("INSERT INTO TransferTask(UniqueId, ModuleType, TransferType, TaskStatus) VALUES " + values);
    }

    std::string ids() const { return m_file.value("SELECT group_concat(UniqueId) FROM TransferTask"); }

    Observed<TransDbConnThread> m_store{*TransDbConnThread::GetInstance()};
    SqliteFile m_file{path(L"transmission.dat")};
    TransTaskType m_type;
};

std::string idsOf(const std::vector<T>& tasks)
{
    return joined(mapped(tasks, [](const T& task) { return platform::toUtf8(task.UniqueId); }), "");
}

} // namespace

TEST_F(TransferStore, Schema)
{
    // `defaults` names the one column with a default, or stands for all numbers.
    const auto check = [&](const auto& fields, const std::string& defaults) {
        Rows expected;
        for (const auto& field : fields.all) {
            const bool key = expected.empty();
            const bool zero = !key && !field.text && (defaults == "all" || defaults == field.column);
            expected.push_back({textCell(field.column), field.text ? "'TEXT'" : "'INTEGER'", key ? "1" : "0",
                                zero ? "'0'" : "NULL", key ? "1" : "0"});
        }
        EXPECT_EQ(schemaOf(m_file, fields.table), expected);
    };
    check(completed, "all");
    check(download, "all");
    check(upload, "isMoveData");
    check(transfer, "none");
    EXPECT_EQ(m_file.value("SELECT group_concat(name) FROM sqlite_master WHERE sql LIKE '%AUTOINCREMENT%'"),
              "'CompletedTaskTable,DownloadTaskTable'");
}

TEST_F(TransferStore, TablesComeAndGo)
{
    EXPECT_TRUE(m_store.DropCompletedTaskTable() && m_store.DropDownloadTaskTable());
    EXPECT_TRUE(m_store.DropTransferTaskTable() && m_store.DropUploadTaskTable() && m_store.DropUploadTaskTable());
    EXPECT_EQ(m_file.tables(), "");
    EXPECT_TRUE(m_store.InitDatabase());
    EXPECT_EQ(m_file.tables(), "CompletedTaskTable,DownloadTaskTable,UploadTaskTable");
    EXPECT_TRUE(m_store.ExecuteSQL("DELETE FROM TransferTask"));
    EXPECT_TRUE(m_log.failuresWere({lines.prepare})) << "that table is not there yet";
}

// Each record comes back with all its members, in a batch that is one transaction, and an update rewrites its own row.
TEST_F(TransferStore, CompletedAndDownloadRowsKeepEveryMember)
{
    std::vector<C> finished{completed.filled(1), completed.filled(2), completed.filled(4)};
    std::vector<std::shared_ptr<D>> running;
    for (int type = 0; auto& task : finished) {
        task.taskType = type;
        running.push_back(std::make_shared<D>(download.filled(type)));
        running.back()->taskType = type++ % 2;
    }
    finished[2].auxText = "kept in the record alone";
    m_store.InsertCompletedTasks(finished);
    m_store.InsertDownloadTasks({running[0], nullptr, running[1], running[2]});
    EXPECT_TRUE(m_log.failuresWere({{"TransDbConnThread::InsertDownloadTasks", "a null record was left out"}}));
    EXPECT_EQ(m_store.trace.take().size(), 10U) << "two begins, two commits, six rows";

    Rows finishedRows;
    Rows runningRows;
    for (std::size_t at = 0; at < 3; ++at) {
        const int id = static_cast<int>(at) + 1; // the tables count from 1, whatever the records say
        finished[at].id = running[at]->id = id;
        finishedRows.push_back(completed.cells(finished[at]));
        runningRows.push_back(download.cells(*running[at]));
        EXPECT_EQ(download.cells(*m_store.GetDownloadTask(id)), runningRows.back());
    }
    EXPECT_EQ(rows(completed), finishedRows);
    EXPECT_EQ(rows(download), runningRows);
    std::vector<C> someFinished(1);
    std::vector<D> someRunning(1);
    EXPECT_TRUE(m_store.GetAllCompletedTasks(someFinished, 2, 1) && m_store.GetAllDownloadTasks(someRunning, 0));
    EXPECT_EQ(completed.cells(someFinished), completed.cells({C(), finished[1], finished[2]}));
    EXPECT_EQ(someFinished.back().auxText, "");
    EXPECT_EQ(download.cells(someRunning), download.cells({D(), *running[0], *running[2]}));
    EXPECT_EQ(m_store.GetDownloadTask(9), nullptr);

    C newFinished = completed.filled(7);
    D newRunning = download.filled(8);
    newFinished.id = newRunning.id = 2;
    m_store.UpdateCompletedTasks({newFinished, completed.filled(9)});
    m_store.UpdateDownloadTasks({newRunning, download.filled(9)});
    finishedRows[1] = completed.cells(newFinished);
    runningRows[1] = download.cells(newRunning);
    EXPECT_EQ(rows(completed), finishedRows);
    EXPECT_EQ(rows(download), runningRows);
    EXPECT_EQ(m_store.GetCompletedTasksLastRowId() + m_store.GetDownloadTasksLastRowId(), 6);
    EXPECT_EQ(m_store.CountDownloadTaskUnDone(), 3);
    m_store.DeleteCompletedTasks({1, 99});
    m_store.DeleteDownloadTasks({1, 99, 3});
    EXPECT_EQ(rows(completed), (Rows{finishedRows[1], finishedRows[2]}));
    EXPECT_EQ(rows(download), Rows{runningRows[1]});
}

TEST_F(TransferStore, UploadRowsKeepEveryMemberAndTheirId)
{
    const std::vector<U> tasks{upload.filled(3), upload.filled(3), upload.filled(2)};
    m_store.InsertUploadTasks(tasks);
    EXPECT_TRUE(m_log.failuresWere({lines.step, lines.bindMessage("UNIQUE constraint failed: UploadTaskTable.id")}));
    EXPECT_EQ(rows(upload), upload.cells({tasks[0], tasks[2]})) << "by id, each below zero";
    EXPECT_EQ(m_store.GetUploadTaskLastRowId(), 0);
    std::vector<U> read(1);
    m_store.GetAllUploadTaskProperties(read);
    EXPECT_EQ(upload.cells(read), upload.cells({U(), tasks[0], tasks[2]})) << "behind what the vector held";

    m_store.DeleteUploadTask(tasks[2].id);
    EXPECT_EQ(rows(upload), (Rows{upload.cells(tasks[0])}));
    m_store.DeleteUploadTask();
    EXPECT_EQ(rows(upload), Rows());
}

TEST_F(TransferStore, UploadUpdatesTouchExactlyTheirColumns)
{
    U before = upload.filled(1);
    before.isBatch = before.isMoveData = true;
    U after = before;
    m_store.InsertUploadTasks({before, upload.filled(2)});
    const auto check = [&] { EXPECT_EQ(rows(upload), upload.cells({upload.filled(2), after})); };
    m_store.UpdateUploadTaskStatus(before.id, after.taskStatus = 5, after.errorCode = -6);
    check();
    m_store.UpdateUploadTaskSliceInfo(before.id, after.sliceInfo = "\xE5\x90\x8D'; --");
    check();
    m_store.UpdateUploadTaskSliceIndex(before.id, after.sliceIndex = std::numeric_limits<std::int32_t>::min());
    check();
    m_store.UpdateUploadTaskUploadOffset(before.id, after.uploadOffset = std::numeric_limits<int64>::min());
    check();
}

TEST_F(TransferStore, LastIdsAreCutAndZeroWithoutRows)
{
    EXPECT_EQ(m_store.GetCompletedTasksLastRowId(), 0);
    EXPECT_EQ(m_store.GetDownloadTasksLastRowId(), 0);
    m_file.exec("INSERT INTO CompletedTaskTable(id) VALUES (4294967301);"
                "INSERT INTO DownloadTaskTable(id) VALUES (2147483648)");
    EXPECT_EQ(m_store.GetCompletedTasksLastRowId(), 5);
    EXPECT_EQ(m_store.GetDownloadTasksLastRowId(), std::numeric_limits<int>::min());
    m_store.DropDownloadTaskTable();
    EXPECT_EQ(m_store.GetDownloadTasksLastRowId() + m_store.CountDownloadTaskUnDone(), 0);
    EXPECT_TRUE(m_log.failuresWere({lines.prepare, lines.prepare}));
}

TEST_F(TransferStore, OddCellsReadAsTheMembersKind)
{
    m_file.exec("INSERT INTO CompletedTaskTable(id, isFastTrans, isMoveData, taskType) VALUES (1, 4294967296, -1, 7);"
                "INSERT INTO CompletedTaskTable VALUES (2, NULL, NULL, NULL, NULL, 7, NULL, NULL, NULL, NULL);"
                "INSERT INTO CompletedTaskTable VALUES (3, 'a', 5, '12b', '', 7, 2.9, '1x', 6, 'none');"
                "INSERT INTO TransferTask(UniqueId, TotalSize) VALUES ('id', 8)");
    std::vector<C> tasks;
    m_store.GetAllCompletedTasks(tasks, 7, 7);
    EXPECT_EQ(completed.cells(tasks),
              (Rows{{"1", "''", "''", "0", "''", "7", "0", "1", "''", "1"},
                    {"2", "''", "''", "0", "''", "7", "0", "0", "''", "0"},
                    {"3", "'a'", "'5'", "12", "''", "7", "2", "1", "'6'", "0"}}))
        << "flags are tested before numbers are cut";
    T task = transfer.filled(1);
    std::wstring id = L"id";
    EXPECT_TRUE(m_store.GetTask(id, task));
    T expected{};
    expected.UniqueId = id;
    expected.TotalSize = 8;
    EXPECT_EQ(transfer.cells(task), transfer.cells(expected)) << "every member is written";
}

TEST_F(TransferStore, TasksAreUpdatedWholeAndNeverAdded)
{
    const auto withId = [](int seed, const wchar_t* id) {
        T task = transfer.filled(seed);
        task.UniqueId = id;
        return task;
    };
    addTasks("('a',1,2,0), ('b',1,2,0), ('c',1,2,0)");
    m_store.trace.take();
    std::list<T> tasks{withId(1, L"a"), withId(2, L"unknown"), withId(3, L"b")};
    m_store.UpdateTask(tasks);
    EXPECT_EQ(m_store.trace.take().size(), 5U);
    m_store.UpdateTaskStatus(withId(4, L"c"));
    const Rows expected = transfer.cells({tasks.front(), tasks.back(), withId(4, L"c")});
    EXPECT_EQ(rows(transfer), expected);

    T read{};
    EXPECT_TRUE(m_store.GetTask(tasks.back().UniqueId, read));
    EXPECT_EQ(transfer.cells(read), expected[1]);
    EXPECT_TRUE(m_store.GetTask(tasks.front().FileId, read));
    EXPECT_EQ(transfer.cells(read), expected[1]) << "an unknown id leaves the task";
}

TEST_F(TransferStore, StatusThreeIsNotActive)
{
    addTasks("('a',1,2,0), ('b',1,2,3), ('c',1,2,NULL), ('d',1,9,0), ('e',9,2,0), ('f',1,2,-3), ('g',1,9,3)");
    m_file.exec("UPDATE TransferTask SET FileId = 'F', FileName = 'N', EndTime = 1 << 40, TotalSize = 2 << 40, "
                "LocalFilePath = 'L', ParentId = 'P', ErrorCode = 8");
    std::vector<T> tasks(1);
    EXPECT_TRUE(m_store.GetAllTask(tasks, 1, 2));
    m_store.LoadDbSQL(m_type, tasks);
    EXPECT_EQ(idsOf(tasks), "afaf");

    tasks.clear();
    EXPECT_TRUE(m_store.GetAllCompleteTask(tasks, 1, 3));
    EXPECT_EQ(idsOf(tasks), "bg");
    std::vector<std::string> cells = transfer.cells(T{});
    const std::pair<std::size_t, const char*> filled[] = {{0, "'g'"},           {1, "'F'"},           {2, "'N'"},
                                                          {4, "1099511627776"}, {8, "2199023255552"}, {13, "9"},
                                                          {14, "'L'"},          {15, "'P'"}};
    for (const auto& [column, cell] : filled) {
        cells[column] = cell;
    }
    EXPECT_EQ(transfer.cells(tasks.back()), cells) << "eight members and no more";

    T gone{};
    gone.UniqueId = L"a";
    m_store.DeleteTask(gone);
    m_store.DeleteTasks(L"d");
    m_store.DeleteTasks(-3);
    EXPECT_EQ(ids(), "'b,c,e,g'");
    EXPECT_TRUE(m_store.DeleteTasksFromTransferTask(3));
    EXPECT_EQ(ids(), "'c,e'");
}

TEST_F(TransferStore, LoadedTasksAreHandedOverByAddress)
{
    addTasks("('a',1,2,0), ('b',1,2,3), ('c',1,2,4)");
    std::string visited;
    const auto visit = [&](uint64 context, int64 address) {
        EXPECT_EQ(context, reinterpret_cast<std::uintptr_t>(&visited));
        EXPECT_EQ(m_store.closed, m_store.opened) << "no connection is open";
        visited += platform::toUtf8(reinterpret_cast<const T*>(static_cast<std::intptr_t>(address))->UniqueId);
    };
    m_store.LoadDbSQL(m_type, &visited, visit);
    EXPECT_EQ(visited, "ac");

    const auto fail = [](uint64, int64) { throw std::runtime_error("the callback's own"); };
    EXPECT_THROW(m_store.LoadDbSQL(m_type, nullptr, fail), std::runtime_error);
    const int opened = m_store.opened;
    EXPECT_EQ(m_store.closed, opened);
    m_store.LoadDbSQL(m_type, nullptr, {});
    EXPECT_EQ(m_store.opened, opened);
}

TEST_F(TransferStore, FailedReadsAreTrueAndEmpty)
{
    useFolder(path(L"missing"));
    m_log.take();
    std::vector<C> finished;
    std::vector<D> running;
    std::vector<U> uploads;
    std::vector<T> tasks;
    T task = transfer.filled(1);
    EXPECT_TRUE(m_store.GetAllCompletedTasks(finished, 1, 2) && m_store.GetAllDownloadTasks(running, 1) &&
                m_store.GetAllTask(tasks, 1, 2) && m_store.GetAllCompleteTask(tasks, 1, 2) &&
                m_store.GetTask(task.UniqueId, task) && m_store.DeleteTasksFromTransferTask(1) &&
                m_store.ExecuteSQL("nonsense"));
    m_store.GetAllUploadTaskProperties(uploads);
    EXPECT_EQ(m_store.GetDownloadTask(1), nullptr);
    EXPECT_TRUE(finished.empty() && running.empty() && uploads.empty() && tasks.empty());
    EXPECT_EQ(transfer.cells(task), transfer.cells(transfer.filled(1)));
    EXPECT_FALSE(m_store.DropUploadTaskTable());
    EXPECT_EQ(m_log.take().size(), 10U * 3) << "each open and its failure";
}

TEST(TransferRecords, FreshRecordsAndUtf8Views)
{
    const std::vector<std::string> fresh{"-1", "''", "''", "0", "''", "0", "0", "0", "''", "0"};
    EXPECT_EQ(completed.cells(C()), fresh);
    EXPECT_EQ(D().id, -1);
    EXPECT_EQ(D().RecordType + TransTaskType().ModuleType + TransTaskType().TransferType + TransTaskVec().TaskList, 0);
    D running;
    running.SetFileNameU8("1\xE5\x90\x8D");
    running.SetLocalPathU8("2\xE5\x90\x8D");
    running.SetRelativePathU8("3\xE5\x90\x8D");
    C finished;
    finished.SetFileNameU8("4\xE5\x90\x8D");
    finished.SetLocalPathU8("5\xE5\x90\x8D");
    EXPECT_EQ(running.fileName + running.localPath + running.relativePath + finished.fileName + finished.localPath,
              L"1\u540D2\u540D3\u540D4\u540D5\u540D");
    EXPECT_EQ(running.GetFileNameU8() + running.GetLocalPathU8() + running.GetRelativePathU8() +
                  finished.GetFileNameU8() + finished.GetLocalPathU8(),
              "1\u540D2\u540D3\u540D4\u540D5\u540D");
}
