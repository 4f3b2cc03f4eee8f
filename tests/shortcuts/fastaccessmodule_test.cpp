// The shortcut list's module: what comes of a post, in which order, and what the caller keeps.

#include "databaseservice/fastaccessdbmodule.h"
#include "databaseservice/fastaccessdbprovider.h"
#include "support/heldmodule.h"
#include "support/storetest.h"

#include <stdexcept>

using namespace testsupport;
using namespace DatabaseService;
using DatabaseService::FastAccessDB::FastAccessDBModule;

namespace {

using Module = HeldModule<FastAccessDBModule>;

struct FastAccessModule : StoreTest {
    static ExpectedLine posted(const std::string& operation, const std::string& line)
    {
        return {"DatabaseService::FastAccessDB::FastAccessDBModule::" + operation, "Post " + line, 2};
    }

    /// A callback that writes down what it is given, and frees it.
    std::function<void(uint64, int64)> noteAll(std::string& notes)
    {
        return [&notes, held = m_held](uint64 zero, int64 address) {
            const std::unique_ptr<std::vector<FastAccessTable*>> records(
                reinterpret_cast<std::vector<FastAccessTable*>*>(static_cast<std::intptr_t>(address)));
            notes += "[" + std::to_string(zero);
            for (FastAccessTable* record : *records) {
                notes += ' ' + std::to_string(record->Id) + record->Title;
                delete record;
            }
            notes += "]";
        };
    }

    std::shared_ptr<int> m_held = std::make_shared<int>(); ///< by each callback of `noteAll` that is alive
};

} // namespace

TEST_F(FastAccessModule, PostsReturnAtOnceAndAreDoneInOrder)
{
    Module module;
    EXPECT_TRUE(m_log.linesWere(
        {{"DatabaseService::FastAccessDB::FastAccessDBModule::FastAccessDBModule", "database Module this=0x%p", 2}}));
    module.hold();
    std::string notes;
    FastAccessTable first;
    FastAccessTable second;
    first.Index = 2;
    const auto note = [&](uint64 zero, int64 address) {
        EXPECT_EQ(std::this_thread::get_id(), module.thread);
        const auto* record = reinterpret_cast<const FastAccessTable*>(static_cast<std::intptr_t>(address));
        notes += (record == &first ? "first" : "second") + std::to_string(record->Id + static_cast<int>(zero));
    };
    FastAccessTable renamed = first;
    renamed.Id = 1;
    renamed.Title = "new";
    EXPECT_TRUE(module.InsertFastAccessData(&first, note));
    EXPECT_TRUE(module.InsertFastAccessData(&second, note));
    EXPECT_TRUE(module.GetAllFastAccessData(noteAll(notes)));
    EXPECT_TRUE(module.UpdateFastAccessData(renamed));
    EXPECT_TRUE(module.DeleteFastAccessData(2));
    EXPECT_TRUE(module.GetAllFastAccessData(noteAll(notes)));
    module.DeleteFastAccessTable();
    EXPECT_TRUE(module.GetAllFastAccessData(noteAll(notes)));
    const ExpectedLine inserted = posted("InsertFastAccessData", "Insert Data Success.");
    const ExpectedLine read = posted("GetAllFastAccessData", "Get All Datas Success.");
    EXPECT_TRUE(
        m_log.linesWere({inserted, inserted, read, posted("UpdateFastAccessData", "Update Data[dbid: %d] Success."),
                         posted("DeleteFastAccessData", "Delete Data[dbid: %d] Success."), read,
                         posted("DeleteFastAccessTable", "Delete Table Success."), read}));
    EXPECT_TRUE(std::filesystem::is_empty(m_folder.path())) << "a post touches no file";
    {
        SqliteFile other(path(L"FastAccess.dat"));
        other.exec("BEGIN EXCLUSIVE");
        module.goOn();
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        EXPECT_EQ(notes, "") << "waits for the lock";
        other.exec("ROLLBACK");
    }
    module.StopWork();
    EXPECT_EQ(notes, "first1second2[0 1 2][0 1new][0]");
    EXPECT_EQ(m_held.use_count(), 1) << "handled callbacks are freed";
    EXPECT_TRUE(m_log.failuresWere({}));
}

TEST_F(FastAccessModule, NotificationsWorkOnTheCallingThread)
{
    Module module;
    module.hold();
    module.OnInit(), module.OnIntervalCheck();
    EXPECT_TRUE(std::filesystem::is_empty(m_folder.path()));
    module.OnUserLogin();
    EXPECT_EQ(SqliteFile(path(L"FastAccess.dat")).tables(), "FastAccess");
    module.OnResetdatabase();
    EXPECT_EQ(SqliteFile(path(L"FastAccess.dat")).tables(), "");
    module.goOn();
}

TEST_F(FastAccessModule, BadInputIsALineAtMost)
{
    Module module;
    for (unsigned message = Module::firstBoundMessage; message < Module::firstBoundMessage + 3; ++message) {
        EXPECT_TRUE(module.TryPostThreadMessage(message, 0, 0));
    }
    module.hold();
    EXPECT_TRUE(std::filesystem::is_empty(m_folder.path())) << "no payload, no work";
    EXPECT_TRUE(module.TryPostThreadMessage(Module::firstBoundMessage + 3, 0, 0));
    module.goOn();
    std::string notes;
    FastAccessTable record;
    EXPECT_TRUE(module.InsertFastAccessData(nullptr, [&](uint64, int64 address) { notes += std::to_string(address); }));
    EXPECT_TRUE(module.InsertFastAccessData(&record, {}));
    EXPECT_TRUE(module.GetAllFastAccessData({}));
    EXPECT_TRUE(
        module.InsertFastAccessData(&record, [](auto, auto) { throw std::runtime_error("the callback's own"); }));
    EXPECT_TRUE(module.GetAllFastAccessData(noteAll(notes)));
    module.StopWork();
    EXPECT_EQ(notes, "0[0 1 2]");
    const std::string store = "DatabaseService::FastAccessDBProvider::";
    const std::string leftOut = "a null record was left out";
    EXPECT_TRUE(
        m_log.failuresWere({{store + "FastAccessTableProvider::UpdateFastAccessRow", leftOut},
                            {store + "FastAccessTableProvider::InsertFastAccessRow", leftOut},
                            {store + "GetAllFastAccessData", "nothing was read: there is no callback to take it"},
                            {"CommonAbility::MessageLoop::run",
                             "thread FastAccessDBModule, message 32769: its handler has thrown: the callback's own"}}));
}

TEST_F(FastAccessModule, AStoppedModuleTakesNothing)
{
    Module module;
    std::string notes;
    module.StopWork();
    module.StopWork();
    m_log.take();
    FastAccessTable record;
    EXPECT_FALSE(module.GetAllFastAccessData(noteAll(notes)));
    EXPECT_FALSE(module.InsertFastAccessData(&record, noteAll(notes)));
    EXPECT_FALSE(module.DeleteFastAccessData(1));
    EXPECT_FALSE(module.UpdateFastAccessData(record));
    module.DeleteFastAccessTable();
    EXPECT_TRUE(m_log.linesWere({posted("GetAllFastAccessData", "Get All Datas Failed!!!"),
                                 posted("InsertFastAccessData", "Insert Data Failed!!!"),
                                 posted("DeleteFastAccessData", "Delete Data[dbid: %d] Failed!!!"),
                                 posted("UpdateFastAccessData", "Update Data[dbid: %d] Failed!!!"),
                                 posted("DeleteFastAccessTable", "Delete Table Failed!!!")}));
    EXPECT_EQ(notes, "");
    EXPECT_EQ(m_held.use_count(), 3) << "what was not posted stays allocated";
}
