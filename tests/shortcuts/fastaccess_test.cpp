// The shortcut list: its table and upgrade, its rows, who owns what, and the files behind icons. Then its module: what
// comes of a post, in which order, and what the caller keeps.

#include "databaseservice/fastaccessdbmodule.h"
#include "databaseservice/fastaccessdbprovider.h"
#include "support/filebytes.h"
#include "support/heldmodule.h"
#include "support/lists.h"
#include "support/storetest.h"

#include <memory>
#include <stdexcept>
#include <utility>

using namespace testsupport;
using namespace DatabaseService;
using namespace DatabaseService::FastAccessDBProvider;

namespace {

constexpr const char* rotateless = "CREATE TABLE FastAccess (Id INTEGER PRIMARY KEY AUTOINCREMENT NOT NULL, [Index] "
                                   "INTEGER, DataType INTEGER, IconPath TEXT, Title TEXT, Tip TEXT, UpdataTime "
                                   "INTEGER, FilePath TEXT, FileId TEXT, ParentId TEXT)";

/// What a callback is given, as a client takes it.
std::vector<FastAccessTable> taken(int64 address)
{
    const std::unique_ptr<std::vector<FastAccessTable*>> records(
        reinterpret_cast<std::vector<FastAccessTable*>*>(static_cast<std::intptr_t>(address)));
    return mapped(*records, [](FastAccessTable* record) { return *std::unique_ptr<FastAccessTable>(record); });
}

struct FastAccess : StoreTest {
    ~FastAccess() override { GlobalParamWrapper::GetInstance()->SetUserCachePath({}); }

    static std::vector<FastAccessTable> all()
    {
        std::vector<FastAccessTable> rows;
        int calls = 0;
        EXPECT_TRUE(GetAllFastAccessData([&](uint64 zero, int64 address) {
            EXPECT_EQ(zero, 0U);
            ++calls;
            rows = taken(address);
        }));
        EXPECT_EQ(calls, 1);
        return rows;
    }

    static std::int32_t add(FastAccessTable record)
    {
        EXPECT_TRUE(InsertFastAccessData(&record, [&](uint64 zero, int64 address) {
            EXPECT_EQ(zero, 0U);
            EXPECT_EQ(reinterpret_cast<FastAccessTable*>(address), &record);
        }));
        return record.Id;
    }

    const std::filesystem::path m_path = path(L"FastAccess.dat");
};

using Module = HeldModule<FastAccessDB::FastAccessDBModule>;

struct FastAccessModule : StoreTest {
    static ExpectedLine posted(const std::string& operation, const std::string& line)
    {
        return {"DatabaseService::FastAccessDB::FastAccessDBModule::" + operation, "Post " + line, 2};
    }

    /// A callback that writes down what it is given, and frees it.
    std::function<void(uint64, int64)> noteAll(std::string& notes) const
    {
        return [&notes, held = m_held](uint64 zero, int64 address) {
            notes += "[" + std::to_string(zero);
            for (const FastAccessTable& record : taken(address)) {
                notes += ' ' + std::to_string(record.Id) + record.Title;
            }
            notes += "]";
        };
    }

    std::shared_ptr<int> m_held = std::make_shared<int>(); ///< by each callback of `noteAll` that is alive
};

const std::string function = "DatabaseService::FastAccessDBProvider::";

} // namespace

TEST_F(FastAccess, NewAndOldFilesGetTheSameTable)
{
    EXPECT_TRUE(InitFastAccessDB());
    const std::string upToDate = "INTEGER NOT NULL KEY: Id\nINTEGER: Index DataType\nTEXT: IconPath Title Tip\n"
                                 "INTEGER: UpdataTime\nTEXT: FilePath FileId ParentId\nINTEGER DEFAULT 0: Rotate";
    EXPECT_EQ(SqliteFile(m_path).columns("FastAccess"), upToDate);

    std::filesystem::remove(m_path);
    SqliteFile(m_path).exec(std::string(rotateless) + "; INSERT INTO FastAccess([Index], Title) VALUES(3, 'old')");
    const std::vector<FastAccessTable> rows = all();
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0].Title, "old");
    EXPECT_EQ(SqliteFile(m_path).columns("FastAccess"), upToDate);

    const std::string before = bytesOf(m_path);
    EXPECT_TRUE(InitFastAccessDB());
    EXPECT_EQ(bytesOf(m_path), before);
    EXPECT_TRUE(m_log.failuresWere({})) << "no second column of the name";
}

TEST_F(FastAccess, AnyWordInTheStoredSqlKeepsTheColumnOut)
{
    SqliteFile(m_path).exec(std::string(rotateless) + "; CREATE TABLE other(Rotate)");
    FastAccessTableProvider().AddColumnIfMissing("PARENT");
    EXPECT_TRUE(SqliteFile(m_path).columns("FastAccess").ends_with("ParentId"));
    FastAccessTableProvider().AddColumnIfMissing("absent");
    EXPECT_TRUE(SqliteFile(m_path).columns("FastAccess").ends_with("Rotate"));
}

TEST_F(FastAccess, RowsComeBackWithTheHighestIndexFirst)
{
    EXPECT_TRUE(all().empty());
    const FastAccessTable defaults;
    FastAccessTable full{-1, -2, 3, "icon", "t\u00EFtle", "tip", 5'000'000'000, "path", "file", "parent", -11};
    EXPECT_EQ(add(full), 1);
    EXPECT_EQ(add(defaults), 2);
    full.Index = 7;
    full.Title = "it's \xFF";
    EXPECT_EQ(add(full), 3);
    SqliteFile file(m_path);
    EXPECT_EQ(file.text("SELECT * FROM FastAccess"),
              "1|-2|3|'icon'|'t\u00EFtle'|'tip'|5000000000|'path'|'file'|'parent'|-11\n"
              "2|0|0|''|''|''|-1|''|''|''|0\n"
              "3|7|3|'icon'|'it's \uFFFD'|'tip'|5000000000|'path'|'file'|'parent'|-11");

    const std::vector<FastAccessTable> rows = all();
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(std::pair(rows[0].Id, rows[1].Id), std::pair(3, 2));
    // What was read, written over another row, is that row.
    FastAccessTable moved = rows[2];
    moved.Id = 2;
    EXPECT_TRUE(UpdateFastAccessData(&moved));
    EXPECT_EQ(file.text("SELECT * FROM FastAccess WHERE Id = 2"),
              "2" + file.text("SELECT * FROM FastAccess WHERE Id = 1").substr(1));
    moved.Id = 9;
    EXPECT_TRUE(UpdateFastAccessData(&moved));
    EXPECT_EQ(all().size(), 3U);

    EXPECT_TRUE(DeleteFastAccessData(3));
    EXPECT_EQ(all().size(), 2U);
    EXPECT_EQ(add(defaults), 4) << "an id is not given twice";
    file.exec("UPDATE FastAccess SET Id = 4294967296 WHERE Id = 4");
    EXPECT_EQ(add(defaults), 1) << "cut to the member";

    DropFastAccessTable();
    EXPECT_EQ(file.tables(), "");
    EXPECT_TRUE(all().empty());
    EXPECT_TRUE(m_log.failuresWere({}));
}

// Ids that are text read as numbers.
TEST_F(FastAccess, AForeignTableGivesItsIds)
{
    FastAccessTable record;
    SqliteFile(m_path).exec("CREATE TABLE FastAccess(Id TEXT DEFAULT '07', [Index], DataType, "
                            "IconPath, Title, Tip, UpdataTime, FilePath, FileId, ParentId, Rotate)");
    EXPECT_EQ(add(record), 7);
}

TEST_F(FastAccess, ADeletedShortcutTakesItsCachedIconAlong)
{
    const std::pair<std::string, bool> icons[] = {
        {"/my FastAccess icons/b.png", true}, {"/FastAccess\u76F8.png", true}, {"/fastaccess/d.png", false}};
    const std::filesystem::path cache = path(L"cache");
    GlobalParamWrapper::GetInstance()->SetUserCachePath(wide(cache));
    for (const auto& [icon, cached] : icons) {
        SCOPED_TRACE(icon);
        const std::filesystem::path file = platform::toPath(platform::toWide(platform::toUtf8(cache) + icon));
        std::filesystem::create_directories(file.parent_path());
        writeBytes(file, "icon");
        FastAccessTable record;
        record.IconPath = icon;
        const int id = add(record);
        EXPECT_TRUE(DeleteFastAccessData(id + 1));
        EXPECT_TRUE(std::filesystem::exists(file));
        EXPECT_TRUE(DeleteFastAccessData(id));
        EXPECT_EQ(std::filesystem::exists(file), !cached);
        EXPECT_TRUE(all().empty());
    }
    EXPECT_TRUE(m_log.failuresWere({}));

    FastAccessTable record;
    record.IconPath = "/FastAccess/\u76F8.png";
    EXPECT_TRUE(DeleteFastAccessData(add(record)));
    // 2 is "no such file" on every system.
    EXPECT_TRUE(m_log.failuresWere(
        {{function + "DeleteFastAccessData", "delete fail,error:2," + platform::toUtf8(cache) + record.IconPath}}));
    EXPECT_TRUE(all().empty()) << "the row goes all the same";
}

TEST_F(FastAccess, FailuresAreTrueAllTheSame)
{
    useFolder(path(L"missing"));
    const FastAccessTable record;
    EXPECT_TRUE(InitFastAccessDB());
    EXPECT_TRUE(all().empty());
    EXPECT_EQ(add(record), 0);
    EXPECT_TRUE(DeleteFastAccessData(1));
    EXPECT_TRUE(UpdateFastAccessData(&record));
    DropFastAccessTable();
    // Each call opens the file three times to bring the table up to date, and then for what it is about.
    constexpr std::size_t opens = 3 + (3 + 1) + (3 + 2) + (3 + 2) + (3 + 1) + (3 + 1);
    EXPECT_EQ(m_log.take().size(), 3 * opens) << "an open is a line, and its failure two";
}

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
    const std::string leftOut = "a null record was left out";
    EXPECT_TRUE(
        m_log.failuresWere({{function + "FastAccessTableProvider::UpdateFastAccessRow", leftOut},
                            {function + "FastAccessTableProvider::InsertFastAccessRow", leftOut},
                            {function + "GetAllFastAccessData", "nothing was read: there is no callback to take it"},
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
