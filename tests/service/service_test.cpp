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

using namespace testsupport;
using namespace DatabaseService;

namespace {

namespace fs = std::filesystem;

struct Service : StoreTest {
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
        m_log.take();
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
    std::string course()
    {
        const std::string start = "2 DatabaseService::InitDataBase: ";
        std::string course;
        for (const std::string& line : m_log.take()) {
            const bool isStart = line.starts_with(start);
            const std::string step = (isStart ? line.substr(start.size()) : line.substr(line.rfind('/') + 1)) + '\n';
            course += course.ends_with('\n' + step) || course == step ? "" : step;
        }
        return course;
    }

    std::string tablesIn(const std::wstring& name) { return SqliteFile(path(name)).tables(); }

    const std::wstring m_user = GlobalParamWrapper::GetInstance()->GetUserDataBaseFolder();
    const std::vector<std::wstring> stores{L"main.dat", L"gallery.dat", L"FastAccess.dat"};
};

} // namespace

TEST_F(Service, StoresStartInOrder)
{
    InitDataBase(m_user);
    EXPECT_EQ(
        course(),
        "InitDB.Start(One parameter)\ng_userDataBaseFolder = " + platform::toUtf8(m_user) +
            "\nInitMainDatabase.Start\nmain.dat\nInitMainDatabase.End\nFastAccess.dat\nInitDB.End(One parameter)\n");
    EXPECT_EQ(g_userDataBaseFolder, m_user);
    EXPECT_EQ(std::distance(fs::directory_iterator(m_folder.path()), {}), 2);

    fillAll();
    InitDataBase(g_userDataBaseFolder, L"gallery.dat");
    EXPECT_EQ(course(),
              "InitDB.Start(Two parameters),pGalleryDbName:gallery.dat\nInitMainDatabase.Start\nmain.dat\n"
              "InitMainDatabase.End\ngallery.dat\nFastAccess.dat\nInitDB.End(Two parameters)\n");
    EXPECT_EQ(g_userDataBaseFolder, m_user);
    EXPECT_EQ(counts(), (std::vector{1, 1, 1})) << "what is there stays";
    fs::create_directory(path(L"other"));
    InitDataBase(wide(path(L"other")));
    EXPECT_TRUE(fs::is_empty(path(L"other"))) << "the folder is only remembered; stores are where the settings say";
}

TEST_F(Service, ARefusedFolderOrNameChangesNothing)
{
    g_userDataBaseFolder = L"before";
    const std::wstring missing = m_user + L"/missing";
    const std::string started = "InitDB.Start(Two parameters),pGalleryDbName:";
    const std::pair<std::function<void()>, std::string> refused[] = {
        {[] { InitDataBase({}); }, "InitDB.Start(One parameter)\n"},
        {[&] { InitDataBase(missing); }, "InitDB.Start(One parameter)\n"},
        {[] { InitDataBase({}, L"\u76F8.dat"); }, started + "\u76F8.dat\n"},
        {[&] { InitDataBase(m_user, {}); }, started + '\n'},
        {[] { ResetDataBase({}, L"a"); }, ""},
        {[&] { ResetDataBase(missing, L"a"); }, ""},
        {[&] { ResetDataBase(m_user, {}); }, ""},
        {[] { ResetDataBaseChangeUser({}); }, ""},
        {[&] { ResetDataBaseChangeUser(missing); }, ""},
    };
    for (const auto& [call, lines] : refused) {
        SCOPED_TRACE(&call - &refused[0].first);
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

TEST_F(Service, ResetEmptiesTheGalleryAndNothingElse)
{
    fillAll();
    GalleryDBProvider::InitGalleryDatabase(L"other.dat");
    m_log.take();
    g_userDataBaseFolder.clear();
    ResetDataBase(m_user, L"gallery.dat");
    EXPECT_EQ(course(), "gallery.dat\n");
    EXPECT_EQ(g_userDataBaseFolder, m_user);
    EXPECT_EQ(tablesIn(L"gallery.dat"), "");
    InitDataBase(m_user, L"gallery.dat");
    EXPECT_EQ(counts(), (std::vector{1, 0, 1}));
    EXPECT_NE(tablesIn(L"other.dat"), "");
}

TEST_F(Service, AChangeOfUserEmptiesTheTransfersAndNothingElse)
{
    fillAll();
    TransmissionDB::TransDbConn::DeleteTasksFromTransferTask(0); // lays down the tables
    m_log.take();
    g_userDataBaseFolder = L"before";
    ResetDataBaseChangeUser(m_user);
    EXPECT_EQ(course(), "transmission.dat\n");
    EXPECT_EQ(g_userDataBaseFolder, L"before");
    EXPECT_EQ(tablesIn(L"transmission.dat"), "");
    EXPECT_EQ(counts(), (std::vector{1, 1, 1}));
}

// Whatever happens to one store, a start leaves the others alone and comes back.
TEST_F(Service, AStoreThatFailsLeavesTheOthersAlone)
{
    fillAll();
    for (std::size_t victim = 0; victim < stores.size(); ++victim) {
        const fs::path file = path(stores[victim]);
        const std::string before = bytesOf(file);
        for (const std::string& damaged : {before.substr(0, before.size() / 2), std::string(5000, '?')}) {
            SCOPED_TRACE(platform::toUtf8(stores[victim]) + " of " + std::to_string(damaged.size()));
            writeBytes(file, damaged);
            InitDataBase(m_user, L"gallery.dat");
            std::vector<int> expected(3, 1);
            std::vector<int> found = counts();
            expected[victim] = found[victim] = 0;
            EXPECT_EQ(found, expected);
            EXPECT_EQ(bytesOf(file), damaged);
            EXPECT_FALSE(m_log.failuresWere({}));
        }
        writeBytes(file, before);
    }
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
    const bool bytesAreNames = sizeof(fs::path::value_type) == 1; // where a name need not be text
    if (bytesAreNames) {
        writeBytes(m_folder.path() / "\xFF.dat", "?");
    }
    const std::string make = "CREATE TABLE plain(a); CREATE TABLE \"two words\"(a); CREATE TABLE counted(id INTEGER "
                             "PRIMARY KEY AUTOINCREMENT); INSERT INTO counted DEFAULT VALUES";
    fs::create_directory(path(L"folder.dat"));
    const std::vector<std::wstring> others{L"backup.dat.bak", L"CAPITALS.DAT", L"xdat", L"longer.data",
                                           L"folder.dat/inner.dat"};
    for (const std::wstring& name : others) {
        SqliteFile(path(name)).exec(make);
    }
    SqliteFile(path(L"\u76F8.dat")).exec(make);
    SqliteFile(path(L".dat")).exec(make);
    writeBytes(path(L"a foreign file.dat"), std::string(5000, '?'));
    m_log.take();

    wipe.DropAllTablesBasedOnDBName("\u76F8.dat");
    EXPECT_TRUE(m_log.failuresWere({EngineLines("\u76F8.dat").prepare}));
    EXPECT_EQ(tablesIn(L"\u76F8.dat"), "two words");

    wipe.SearchAllDatFile();
    const std::vector<std::string> log = m_log.take();
    EXPECT_EQ(std::ranges::count_if(log, [](const auto& line) { return line.starts_with('5'); }), bytesAreNames ? 4 : 3)
        << "two tables of two words, a foreign file and a name that is no text";
    EXPECT_FALSE(fs::exists(path(L"\uFFFD.dat")));
    EXPECT_EQ(tablesIn(L".dat"), "two words");
    for (const wchar_t* name : {L"main.dat", L"FastAccess.dat", L"gallery.dat", L"DriveModuleData.dat"}) {
        EXPECT_EQ(tablesIn(name), "");
    }
    for (const std::wstring& name : others) {
        EXPECT_EQ(tablesIn(name), "counted,plain,two words");
    }
    EXPECT_EQ(bytesOf(path(L"a foreign file.dat")), std::string(5000, '?'));

    InitDataBase(m_user, L"gallery.dat");
    EXPECT_EQ(counts(), (std::vector{0, 0, 0}));
}
