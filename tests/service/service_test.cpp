// Start and reset of the stores, and the wipe.

#include "databaseservice/databaseservice.h"
#include "databaseservice/driverdbproviderbase.h"
#include "databaseservice/dropalltables.h"
#include "databaseservice/fastaccessdbprovider.h"
#include "databaseservice/gallerydbprovider.h"
#include "databaseservice/maindatabaseprovider.h"
#include "databaseservice/transdbconn.h"
#include "support/enginelines.h"
#include "support/filebytes.h"
#include "support/storetest.h"

#include <algorithm>
#include <functional>
#include <future>

using namespace testsupport;
using namespace DatabaseService;

namespace {

namespace fs = std::filesystem;

class Service : public StoreTest {
protected:
    ~Service() override { g_userDataBaseFolder.clear(); }

    /// Starts all stores and puts a row into each.
    void fillAll()
    {
        InitDataBase(m_user, L"gallery.dat");
        MainDatabaseProvider::UpdateUserProperties(L"key", L"value");
        std::vector<AlbumTable> albums(1);
        GalleryDBProvider::InsertAlbumTable(albums);
        FastAccessTable shortcut;
        FastAccessDBProvider::InsertFastAccessData(&shortcut, {});
    }

    /// How many rows the stores have, in the order of `stores`.
    static std::vector<int> counts()
    {
        std::vector<FastAccessTable> shortcuts;
        FastAccessDBProvider::FastAccessTableProvider().GetAllFastAccessRows(shortcuts);
        return {MainDatabaseProvider::CountUserProperties(), GalleryDBProvider::CountAlbumTable(),
                static_cast<int>(shortcuts.size())};
    }

    /// The start's own lines, and between them each store whose file is opened.
    std::vector<std::string> course()
    {
        const std::string start = "2 DatabaseService::InitDataBase: ";
        std::vector<std::string> lines;
        for (const std::string& line : m_log.take()) {
            const std::string step =
                line.starts_with(start) ? line.substr(start.size()) : line.substr(line.rfind('/') + 1);
            if (lines.empty() || lines.back() != step) {
                lines.push_back(step);
            }
        }
        return lines;
    }

    static std::string tablesIn(const fs::path& file)
    {
        return SqliteFile(file).value("SELECT group_concat(name) FROM (SELECT name FROM sqlite_master WHERE type = "
                                      "'table' ORDER BY name)");
    }

    const std::wstring m_user = GlobalParamWrapper::GetInstance()->GetUserDataBaseFolder();
    const std::vector<std::wstring> stores{L"main.dat", L"gallery.dat", L"FastAccess.dat"};
};

} // namespace

TEST_F(Service, StoresStartInOrder)
{
    InitDataBase(m_user);
    EXPECT_EQ(
        course(),
        (std::vector<std::string>{"InitDB.Start(One parameter)", "g_userDataBaseFolder = " + platform::toUtf8(m_user),
                                  "InitMainDatabase.Start", "main.dat", "InitMainDatabase.End", "FastAccess.dat",
                                  "InitDB.End(One parameter)"}));
    EXPECT_EQ(g_userDataBaseFolder, m_user);
    EXPECT_EQ(std::distance(fs::directory_iterator(m_folder.path()), {}), 2);

    fillAll();
    m_log.take();
    InitDataBase(g_userDataBaseFolder, L"gallery.dat");
    EXPECT_EQ(course(),
              (std::vector<std::string>{"InitDB.Start(Two parameters),pGalleryDbName:gallery.dat",
                                        "InitMainDatabase.Start", "main.dat", "InitMainDatabase.End", "gallery.dat",
                                        "FastAccess.dat", "InitDB.End(Two parameters)"}));
    EXPECT_EQ(g_userDataBaseFolder, m_user);
    EXPECT_EQ(counts(), (std::vector{1, 1, 1})) << "what is there stays";
}

TEST_F(Service, ARefusedFolderOrNameChangesNothing)
{
    g_userDataBaseFolder = L"before";
    const std::wstring missing = m_user + L"/missing";
    const struct {
        std::function<void()> call;
        std::vector<std::string> lines;
    } refused[] = {
        {[] { InitDataBase({}); }, {"InitDB.Start(One parameter)"}},
        {[&] { InitDataBase(missing); }, {"InitDB.Start(One parameter)"}},
        {[] { InitDataBase({}, L"\u76F8.dat"); }, {"InitDB.Start(Two parameters),pGalleryDbName:\u76F8.dat"}},
        {[&] { InitDataBase(missing, L"a"); }, {"InitDB.Start(Two parameters),pGalleryDbName:a"}},
        {[&] { InitDataBase(m_user, {}); }, {"InitDB.Start(Two parameters),pGalleryDbName:"}},
        {[] { ResetDataBase({}, L"a"); }, {}},
        {[&] { ResetDataBase(missing, L"a"); }, {}},
        {[&] { ResetDataBase(m_user, {}); }, {}},
        {[] { ResetDataBaseChangeUser({}); }, {}},
        {[&] { ResetDataBaseChangeUser(missing); }, {}},
    };
    for (const auto& [call, lines] : refused) {
        SCOPED_TRACE(&call - &refused[0].call);
        try {
            call();
            ADD_FAILURE() << "was accepted";
        } catch (const std::exception& error) {
            EXPECT_STREQ(error.what(), "The db file folder is empty or does not exist.");
        }
        EXPECT_EQ(course(), lines);
        EXPECT_EQ(g_userDataBaseFolder, L"before");
    }
    EXPECT_TRUE(fs::is_empty(m_folder.path()));
}

TEST_F(Service, AFolderIsOnlyRemembered)
{
    writeBytes(path(L"file"), "plain");
    useFolder(path(L"file"));
    const std::wstring file = GlobalParamWrapper::GetInstance()->GetUserDataBaseFolder();
    InitDataBase(file, L"gallery.dat");
    EXPECT_EQ(g_userDataBaseFolder, file);
    EXPECT_EQ(counts(), (std::vector{0, 0, 0})) << "nothing can be opened in a file";
    EXPECT_GT(m_log.take().size(), 3U);
    EXPECT_EQ(bytesOf(path(L"file")), "plain");

    useFolder(m_folder.path());
    InitDataBase(file);
    EXPECT_TRUE(fs::exists(path(L"main.dat"))) << "stores are where the settings say";
}

TEST_F(Service, ResetEmptiesTheGalleryAndNothingElse)
{
    fillAll();
    std::vector<AlbumTable> albums(1);
    GalleryDBProvider::InitGalleryDatabase(L"other.dat");
    EXPECT_TRUE(GalleryDBProvider::InsertAlbumTable(albums));
    m_log.take();
    g_userDataBaseFolder.clear();
    ResetDataBase(m_user, L"gallery.dat");
    EXPECT_EQ(course(), (std::vector<std::string>{"gallery.dat"}));
    EXPECT_EQ(g_userDataBaseFolder, m_user);
    EXPECT_EQ(tablesIn(path(L"gallery.dat")), "NULL");
    InitDataBase(m_user, L"gallery.dat");
    EXPECT_EQ(counts(), (std::vector{1, 0, 1}));
    GalleryDBProvider::InitGalleryDatabase(L"other.dat");
    EXPECT_EQ(counts(), (std::vector{1, 1, 1}));
}

TEST_F(Service, AChangeOfUserEmptiesTheTransfersAndNothingElse)
{
    fillAll();
    TransmissionDB::TransDbConn::DeleteTasksFromTransferTask(0); // lays down the tables
    m_log.take();
    g_userDataBaseFolder = L"before";
    ResetDataBaseChangeUser(m_user);
    EXPECT_EQ(course(), (std::vector<std::string>{"transmission.dat"}));
    EXPECT_EQ(g_userDataBaseFolder, L"before");
    EXPECT_EQ(tablesIn(path(L"transmission.dat")), "'sqlite_sequence'");
    EXPECT_EQ(counts(), (std::vector{1, 1, 1}));
}

// Whatever happens to one store, start and reset leave the others alone and come back.
TEST_F(Service, AStoreThatFailsLeavesTheOthersAlone)
{
    fillAll();
    const std::function<void(const fs::path&)> damages[] = {
        [](const fs::path& file) { fs::resize_file(file, fs::file_size(file) / 2); },
        [](const fs::path& file) { writeBytes(file, std::string(5000, '?')); },
        [](const fs::path& file) { fs::remove(file), fs::create_directory(file); },
    };
    for (std::size_t victim = 0; victim < stores.size(); ++victim) {
        for (const auto& damage : damages) {
            SCOPED_TRACE(platform::toUtf8(stores[victim]) + ", damage " + std::to_string(&damage - damages));
            std::vector<std::string> before;
            for (const std::wstring& store : stores) {
                before.push_back(bytesOf(path(store)));
            }
            damage(path(stores[victim]));
            const std::string damaged = bytesOf(path(stores[victim]));
            m_log.take();
            InitDataBase(m_user, L"gallery.dat");
            std::vector<int> expected(3, 1);
            std::vector<int> found = counts();
            expected[victim] = found[victim] = 0;
            EXPECT_EQ(found, expected);
            for (std::size_t store = 0; store < stores.size(); ++store) {
                EXPECT_EQ(bytesOf(path(stores[store])), store == victim ? damaged : before[store]);
            }
            const std::string name = ", and database name is ";
            bool told = false;
            for (const std::string& line : m_log.take()) {
                if (const std::size_t at = line.find(name); at != std::string::npos) {
                    told = true;
                    EXPECT_TRUE(line.substr(at + name.size()).starts_with(platform::toUtf8(stores[victim]))) << line;
                }
            }
            EXPECT_TRUE(told);
            writeBytes(path(stores[victim]), before[victim]);
        }
    }
}

TEST_F(Service, AStartWaitsForALockedStore)
{
    fillAll();
    for (const std::wstring& store : stores) {
        SCOPED_TRACE(platform::toUtf8(store));
        SqliteFile other(path(store));
        other.exec("BEGIN EXCLUSIVE");
        auto start = std::async(std::launch::async, [&] { InitDataBase(m_user, L"gallery.dat"); });
        EXPECT_EQ(start.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
        other.exec("ROLLBACK");
        start.get();
        EXPECT_EQ(counts(), (std::vector{1, 1, 1}));
    }
    EXPECT_TRUE(m_log.failuresWere({}));
}

TEST_F(Service, TheWipeTakesStoresAndLeavesTheRest)
{
    DropAllTables& wipe = *DropAllTables::GetInstance();
    EXPECT_FALSE(wipe.InitDatabase());
    wipe.SearchAllDatFile();
    EXPECT_TRUE(m_log.take().empty());
    useFolder({});
    wipe.SearchAllDatFile();
    EXPECT_TRUE(m_log.failuresWere({{"DatabaseService::DropAllTables::SearchAllDatFile",
                                     "nothing was dropped: there is no user's database folder"}}));
    useFolder(m_folder.path());

    fillAll();
    DriverDBProviderBase().InitDatabase();
    const std::string tables = "CREATE TABLE plain(a); CREATE TABLE \"two words\"(a); CREATE TABLE counted(id INTEGER "
                               "PRIMARY KEY AUTOINCREMENT); INSERT INTO counted DEFAULT VALUES";
    for (const wchar_t* name : {L"\u76F8.dat", L".dat", L"backup.dat.bak", L"CAPITALS.DAT", L"xdat", L"longer.data"}) {
        SqliteFile(path(name)).exec(tables);
    }
    writeBytes(path(L"a foreign file.dat"), std::string(5000, '?'));
    const bool bytesAreNames = sizeof(fs::path::value_type) == 1; // where a name need not be text
    if (bytesAreNames) {
        writeBytes(m_folder.path() / "\xFF.dat", "?");
    }
    fs::create_directory(path(L"folder.dat"));
    SqliteFile(path(L"folder.dat/inner.dat")).exec(tables);
    m_log.take();

    const std::string all = "'counted,plain,sqlite_sequence,two words'";
    const std::string kept = "'sqlite_sequence,two words'";
    wipe.DropAllTablesBasedOnDBName("\u76F8.dat");
    EXPECT_TRUE(m_log.failuresWere({EngineLines("\u76F8.dat").prepare}));
    EXPECT_EQ(tablesIn(path(L"\u76F8.dat")), kept);
    EXPECT_EQ(tablesIn(path(L".dat")), all);

    wipe.SearchAllDatFile();
    const std::vector<std::string> log = m_log.take();
    EXPECT_EQ(std::count_if(log.begin(), log.end(), [](const auto& line) { return line.starts_with('5'); }),
              bytesAreNames ? 4 : 3)
        << "two tables of two words, a foreign file and a name that is no text";
    EXPECT_FALSE(fs::exists(path(L"\uFFFD.dat")));
    EXPECT_EQ(tablesIn(path(L".dat")), kept);
    EXPECT_EQ(tablesIn(path(L"main.dat")), "'sqlite_sequence'");
    EXPECT_EQ(tablesIn(path(L"FastAccess.dat")), "'sqlite_sequence'");
    EXPECT_EQ(tablesIn(path(L"gallery.dat")), "NULL");
    EXPECT_EQ(tablesIn(path(L"DriveModuleData.dat")), "NULL");
    for (const wchar_t* name : {L"backup.dat.bak", L"CAPITALS.DAT", L"xdat", L"longer.data", L"folder.dat/inner.dat"}) {
        EXPECT_EQ(tablesIn(path(name)), all);
    }
    EXPECT_EQ(bytesOf(path(L"a foreign file.dat")), std::string(5000, '?'));

    InitDataBase(m_user, L"gallery.dat");
    EXPECT_EQ(counts(), (std::vector{0, 0, 0}));
}
