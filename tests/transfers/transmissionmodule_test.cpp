// The transfer store's module: from a post to its rows, its lines in the log, and its end.

#include "databaseservice/transdbconn.h"
#include "databaseservice/transdbconnthread.h"
#include "databaseservice/transmissiondbmodule.h"
#include "support/enginelines.h"
#include "support/filebytes.h"
#include "support/heldmodule.h"
#include "support/lists.h"
#include "support/process.h"
#include "support/storetest.h"

#include <functional>

using namespace testsupport;
using namespace DatabaseService::TransmissionDB;
using DatabaseService::int64;

namespace {

using M = TransmissionDBModule;
using Module = HeldModule<M>;
using Task = DbTransferTask;
template <class Record> using List = std::list<std::shared_ptr<Record>>;
using C = CompletedTaskProperty;
using D = DownloadTaskProperty;
using U = UploadTaskProperty;

template <class Record> std::shared_ptr<Record> row(int id, const char* name)
{
    auto made = std::make_shared<Record>();
    made->id = id;
    made->fileName.assign(name, name + std::char_traits<char>::length(name));
    return made;
}

Task task(const wchar_t* id)
{
    Task made{};
    made.UniqueId = made.FileName = id;
    return made;
}

/// Calls a form that takes a list; tells whether it has emptied that.
template <class Element>
auto list(void (M::*form)(std::list<Element>&), std::type_identity_t<std::list<Element>> elements)
{
    return [form, elements](Module& module) {
        auto given = elements;
        (module.*form)(given);
        return given.empty();
    };
}

template <class Value> auto one(void (M::*form)(Value), std::type_identity_t<Value> value)
{
    return [form, value](Module& module) { return (module.*form)(value), true; };
}

ExpectedLine line(const std::string& function, const std::string& message)
{
    return {"TransmissionDBModule::" + function, message, 262147};
}

const ExpectedLine opened{"DatabaseOperationBase::OpenDatabase", "OpenDataBase:*", 1};
const std::string leftOut = "a null record was left out";

const std::string addTasks =
    "INSERT INTO TransferTask(UniqueId, TaskStatus) VALUES ('a',1), ('b',3), ('c',4), ('d',2), ('e',2), ('f',2)";

/// A post, what its line tells before the outcome, and the handler's line.
struct Post {
    std::function<bool(Module&)> call;
    const char* function;
    std::string posted;
    const char* handler;
    std::string handled;
    bool hasNull = false;
};

// clang-format off
const Post posts[] = {
    {[](Module& m) { return m.ExecuteSQL(addTasks), true; }, "ExecuteSQL", "m_msgExecuteSQL base [" + addTasks + "] ",
     "NotifyExecuteSQL", "NotifyExecuteSQL Database op taskStatus[" + addTasks + "]"},
    {list<int>(&M::DeleteCompletedTask, {2, -1, 77}), "DeleteCompletedTask", "delete op size[3] ",
     "NotifyDeleteCompleted", "insert Database op size[3] excute [base:3]"},
    {one<int>(&M::DeleteCompletedTask, 4), "DeleteCompletedTask", "delete op size[1] ",
     "NotifyDeleteCompleted", "insert Database op size[1] excute [base:1]"},
    {list(&M::UpdateCompletedTask, {row<C>(1, "A"), {}, row<C>(3, "C")}), "UpdateCompletedTask", "update op size[3] ",
     "NotifyUpdateCompleted", "insert Database op size[2] excute [base:3]", true},
    {one<std::shared_ptr<C>>(&M::UpdateCompletedTask, row<C>(3, "X")), "UpdateCompletedTask", "update op size[1] ",
     "NotifyUpdateCompleted", "insert Database op size[1] excute [base:1]"},
    {list<int>(&M::DeleteDownloadTask, {}), "DeleteDownloadTask", "delete op size[0] ",
     "NotifyDeleteDownload", "insert Database op size[0] excute [base:0]"},
    {one<int>(&M::DeleteDownloadTask, 4), "DeleteDownloadTask", "delete op size[1] ",
     "NotifyDeleteDownload", "insert Database op size[1] excute [base:1]"},
    {list(&M::UpdateDownloadTask, {row<D>(1, "A"), row<D>(3, "C")}), "UpdateDownloadTask", "update op size[2] ",
     "NotifyUpdateDownload", "insert Database op size[2] excute [base:2]"},
    {one<std::shared_ptr<D>>(&M::UpdateDownloadTask, nullptr), "UpdateDownloadTask", "update op size[1] ",
     "NotifyUpdateDownload", "insert Database op size[0] excute [base:1]", true},
    {list(&M::InsertUploadTask, {row<U>(5, "E"), row<U>(6, "F")}), "InsertUploadTask", "update base size[2] ",
     "NotifyInsetUpload", "insert Database op size[2] excute [base:2]"},
    {one<std::shared_ptr<U>>(&M::InsertUploadTask, row<U>(7, "G")), "InsertUploadTask", "update base size[1] ",
     "NotifyInsetUpload", "insert Database op size[1] excute [base:1]"},
    {list(&M::UpdateTask, {task(L"a"), task(L"unknown")}), "UpdateTask", "update op size[2] ", nullptr, {}},
    {one(&M::DeleteTasks, 3), "DeleteTasks", "delete op size[3] ",
     "NotifyDeleteTasks", "insert Database op taskStatus[3]"},
    {one(&M::DeleteTasksFromTransferTask, 4), "DeleteTasksFromTransferTask", "delete op size[4] ",
     "NotifyDeleteTasksFromTransferTask", "insert Database op status[4]"},
    {one(&M::DeleteTasks, -5), "DeleteTasks", "delete op size[4294967291] ",
     "NotifyDeleteTasks", "insert Database op taskStatus[-5]"},
    {one(&M::DeleteTask, std::make_shared<Task>(task(L"d"))), "DeleteTask", "delete op size[*",
     "NotifyDeleteTask", "insert Database op size[1] excute [base:1]"},
    {one(&M::DeleteTaskCompleteTask, L"e"), "DeleteTaskCompleteTask", "delete op size[*",
     "NotifyDeleteTaskCompleted", "insert Database op taskStatus[*"},
};
// clang-format on

std::vector<ExpectedLine> postLines(const char* outcome)
{
    return mapped(posts, [&](const Post& post) {
        return line(post.function, post.posted.ends_with('*') ? post.posted : post.posted + outcome);
    });
}

struct TransmissionModule : StoreTest {
    std::string names(const char* table) const
    {
        return SqliteFile(m_path).value(std::string("SELECT group_concat(id || fileName) FROM ") + table);
    }

    const std::filesystem::path m_path = path(L"transmission.dat");
};

} // namespace

// Everything is posted while the thread is held, and handled while another connection has the file locked.
TEST_F(TransmissionModule, PostsReturnAtOnceAndEndInTheirRowsInOrder)
{
    TransDbConn::DeleteTasksFromTransferTask(0); // lays down all tables
    SqliteFile other(m_path);
    other.exec("INSERT INTO CompletedTaskTable(fileName) VALUES ('1'), ('2'), ('3'), ('4');"
               "INSERT INTO DownloadTaskTable(fileName) VALUES ('1'), ('2'), ('3'), ('4')");
    m_log.take();
    Module module;
    EXPECT_TRUE(m_log.linesWere({line("TransmissionDBModule", "database Module this=0x*")}));
    module.hold();
    std::vector<ExpectedLine> handled;
    for (const Post& post : posts) {
        EXPECT_TRUE(post.call(module)) << post.function;
        if (post.hasNull) {
            handled.push_back({"TransmissionDBModule::" + std::string(post.handler), leftOut});
        }
        if (post.handler != nullptr) {
            handled.push_back(line(post.handler, post.handled));
        }
        handled.push_back(opened);
    }
    EXPECT_TRUE(m_log.linesWere(postLines("success"))) << "and no file was opened";

    other.exec("BEGIN EXCLUSIVE");
    module.goOn();
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    other.exec("ROLLBACK");
    module.end();
    EXPECT_TRUE(m_log.linesWere(handled));
    EXPECT_EQ(names("CompletedTaskTable") + names("DownloadTaskTable") + names("UploadTaskTable"),
              "'1A,3X''1A,22,3C''5E,6F,7G'");
    EXPECT_EQ(other.value("SELECT group_concat(UniqueId || ifnull(FileName, '')) FROM TransferTask"), "'aa,f'");
}

TEST_F(TransmissionModule, IdsFollowTheOrderOfBindingAndNoPayloadIsNothing)
{
    Module module;
    module.OnUserLogin();
    m_log.take();
    const auto of = [](auto* payload) { return static_cast<int64>(reinterpret_cast<std::intptr_t>(payload)); };
    const auto ids = [&] { return of(new std::list<int>); };
    constexpr unsigned quit = Module::firstBoundMessage + 10;
    for (unsigned message = Module::firstBoundMessage; message < quit + 4; ++message) {
        EXPECT_TRUE(message == quit || module.TryPostThreadMessage(message, 0, 0));
    }
    module.hold();
    EXPECT_TRUE(m_log.linesWere({}));
    for (unsigned message = Module::firstBoundMessage;
         const int64 payload : {of(new List<C>), ids(), of(new List<C>), of(new List<D>), ids(), of(new List<D>),
                                of(new std::list<Task>), of(new int(5)), of(new List<U>), of(new std::wstring),
                                int64{0}, of(new std::string("SELECT '%s%n'")), of(new int(-6)), of(new List<Task>)}) {
        EXPECT_TRUE(module.TryPostThreadMessage(message++, 0, payload));
    }
    module.goOn();
    CommonAbility::WaitForThread(module); // the quit message is among them
    std::string order;
    for (const std::string& text : m_log.take()) {
        if (const std::size_t at = text.find("::Notify"); at != std::string::npos) {
            order += text.substr(at + 8, text.find(": ") - at - 8) + ' ';
        }
    }
    EXPECT_EQ(order,
              "InsertCompleted DeleteCompleted UpdateCompleted InsertDownload DeleteDownload UpdateDownload "
              "DeleteTasks InsetUpload DeleteTaskCompleted QuitApp ExecuteSQL DeleteTasksFromTransferTask "
              "DeleteTask ")
        << "and UpdateTask, which has no line";
}

TEST_F(TransmissionModule, InsertsAndReadsDoNotWaitForTheThread)
{
    Module module;
    module.hold();
    m_log.take();
    std::vector<C> finished;
    std::vector<D> running;
    std::vector<Task> tasks;
    Task wanted{};
    EXPECT_TRUE(module.GetAllCompletedTasks(finished, 0, 5) && module.GetAllDownloadTasks(running, 0) &&
                module.GetAllTask(tasks, 0, 0) && module.GetAllCompleteTask(tasks, 0, 0) &&
                module.GetTask(wanted.UniqueId, wanted));
    module.LoadDbSQL({}, tasks), module.LoadDbSQL({}, nullptr, [](auto, auto) { throw 5; });
    module.DeleteAllCompletedTasks(5, 6), module.DeleteAllDownloadTasks(5);
    EXPECT_EQ(m_log.take().size(), 9U * 2) << "each opens the file, creates no table, and fails";

    module.OnUserLogin();
    EXPECT_TRUE(module.ExecuteSQL("DELETE FROM CompletedTaskTable"));
    m_log.take();
    List<C> finishedTasks{row<C>(9, "a"), {}, row<C>(9, "b")};
    List<D> runningTasks{row<D>(9, "a"), {}, row<D>(9, "b")};
    module.InsertCompletedTask(finishedTasks), module.InsertCompletedTask(row<C>(9, "c"));
    module.InsertDownloadTask(runningTasks), module.InsertDownloadTask(row<D>(9, "c"));
    EXPECT_TRUE(finishedTasks.empty() && runningTasks.empty());
    std::vector<ExpectedLine> expected;
    for (const std::string handler : {"NotifyInsertCompleted", "NotifyInsertDownload"}) {
        expected.insert(expected.end(),
                        {{"TransmissionDBModule::" + handler, leftOut},
                         line(handler, "insert Database op size[2] excute [base:3]"),
                         opened,
                         line(handler, "insert Database op size[1] excute [base:1]"),
                         opened});
    }
    EXPECT_TRUE(m_log.linesWere(expected));
    EXPECT_TRUE(module.GetAllCompletedTasks(finished, 0, 5) && module.GetAllDownloadTasks(running, 0));
    EXPECT_EQ(finished.size() * running.size(), 9U);
    module.goOn();
    module.StopWork();
    EXPECT_EQ(names("CompletedTaskTable"), "NULL") << "posted before, written after";
}

TEST_F(TransmissionModule, WritesToTheFileThatTheOtherWayInReads)
{
    TransDbConnThread& store = *TransDbConnThread::GetInstance();
    store.SetDatabasePath(L"other.dat");
    Module module;
    module.OnUserLogin();
    module.InsertCompletedTask(row<C>(9, "a"));
    EXPECT_EQ(store.GetCompletedTasksLastRowId(), 1);
    EXPECT_FALSE(std::filesystem::exists(m_path));
    store.SetDatabasePath(L"transmission.dat");
}

TEST_F(TransmissionModule, AStoppedModuleTakesNothing)
{
    for (const bool itself : {false, true}) {
        Module module;
        const unsigned stop = module.BindMessage([&](auto, auto) { module.StopWork(); });
        // Before the log-in, so without a table; of no sense; without a statement.
        EXPECT_TRUE(module.ExecuteSQL("DELETE FROM TransferTask") && module.ExecuteSQL("no") && module.ExecuteSQL(""));
        module.DeleteTask(nullptr);
        module.ResetDB(), module.OnInit(), module.OnIntervalCheck(), module.OnUserLogout();
        if (itself) {
            EXPECT_TRUE(module.TryPostThreadMessage(stop, 0, 0));
            CommonAbility::WaitForThread(module);
        } else {
            module.StopWork();
        }
        const ExpectedLine prepare = EngineLines("transmission.dat").prepare;
        EXPECT_TRUE(m_log.failuresWere({prepare, prepare, {"TransmissionDBModule::NotifyDeleteTask", leftOut}}));
        for (const Post& post : posts) {
            EXPECT_TRUE(post.call(module)) << post.function;
        }
        EXPECT_TRUE(m_log.linesWere(postLines("failed")));
        EXPECT_FALSE(module.ExecuteSQL(""));
        module.StopWork();
        EXPECT_TRUE(m_log.linesWere(
            {line("ExecuteSQL", "m_msgExecuteSQL base [] failed"), line("StopWork", "send m_msgQuitApp fail")}));
    }
}

// Processes that exit while the modules may be busy; see the program.
TEST_F(TransmissionModule, ProcessesExitAroundTheModules)
{
    for (const std::string made : {"tf", "ft"}) {
        for (const std::string stopped : {"", "t", "ft"}) {
            SCOPED_TRACE("made " + made + ", stopped " + stopped);
            const std::string count = stopped.empty() ? "2000" : "20"; // enough to be busy at the end
            const std::string folder = platform::toUtf8(m_folder.path());
            ASSERT_EQ(runProgram({EXIT_PROGRAM, folder, made, stopped, count}, {}, path(L"errors")), 0);
            EXPECT_EQ(bytesOf(path(L"errors")), "") << "a sanitizer may be too late for the exit code";
            SqliteFile transfers(m_path);
            SqliteFile shortcuts(path(L"FastAccess.dat"));
            EXPECT_EQ(transfers.value("PRAGMA integrity_check") + shortcuts.value("PRAGMA integrity_check"),
                      "'ok''ok'");
            EXPECT_TRUE(stopped.empty() || transfers.value("SELECT count(*) FROM UploadTaskTable") == count);
            EXPECT_TRUE(stopped.size() < 2 || shortcuts.value("SELECT count(*) FROM FastAccess") == count);
            transfers.exec("DELETE FROM UploadTaskTable");
            shortcuts.exec("DELETE FROM FastAccess");
        }
    }
}
