// The synchronous front of the transfer store: what it hands on, and how often that opens the file.

#include "databaseservice/transdbconn.h"
#include "databaseservice/transdbconnthread.h"
#include "support/storetest.h"

#include <algorithm>
#include <initializer_list>

using namespace testsupport;
using namespace DatabaseService::TransmissionDB;

namespace {

using Front = TransDbConn;
using Completed = CompletedTaskProperty;
using Download = DownloadTaskProperty;
using Upload = UploadTaskProperty;

struct TransferFront : StoreTest {
    /// How often `call` opens the file, whatever else the log says.
    template <class Call> std::ptrdiff_t opens(Call call)
    {
        m_log.take();
        call();
        return std::ranges::count_if(m_log.take(),
                                     [](auto& line) { return line.find(" OpenDataBase:") != std::string::npos; });
    }

    SqliteFile file() { return SqliteFile(path(L"transmission.dat")); }
};

template <class Record> auto list(std::initializer_list<std::shared_ptr<Record>> records)
{
    return std::make_shared<std::vector<std::shared_ptr<Record>>>(records);
}

/// Six writes with null records in three of them. They leave the rows 1 and 3, renamed, and two of the types 8 and 9.
template <class Record, class One, class List>
void writeTable(One insertOne, List insert, One updateOne, List update, One deleteOne, List remove)
{
    const auto task = [](int id, const wchar_t* name = L"", int type = 0) {
        auto made = std::make_shared<Record>();
        made->id = id;
        made->fileName = name;
        made->taskType = type;
        return made;
    };
    insertOne(task(-1, L"a"));
    insert(list<Record>({task(7, L"b"), nullptr, task(7, L"c"), task(7), task(7), task(7, L"f", 8), task(7, L"g", 9)}));
    updateOne(task(1, L"A"));
    update(list<Record>({task(2, L"B"), nullptr, task(3, L"C")}));
    deleteOne(task(2));
    remove(list<Record>({task(-1), task(4), nullptr, task(5)}));
}

/// One write of each kind. 23 of them, and one question for a row's id.
void writeAll()
{
    writeTable<Completed>(Front::InsertCompletedTask, Front::InsertCompletedTasks, Front::UpdateCompletedTask,
                          Front::UpdateCompletedTasks, Front::DeleteCompletedTask, Front::DeleteCompletedTasks);
    writeTable<Download>(Front::InsertDownloadTask, Front::InsertDownloadTasks, Front::UpdateDownloadTask,
                         Front::UpdateDownloadTasks, Front::DeleteDownloadTask, Front::DeleteDownloadTasks);
    Front::DeleteAllCompletedTasks(8, 9);
    Front::DeleteAllDownloadTasks(9);
    auto upload = std::make_shared<Upload>();
    int rowId = upload->id = 3;
    Front::InsertUploadTask(*upload, rowId);
    EXPECT_EQ(rowId, 0);
    upload->id = 4;
    Front::InsertUploadTasks(list<Upload>({nullptr, upload}));
    Front::UpdateUploadTaskStatus(4, 5, 6);
    Front::UpdateUploadTaskSliceInfo(4, "info");
    Front::UpdateUploadTaskSliceIndex(4, 7);
    Front::UpdateUploadTaskUploadOffset(4, 8);
    Front::DeleteUploadTask(3);
    auto task = std::make_shared<DbTransferTask>();
    task->UniqueId = L"a";
    Front::DeleteTask(task);
    Front::DeleteTasks(4);
}

} // namespace

TEST_F(TransferFront, ReadsCreateTheTablesFirst)
{
    std::vector<Completed> finished;
    std::vector<Download> running;
    std::vector<Upload> uploads;
    std::vector<DbTransferTask> tasks;
    DbTransferTask task{};
    const std::function<bool()> reads[] = {
        [&] { return Front::GetAllCompletedTasks(finished, 1, 2); },
        [&] { return Front::GetDownloadTask(1) == nullptr; },
        [&] { return Front::GetAllDownloadTasks(running, 1); },
        [&] { return Front::CountDownloadTaskUnDone() == 0; },
        [&] { return Front::GetAllUploadTaskProperties(uploads); },
        [&] { return Front::GetAllTask(tasks, 1, 2); },
        [&] { return Front::GetAllCompleteTask(tasks, 1, 2); },
        [&] { return Front::DeleteTasksFromTransferTask(1); },
        [&] { return Front::GetTask(task.UniqueId, task); },
    };
    for (int number = 1; const auto& read : reads) {
        SCOPED_TRACE(number++);
        EXPECT_EQ(opens([&] { EXPECT_TRUE(read()); }), 5);
        EXPECT_EQ(file().tables(), "CompletedTaskTable,DownloadTaskTable,TransferTask,UploadTaskTable");
        EXPECT_EQ(opens([] { EXPECT_TRUE(Front::DeleteTable(L"elsewhere")); }), 8);
        EXPECT_EQ(file().tables(), "");
    }
}

TEST_F(TransferFront, WritesReachTheRowsThatTheyName)
{
    EXPECT_EQ(opens([] { writeAll(); }), 24);
    EXPECT_EQ(file().tables(), "") << "writes create nothing";
    EXPECT_EQ(Front::CountDownloadTaskUnDone(), 0);
    TransDbConnThread::GetInstance()->ExecuteSQL(
        "INSERT INTO TransferTask(UniqueId, ModuleType, TransferType, TaskStatus, FileName) VALUES ('a',1,2,0,'n'), "
        "('b',1,2,3,'n'), ('c',1,2,4,'n'), ('d',1,2,5,'n'), ('e',1,9,5,'n')");
    writeAll();
    const std::string left = "a null record was left out";
    EXPECT_TRUE(m_log.failuresWere({{"TransDbConn::InsertCompletedTasks", left},
                                    {"TransDbConn::UpdateCompletedTasks", left},
                                    {"TransDbConnThread::InsertDownloadTasks", left},
                                    {"TransDbConn::UpdateDownloadTasks", left},
                                    {"TransDbConn::InsertUploadTasks", left}}));
    EXPECT_EQ(file().value("SELECT group_concat(id || fileName) FROM CompletedTaskTable"), "'1A,3C'");
    EXPECT_EQ(file().value("SELECT group_concat(id || fileName) FROM DownloadTaskTable"), "'1A,3C,6f'");
    EXPECT_EQ(file().value("SELECT id || taskStatus || errorCode || sliceInfo || sliceIndex || uploadOffset "
                           "FROM UploadTaskTable"),
              "'456info78'");
    EXPECT_EQ(file().value("SELECT group_concat(UniqueId) FROM TransferTask"), "'b,d,e'");

    std::vector<Completed> finished;
    std::vector<Download> running;
    std::vector<DbTransferTask> tasks;
    EXPECT_TRUE(Front::GetAllCompletedTasks(finished, 9, 0) && Front::GetAllDownloadTasks(running, 8));
    EXPECT_TRUE(Front::GetAllTask(tasks, 1, 2) && Front::GetAllCompleteTask(tasks, 1, 3));
    EXPECT_EQ(finished.size() * running.size() * tasks.size(), 2U * 1 * 2);
    EXPECT_EQ(Front::GetDownloadTask(3)->fileName, L"C");

    // Tasks are updated in memory only.
    DbTransferTask task = tasks[0];
    task.FileName = L"new";
    EXPECT_EQ(opens([&] { Front::UpdateTask(task), Front::UpdateTaskStatus(task), Front::UpdateTaskStatus(task); }), 0);
    EXPECT_TRUE(Front::GetTask(task.UniqueId, task));
    EXPECT_EQ(task.FileName, L"n");
    EXPECT_TRUE(Front::DeleteTasksFromTransferTask(5));
    Front::DeleteAllUploadTasks();
    EXPECT_EQ(file().value("SELECT (SELECT count(*) FROM TransferTask) || (SELECT count(*) FROM UploadTaskTable)"),
              "'10'");
}

TEST_F(TransferFront, NullsIdsOfNoRowAndFixedAnswersOpenNothing)
{
    const auto noRow = std::make_shared<Completed>();
    const auto noDownload = std::make_shared<Download>();
    Upload upload{};
    int sum = upload.id = 7;
    EXPECT_EQ(opens([&] {
                  Front::InsertCompletedTask(nullptr), Front::InsertCompletedTasks(nullptr);
                  Front::UpdateCompletedTask(nullptr), Front::UpdateCompletedTasks(nullptr);
                  Front::DeleteCompletedTask(nullptr), Front::DeleteCompletedTasks(nullptr);
                  Front::InsertDownloadTask(nullptr), Front::InsertDownloadTasks(nullptr);
                  Front::UpdateDownloadTask(nullptr), Front::UpdateDownloadTasks(nullptr);
                  Front::DeleteDownloadTask(nullptr), Front::DeleteDownloadTasks(nullptr);
                  Front::DeleteCompletedTask(noRow), Front::DeleteDownloadTask(noDownload);
                  Front::InsertUploadTasks(nullptr), Front::DeleteUploadTask(-1), Front::DeleteTask(nullptr);
                  Front::CloseDB();
                  EXPECT_FALSE(Front::InitDB(L"path", true) || Front::ResetDB(L"path"));
                  EXPECT_EQ(Front::GetCompletedTask(1), nullptr);
                  EXPECT_EQ(Front::CountCompletedTaskProperties() + Front::CountUploadTaskProperties(), 0);
                  EXPECT_EQ(Front::CountUploadTaskUnDone(), 0);
                  EXPECT_FALSE(Front::GetSumOfTotalLength(sum) || Front::GetUploadTaskProperty(1, upload));
                  EXPECT_FALSE(Front::UpdateUploadTaskProperty(upload));
              }),
              0);
    EXPECT_EQ(sum + upload.id, 14);
}
