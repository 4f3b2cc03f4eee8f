// The shortcut list: its table and upgrade, its rows, who owns what, and the files behind icons.

#include "databaseservice/fastaccessdbprovider.h"
#include "support/enginelines.h"
#include "support/filebytes.h"
#include "support/storetest.h"

#include <memory>

using namespace testsupport;
using namespace DatabaseService;
using namespace DatabaseService::FastAccessDBProvider;

namespace {

constexpr const char* rotateless = "CREATE TABLE FastAccess (Id INTEGER PRIMARY KEY AUTOINCREMENT NOT NULL, [Index] "
                                   "INTEGER, DataType INTEGER, IconPath TEXT, Title TEXT, Tip TEXT, UpdataTime "
                                   "INTEGER, FilePath TEXT, FileId TEXT, ParentId TEXT)";

class FastAccess : public StoreTest {
protected:
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
    const std::string schema =
        "SELECT group_concat(name || ' ' || type || substr('!', 1, \"notnull\") || substr('*', 1, "
        "pk) || ifnull('=' || dflt_value, '')) FROM pragma_table_info('FastAccess')";
    const std::string upToDate = "'Id INTEGER!*,Index INTEGER,DataType INTEGER,IconPath TEXT,Title TEXT,Tip TEXT,"
                                 "UpdataTime INTEGER,FilePath TEXT,FileId TEXT,ParentId TEXT,Rotate INTEGER=0'";
    EXPECT_EQ(SqliteFile(m_path).value(schema), upToDate);

    std::filesystem::remove(m_path);
    SqliteFile(m_path).exec(std::string(rotateless) + "; INSERT INTO FastAccess([Index], Title) VALUES(3, 'old')");
    const std::vector<FastAccessTable> rows = all();
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0].Title, "old");
    EXPECT_EQ(rows[0].Rotate, 0);
    EXPECT_EQ(SqliteFile(m_path).value(schema), upToDate);

    const std::string before = bytesOf(m_path);
    EXPECT_TRUE(InitFastAccessDB());
    EXPECT_EQ(bytesOf(m_path), before);
    EXPECT_TRUE(m_log.failuresWere({})) << "no second column of the name";
}

TEST_F(FastAccess, AnyWordInTheStoredSqlKeepsTheColumnOut)
{
    SqliteFile(m_path).exec(std::string(rotateless) + "; CREATE TABLE other(Rotate)");
    FastAccessTableProvider().AddColumnIfMissing("PARENT");
    EXPECT_EQ(SqliteFile(m_path).value("SELECT count(*) FROM pragma_table_info('FastAccess')"), "10");
    FastAccessTableProvider().AddColumnIfMissing("absent");
    EXPECT_EQ(SqliteFile(m_path).value("SELECT name FROM pragma_table_info('FastAccess') WHERE cid = 10"), "'Rotate'");
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
    EXPECT_EQ(
        SqliteFile(m_path).query("SELECT * FROM FastAccess"),
        (Rows{
            {"1", "-2", "3", "'icon'", "'t\u00EFtle'", "'tip'", "5000000000", "'path'", "'file'", "'parent'", "-11"},
            {"2", "0", "0", "''", "''", "''", "-1", "''", "''", "''", "0"},
            {"3", "7", "3", "'icon'", "'it's \uFFFD'", "'tip'", "5000000000", "'path'", "'file'", "'parent'", "-11"}}));

    const std::vector<FastAccessTable> rows = all();
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(rows[0].Id, 3);
    EXPECT_EQ(rows[1].Id, 2);
    // What was read, written over another row, is that row.
    FastAccessTable moved = rows[2];
    moved.Id = 2;
    EXPECT_TRUE(UpdateFastAccessData(&moved));
    SqliteFile file(m_path);
    EXPECT_EQ(file.query("SELECT 1, \"Index\", DataType, IconPath, Title, Tip, UpdataTime, FilePath, FileId, ParentId, "
                         "Rotate FROM FastAccess WHERE Id = 2"),
              file.query("SELECT * FROM FastAccess WHERE Id = 1"));
    moved.Id = 9;
    EXPECT_TRUE(UpdateFastAccessData(&moved));
    EXPECT_EQ(all().size(), 3U);

    EXPECT_TRUE(DeleteFastAccessData(3));
    EXPECT_TRUE(DeleteFastAccessData(3));
    EXPECT_EQ(all().size(), 2U);
    EXPECT_EQ(add(defaults), 4) << "an id is not given twice";
    file.exec("UPDATE FastAccess SET Id = 4294967296 WHERE Id = 4");
    EXPECT_EQ(add(defaults), 1) << "cut to the member";

    DropFastAccessTable();
    EXPECT_EQ(file.value("SELECT count(*) FROM sqlite_master WHERE name = 'FastAccess'"), "0");
    DropFastAccessTable();
    EXPECT_TRUE(all().empty());
    EXPECT_TRUE(m_log.failuresWere({}));
}

TEST_F(FastAccess, NothingCrashesWithoutRecordOrCallback)
{
    int64 got = -1;
    EXPECT_TRUE(InsertFastAccessData(nullptr, [&](uint64, int64 address) { got = address; }));
    EXPECT_EQ(got, 0);
    EXPECT_TRUE(InsertFastAccessData(nullptr, {}));
    EXPECT_TRUE(UpdateFastAccessData(nullptr));
    const std::string leftOut = "a null record was left out";
    EXPECT_TRUE(m_log.failuresWere({{function + "FastAccessTableProvider::InsertFastAccessRow", leftOut},
                                    {function + "FastAccessTableProvider::InsertFastAccessRow", leftOut},
                                    {function + "FastAccessTableProvider::UpdateFastAccessRow", leftOut}}));
    FastAccessTable record;
    EXPECT_TRUE(InsertFastAccessData(&record, {}));
    EXPECT_EQ(record.Id, 1);
    SqliteFile(m_path).exec("DROP TABLE FastAccess; CREATE TABLE FastAccess(Id TEXT DEFAULT '07', [Index], DataType, "
                            "IconPath, Title, Tip, UpdataTime, FilePath, FileId, ParentId, Rotate)");
    EXPECT_EQ(add(record), 7) << "a foreign table, whose ids are text";
    EXPECT_TRUE(GetAllFastAccessData({}));
    EXPECT_TRUE(
        m_log.failuresWere({{function + "GetAllFastAccessData", "nothing was read: there is no callback to take it"}}));
}

TEST_F(FastAccess, ADeletedShortcutTakesItsCachedIconAlong)
{
    const struct {
        std::string icon;
        bool cached;
    } icons[] = {{"/FastAccess/a.png", true},  {"/my FastAccess icons/b.png", true}, {"/FastAccess\u76F8.png", true},
                 {"/fastaccess/d.png", false}, {"/Fast Access/e.png", false},        {"/f.png", false}};
    const std::filesystem::path cache = path(L"cache");
    GlobalParamWrapper::GetInstance()->SetUserCachePath(platform::toWide(platform::toUtf8(cache)));
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
    constexpr int opens = 3 + (3 + 1) + (3 + 2) + (3 + 2) + (3 + 1) + (3 + 1);
    std::vector<ExpectedLine> expected;
    for (int open = 0; open < opens; ++open) {
        expected.push_back(EngineLines("FastAccess.dat").open);
        expected.push_back(engine("OpenDatabase", "FastAccess.datdoes not exist."));
    }
    EXPECT_TRUE(m_log.failuresWere(expected));
}
