#include "databaseservice/fastaccessdbmodule.h"

#include "clientservices/cloudlogger.h"
#include "databaseservice/fastaccessdbprovider.h"
#include "databaseservice/handover/modulemessages.h"
#include "platform/neverdestroyed.h"

#include <memory>
#include <utility>

namespace DatabaseService::FastAccessDB {

namespace {

using Callback = std::function<void(uint64, int64)>;

void log(int line, const char* function, const char* message)
{
    Logger::CloudLogger::GetInstance()->Output(0, 2, line, function, message, true);
}

// Nothing frees what a post that failed was to carry: callers rely on what their callback holds being there still. It
// costs a small allocation, and only once the thread is gone. The leak check knows this function by its name.
template <class Payload> void leaveAllocated(std::unique_ptr<Payload> payload)
{
    platform::neverDestroyed(std::move(payload));
} // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks)

template <class Payload>
bool postCopy(FastAccessDBModule& module, unsigned message, uint64 shortParameter, Payload payload)
{
    auto copy = std::make_unique<Payload>(std::move(payload));
    if (postPayload(module, message, shortParameter, copy)) {
        return true;
    }
    leaveAllocated(std::move(copy));
    return false;
}

} // namespace

// Never destroyed: its thread may still run handlers while the process exits.
FastAccessDBModule& FastAccessDBModule::GetInstance()
{
    static auto& instance = platform::neverDestroyed(new FastAccessDBModule);
    return instance;
}

FastAccessDBModule::FastAccessDBModule()
{
    // This log does not format: here and below the signs of percent stand in the lines as they are.
    log(__LINE__, "DatabaseService::FastAccessDB::FastAccessDBModule::FastAccessDBModule", "database Module this=0x%p");

    using Module = FastAccessDBModule;
    bindMessages<Module>(*this,
                         {{m_msgGetAllFastAccessData, &Module::NotifyGetAllFastAccessData},
                          {m_msgInsertFastAccessData, &Module::NotifyInsertFastAccessData},
                          {m_msgDeleteFastAccessData, &Module::NotifyDeleteFastAccessData},
                          {m_msgUpdateFastAccessData, &Module::NotifyUpdateFastAccessData},
                          {m_msgDeleteFastAccessTable, &Module::NotifyDeleteFastAccessTable}});
    CreateThread("FastAccessDBModule", 0, 0, nullptr);
}

FastAccessDBModule::~FastAccessDBModule() = default;

void FastAccessDBModule::OnInit() { }

void FastAccessDBModule::OnUserLogin()
{
    FastAccessDBProvider::InitFastAccessDB();
    ModuleBase::OnUserLogin();
}

void FastAccessDBModule::OnIntervalCheck() { }

void FastAccessDBModule::OnResetdatabase()
{
    FastAccessDBProvider::DropFastAccessTable();
}

bool FastAccessDBModule::GetAllFastAccessData(std::function<void(uint64, int64)> callback)
{
    const bool posted = postCopy(*this, m_msgGetAllFastAccessData, 0, std::move(callback));
    log(__LINE__, "DatabaseService::FastAccessDB::FastAccessDBModule::GetAllFastAccessData",
        posted ? "Post Get All Datas Success." : "Post Get All Datas Failed!!!");
    return posted;
}

bool FastAccessDBModule::InsertFastAccessData(FastAccessTable* record, std::function<void(uint64, int64)> callback)
{
    const bool posted =
        postCopy(*this, m_msgInsertFastAccessData, reinterpret_cast<std::uintptr_t>(record), std::move(callback));
    log(__LINE__, "DatabaseService::FastAccessDB::FastAccessDBModule::InsertFastAccessData",
        posted ? "Post Insert Data Success." : "Post Insert Data Failed!!!");
    return posted;
}

bool FastAccessDBModule::DeleteFastAccessData(const int& id)
{
    const bool posted = postCopy(*this, m_msgDeleteFastAccessData, 0, id);
    log(__LINE__, "DatabaseService::FastAccessDB::FastAccessDBModule::DeleteFastAccessData",
        posted ? "Post Delete Data[dbid: %d] Success." : "Post Delete Data[dbid: %d] Failed!!!");
    return posted;
}

bool FastAccessDBModule::UpdateFastAccessData(const FastAccessTable& record)
{
    const bool posted = TryPostThreadMessage(m_msgUpdateFastAccessData, 0, addressOf(&record));
    log(__LINE__, "DatabaseService::FastAccessDB::FastAccessDBModule::UpdateFastAccessData",
        posted ? "Post Update Data[dbid: %d] Success." : "Post Update Data[dbid: %d] Failed!!!");
    return posted;
}

void FastAccessDBModule::DeleteFastAccessTable()
{
    const bool posted = TryPostThreadMessage(m_msgDeleteFastAccessTable, 0, 0);
    log(__LINE__, "DatabaseService::FastAccessDB::FastAccessDBModule::DeleteFastAccessTable",
        posted ? "Post Delete Table Success." : "Post Delete Table Failed!!!");
}

void FastAccessDBModule::NotifyGetAllFastAccessData(uint64, int64 payload)
{
    auto copy = takeOver<Callback>(payload);
    if (copy != nullptr) {
        Callback callback = std::move(*copy);
        copy.reset();
        FastAccessDBProvider::GetAllFastAccessData(std::move(callback));
    }
}

void FastAccessDBModule::NotifyInsertFastAccessData(uint64 record, int64 payload)
{
    auto copy = takeOver<Callback>(payload);
    if (copy != nullptr) {
        Callback callback = std::move(*copy);
        copy.reset();
        FastAccessDBProvider::InsertFastAccessData(
            reinterpret_cast<FastAccessTable*>(static_cast<std::uintptr_t>(record)), std::move(callback));
    }
}

void FastAccessDBModule::NotifyDeleteFastAccessData(uint64, int64 payload)
{
    auto copy = takeOver<int>(payload);
    if (copy != nullptr) {
        const int id = *copy;
        copy.reset();
        FastAccessDBProvider::DeleteFastAccessData(id);
    }
}

void FastAccessDBModule::NotifyUpdateFastAccessData(uint64, int64 record)
{
    FastAccessDBProvider::UpdateFastAccessData(
        reinterpret_cast<const FastAccessTable*>(static_cast<std::intptr_t>(record)));
}

void FastAccessDBModule::NotifyDeleteFastAccessTable(uint64, int64)
{
    FastAccessDBProvider::DropFastAccessTable();
}

} // namespace DatabaseService::FastAccessDB
