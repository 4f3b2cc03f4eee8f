#include "databaseservice/transmissiondbmodule.h"

#include "databaseservice/handover/modulemessages.h"
#include "databaseservice/handover/nullrecords.h"
#include "databaseservice/korvlog.h"
#include "databaseservice/transdbconnthread.h"
#include "platform/neverdestroyed.h"

#include <type_traits>
#include <utility>

namespace DatabaseService::TransmissionDB {

namespace {

using CompletedList = std::list<std::shared_ptr<CompletedTaskProperty>>;
using DownloadList = std::list<std::shared_ptr<DownloadTaskProperty>>;
using UploadList = std::list<std::shared_ptr<UploadTaskProperty>>;
using TaskList = std::list<std::shared_ptr<DbTransferTask>>;

template <class Value> struct PostLines {
    LogFormat<Value> success;
    LogFormat<Value> failure;
};

constexpr PostLines<unsigned> deleteLines{"delete op size[%u] success", "delete op size[%u] failed"};
constexpr PostLines<unsigned> updateLines{"update op size[%u] success", "update op size[%u] failed"};
constexpr PostLines<unsigned> uploadLines{"update base size[%u] success", "update base size[%u] failed"};
constexpr PostLines<const char*> sqlLines{"m_msgExecuteSQL base [%s] success", "m_msgExecuteSQL base [%s] failed"};

constexpr KorvLog log{1, 262147, "transmissiondbmodule"};

// Some lines tell where the value lay and not the value; this much of an address is what their formats have room for.
unsigned placeOf(const void* value)
{
    return static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(value));
}

TransDbConnThread& store()
{
    return *TransDbConnThread::GetInstance();
}

// `value` is what the lines tell.
template <class Payload, class Value>
bool post(TransmissionDBModule& module, unsigned message, std::unique_ptr<Payload> payload, int line,
          const char* function, const PostLines<Value>& lines, Value value)
{
    if (postPayload(module, message, 0, payload)) {
        log(line, function, lines.success, value);
        return true;
    }
    log(line, function, lines.failure, value);
    return false;
}

template <class Element> std::unique_ptr<std::list<Element>> movedOut(std::list<Element>& list)
{
    auto moved = std::make_unique<std::list<Element>>();
    moved->swap(list);
    return moved;
}

template <class Element>
void postList(TransmissionDBModule& module, unsigned message, std::list<Element>& list, int line, const char* function,
              const PostLines<unsigned>& lines)
{
    const auto size = static_cast<unsigned>(list.size());
    post(module, message, movedOut(list), line, function, lines, size);
}

// Frees the list.
template <class Record, class Element>
std::vector<Record> takeBatch(std::unique_ptr<std::list<Element>>& list, int line, const char* function)
{
    std::vector<Record> batch;
    if constexpr (!std::is_same_v<Record, Element>) {
        batch = copiesOf(*list, function);
    } else {
        batch.assign(list->begin(), list->end());
        if constexpr (!std::is_same_v<Record, int>) {
            reportNullRecords(batch, function);
            std::erase(batch, nullptr);
        }
    }
    // One text for all operations, deletes and updates too; the log's readers search for it.
    log(line, function, "insert Database op size[%u] excute [base:%u]", static_cast<unsigned>(batch.size()),
        static_cast<unsigned>(list->size()));
    list.reset();
    return batch;
}

} // namespace

// Never destroyed: its thread may still run handlers while the process exits.
TransmissionDBModule& TransmissionDBModule::GetInstance()
{
    static auto& instance = platform::neverDestroyed(new TransmissionDBModule);
    return instance;
}

TransmissionDBModule::TransmissionDBModule()
{
    log(__LINE__, "TransmissionDBModule::TransmissionDBModule", "database Module this=0x%p",
        static_cast<const void*>(this));

    using Module = TransmissionDBModule;
    // The order gives the ids, and it is not the members'.
    bindMessages<Module>(*this,
                         {{m_msgInsertCompleted, &Module::NotifyInsertCompleted},
                          {m_msgDeleteCompleted, &Module::NotifyDeleteCompleted},
                          {m_msgUpdateCompleted, &Module::NotifyUpdateCompleted},
                          {m_msgInsertDownload, &Module::NotifyInsertDownload},
                          {m_msgDeleteDownload, &Module::NotifyDeleteDownload},
                          {m_msgUpdateDownload, &Module::NotifyUpdateDownload},
                          {m_msgUpdateTask, &Module::NotifyUpdateTask},
                          {m_msgDeleteTasks, &Module::NotifyDeleteTasks},
                          {m_msgInsetUpload, &Module::NotifyInsetUpload},
                          {m_msgDeleteTaskCompleted, &Module::NotifyDeleteTaskCompleted},
                          {m_msgQuitApp, &Module::NotifyQuitApp},
                          {m_msgExecuteSQL, &Module::NotifyExecuteSQL},
                          {m_msgDeleteTasksFromTransferTask, &Module::NotifyDeleteTasksFromTransferTask},
                          {m_msgDeleteTask, &Module::NotifyDeleteTask}});
    CreateThread("TransmissionDBModule", 0, 0, nullptr);
}

TransmissionDBModule::~TransmissionDBModule() = default;

void TransmissionDBModule::StopWork()
{
    constexpr const char* function = "TransmissionDBModule::StopWork";
    if (!TryPostThreadMessage(m_msgQuitApp, 0, 0)) {
        log(__LINE__, function, "send m_msgQuitApp fail");
        return;
    }
    log(__LINE__, function, "send m_msgQuitApp success");
    if (IsInMessageLoop()) {
        CommonAbility::WaitForThread(*this);
    }
}

void TransmissionDBModule::OnInit() { }

void TransmissionDBModule::OnUserLogin()
{
    store().InitDatabase();
    m_userLoggedIn = true;
}

void TransmissionDBModule::OnUserLogout()
{
    m_userLoggedIn = false;
}

void TransmissionDBModule::OnIntervalCheck() { }

void TransmissionDBModule::ResetDB() { }

void TransmissionDBModule::DeleteCompletedTask(int id)
{
    std::list<int> ids{id};
    DeleteCompletedTask(ids);
}

void TransmissionDBModule::DeleteCompletedTask(std::list<int>& ids)
{
    postList(*this, m_msgDeleteCompleted, ids, __LINE__, "TransmissionDBModule::DeleteCompletedTask", deleteLines);
}

void TransmissionDBModule::UpdateCompletedTask(std::shared_ptr<CompletedTaskProperty> task)
{
    CompletedList tasks{std::move(task)};
    UpdateCompletedTask(tasks);
}

void TransmissionDBModule::UpdateCompletedTask(std::list<std::shared_ptr<CompletedTaskProperty>>& tasks)
{
    postList(*this, m_msgUpdateCompleted, tasks, __LINE__, "TransmissionDBModule::UpdateCompletedTask", updateLines);
}

void TransmissionDBModule::DeleteDownloadTask(int id)
{
    std::list<int> ids{id};
    DeleteDownloadTask(ids);
}

void TransmissionDBModule::DeleteDownloadTask(std::list<int>& ids)
{
    postList(*this, m_msgDeleteDownload, ids, __LINE__, "TransmissionDBModule::DeleteDownloadTask", deleteLines);
}

void TransmissionDBModule::UpdateDownloadTask(std::shared_ptr<DownloadTaskProperty> task)
{
    DownloadList tasks{std::move(task)};
    UpdateDownloadTask(tasks);
}

void TransmissionDBModule::UpdateDownloadTask(std::list<std::shared_ptr<DownloadTaskProperty>>& tasks)
{
    postList(*this, m_msgUpdateDownload, tasks, __LINE__, "TransmissionDBModule::UpdateDownloadTask", updateLines);
}

void TransmissionDBModule::InsertUploadTask(std::shared_ptr<UploadTaskProperty> task)
{
    UploadList tasks{std::move(task)};
    InsertUploadTask(tasks);
}

void TransmissionDBModule::InsertUploadTask(std::list<std::shared_ptr<UploadTaskProperty>>& tasks)
{
    postList(*this, m_msgInsetUpload, tasks, __LINE__, "TransmissionDBModule::InsertUploadTask", uploadLines);
}

void TransmissionDBModule::UpdateTask(std::list<DbTransferTask>& tasks)
{
    postList(*this, m_msgUpdateTask, tasks, __LINE__, "TransmissionDBModule::UpdateTask", updateLines);
}

void TransmissionDBModule::DeleteTasks(int taskStatus)
{
    post(*this, m_msgDeleteTasks, std::make_unique<int>(taskStatus), __LINE__, "TransmissionDBModule::DeleteTasks",
         deleteLines, static_cast<unsigned>(taskStatus));
}

void TransmissionDBModule::DeleteTasksFromTransferTask(int taskStatus)
{
    post(*this, m_msgDeleteTasksFromTransferTask, std::make_unique<int>(taskStatus), __LINE__,
         "TransmissionDBModule::DeleteTasksFromTransferTask", deleteLines, static_cast<unsigned>(taskStatus));
}

void TransmissionDBModule::DeleteTask(std::shared_ptr<DbTransferTask> task)
{
    post(*this, m_msgDeleteTask, std::make_unique<TaskList>(1, task), __LINE__, "TransmissionDBModule::DeleteTask",
         deleteLines, placeOf(&task));
}

void TransmissionDBModule::DeleteTaskCompleteTask(std::wstring uniqueId)
{
    post(*this, m_msgDeleteTaskCompleted, std::make_unique<std::wstring>(uniqueId), __LINE__,
         "TransmissionDBModule::DeleteTaskCompleteTask", deleteLines, placeOf(&uniqueId));
}

bool TransmissionDBModule::ExecuteSQL(const std::string& sql)
{
    return post(*this, m_msgExecuteSQL, std::make_unique<std::string>(sql), __LINE__,
                "TransmissionDBModule::ExecuteSQL", sqlLines, sql.c_str());
}

void TransmissionDBModule::InsertCompletedTask(std::shared_ptr<CompletedTaskProperty> task)
{
    CompletedList tasks{std::move(task)};
    InsertCompletedTask(tasks);
}

// Without a message, although there is one: callers read the rows next.
void TransmissionDBModule::InsertCompletedTask(std::list<std::shared_ptr<CompletedTaskProperty>>& tasks)
{
    NotifyInsertCompleted(0, addressOf(movedOut(tasks).release()));
}

void TransmissionDBModule::DeleteAllCompletedTasks(int taskType, int otherTaskType)
{
    store().DeleteAllCompletedTasks(taskType, otherTaskType);
}

void TransmissionDBModule::InsertDownloadTask(std::shared_ptr<DownloadTaskProperty> task)
{
    DownloadList tasks{std::move(task)};
    InsertDownloadTask(tasks);
}

// Without a message, as `InsertCompletedTask`.
void TransmissionDBModule::InsertDownloadTask(std::list<std::shared_ptr<DownloadTaskProperty>>& tasks)
{
    NotifyInsertDownload(0, addressOf(movedOut(tasks).release()));
}

void TransmissionDBModule::DeleteAllDownloadTasks(int taskType)
{
    store().DeleteAllDownloadTasks(taskType);
}

bool TransmissionDBModule::GetAllCompletedTasks(std::vector<CompletedTaskProperty>& tasks, int taskType,
                                                int otherTaskType)
{
    return store().GetAllCompletedTasks(tasks, taskType, otherTaskType);
}

bool TransmissionDBModule::GetAllDownloadTasks(std::vector<DownloadTaskProperty>& tasks, int taskType)
{
    return store().GetAllDownloadTasks(tasks, taskType);
}

bool TransmissionDBModule::GetAllTask(std::vector<DbTransferTask>& tasks, int moduleType, int transferType)
{
    return store().GetAllTask(tasks, moduleType, transferType);
}

bool TransmissionDBModule::GetAllCompleteTask(std::vector<DbTransferTask>& tasks, int moduleType, int taskStatus)
{
    return store().GetAllCompleteTask(tasks, moduleType, taskStatus);
}

bool TransmissionDBModule::GetTask(std::wstring& uniqueId, DbTransferTask& task)
{
    return store().GetTask(uniqueId, task);
}

void TransmissionDBModule::LoadDbSQL(TransTaskType type, void* context, std::function<void(uint64, int64)> callback)
{
    store().LoadDbSQL(std::move(type), context, std::move(callback));
}

void TransmissionDBModule::LoadDbSQL(TransTaskType type, std::vector<DbTransferTask>& tasks)
{
    store().LoadDbSQL(std::move(type), tasks);
}

void TransmissionDBModule::NotifyInsertCompleted(uint64, int64 payload)
{
    auto list = takeOver<CompletedList>(payload);
    if (list != nullptr) {
        store().InsertCompletedTasks(
            takeBatch<CompletedTaskProperty>(list, __LINE__, "TransmissionDBModule::NotifyInsertCompleted"));
    }
}

void TransmissionDBModule::NotifyDeleteCompleted(uint64, int64 payload)
{
    auto list = takeOver<std::list<int>>(payload);
    if (list != nullptr) {
        store().DeleteCompletedTasks(takeBatch<int>(list, __LINE__, "TransmissionDBModule::NotifyDeleteCompleted"));
    }
}

void TransmissionDBModule::NotifyUpdateCompleted(uint64, int64 payload)
{
    auto list = takeOver<CompletedList>(payload);
    if (list != nullptr) {
        store().UpdateCompletedTasks(
            takeBatch<CompletedTaskProperty>(list, __LINE__, "TransmissionDBModule::NotifyUpdateCompleted"));
    }
}

void TransmissionDBModule::NotifyInsertDownload(uint64, int64 payload)
{
    auto list = takeOver<DownloadList>(payload);
    if (list != nullptr) {
        store().InsertDownloadTasks(takeBatch<std::shared_ptr<DownloadTaskProperty>>(
            list, __LINE__, "TransmissionDBModule::NotifyInsertDownload"));
    }
}

void TransmissionDBModule::NotifyDeleteDownload(uint64, int64 payload)
{
    auto list = takeOver<std::list<int>>(payload);
    if (list != nullptr) {
        store().DeleteDownloadTasks(takeBatch<int>(list, __LINE__, "TransmissionDBModule::NotifyDeleteDownload"));
    }
}

void TransmissionDBModule::NotifyUpdateDownload(uint64, int64 payload)
{
    auto list = takeOver<DownloadList>(payload);
    if (list != nullptr) {
        store().UpdateDownloadTasks(
            takeBatch<DownloadTaskProperty>(list, __LINE__, "TransmissionDBModule::NotifyUpdateDownload"));
    }
}

void TransmissionDBModule::NotifyInsetUpload(uint64, int64 payload)
{
    auto list = takeOver<UploadList>(payload);
    if (list != nullptr) {
        store().InsertUploadTasks(
            takeBatch<UploadTaskProperty>(list, __LINE__, "TransmissionDBModule::NotifyInsetUpload"));
    }
}

void TransmissionDBModule::NotifyUpdateTask(uint64, int64 payload)
{
    auto list = takeOver<std::list<DbTransferTask>>(payload);
    if (list != nullptr) {
        std::list<DbTransferTask> tasks;
        tasks.swap(*list);
        list.reset();
        store().UpdateTask(tasks);
    }
}

void TransmissionDBModule::NotifyDeleteTasks(uint64, int64 payload)
{
    auto status = takeOver<int>(payload);
    if (status != nullptr) {
        const int taskStatus = *status;
        log(__LINE__, "TransmissionDBModule::NotifyDeleteTasks", "insert Database op taskStatus[%d]", taskStatus);
        status.reset();
        store().DeleteTasks(taskStatus);
    }
}

void TransmissionDBModule::NotifyDeleteTasksFromTransferTask(uint64, int64 payload)
{
    auto status = takeOver<int>(payload);
    if (status != nullptr) {
        const int taskStatus = *status;
        log(__LINE__, "TransmissionDBModule::NotifyDeleteTasksFromTransferTask", "insert Database op status[%d]",
            taskStatus);
        status.reset();
        store().DeleteTasksFromTransferTask(taskStatus);
    }
}

void TransmissionDBModule::NotifyDeleteTask(uint64, int64 payload)
{
    auto list = takeOver<TaskList>(payload);
    if (list != nullptr) {
        for (DbTransferTask& task :
             takeBatch<DbTransferTask>(list, __LINE__, "TransmissionDBModule::NotifyDeleteTask")) {
            store().DeleteTask(task);
        }
    }
}

void TransmissionDBModule::NotifyDeleteTaskCompleted(uint64, int64 payload)
{
    auto text = takeOver<std::wstring>(payload);
    if (text != nullptr) {
        std::wstring uniqueId = std::move(*text);
        log(__LINE__, "TransmissionDBModule::NotifyDeleteTaskCompleted", "insert Database op taskStatus[%d]",
            static_cast<int>(placeOf(&uniqueId)));
        text.reset();
        store().DeleteTasks(std::move(uniqueId));
    }
}

void TransmissionDBModule::NotifyQuitApp(uint64, int64)
{
    log(__LINE__, "TransmissionDBModule::NotifyQuitApp", "stop transDb work app");
    PostThreadMessageW(quitMessage, 0, 0);
}

void TransmissionDBModule::NotifyExecuteSQL(uint64, int64 payload)
{
    auto text = takeOver<std::string>(payload);
    if (text != nullptr) {
        const std::string sql = std::move(*text);
        log(__LINE__, "TransmissionDBModule::NotifyExecuteSQL", "NotifyExecuteSQL Database op taskStatus[%s]",
            sql.c_str());
        text.reset();
        store().ExecuteSQL(sql);
    }
}

} // namespace DatabaseService::TransmissionDB
