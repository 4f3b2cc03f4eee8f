// The shortcut list: its table and upgrade, its rows, who owns what, and the files behind icons.

#include "databaseservice/fastaccessdbprovider.h"
#include "support/filebytes.h"
#include "support/storetest.h"

#include <memory>
#include <utility>

using namespace testsupport;
using namespace DatabaseService;
using namespace DatabaseService::FastAccessDBProvider;

namespace {

constexpr const char* rotateless = "CREATE TABLE FastAccess (Id INTEGER PRIMARY KEY AUTOINCREMENT NOT NULL, [Index] "
                                   "INTEGER, DataType INTEGER, IconPath TEXT, Title TEXT, Tip TEXT, UpdataTime "
                                   "INTEGER, FilePath TEXT, FileId TEXT, ParentId TEXT)";

struct FastAccess : StoreTest {
    ~FastAccess() override { GlobalParamWrapper::GetInstance()->SetUserCachePath({}); }

    /// Takes what the callback is given, as a client does.
    static std::vector<FastAccessTable> all()
    {
        std::vector<FastAccessTable> rows;
        int calls = 0;
        EXPECT_TRUE(GetAllFastAccessData([&](uint64 zero, int64 address) {
            EXPECT_EQ(zero, 0U);
            ++calls;
            const std::unique_ptr<std::vector<FastAccessTable*>> records(
                reinterpret_cast<std::vector<FastAccessTable*>*>(address));
            for (FastAccessTable* record : *records) {
                rows.push_back(*std::unique_ptr<FastAccessTable>(record));
            }
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
    SqliteFile(m_path).exec(
        "DROP TABLE IF EXISTS FastAccess; CREATE TABLE FastAccess(Id TEXT DEFAULT '07', [Index], DataType, "
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
