// The client's file lists: the statements to the character, what hides a row, and what lists do with bad input.

#include "databaseservice/clouddriverdb.h"
#include "support/drivefields.h"
#include "support/observed.h"
#include "support/plainlines.h"
#include "support/storetest.h"

#include <algorithm>
#include <fstream>
#include <limits>
#include <ranges>

using namespace testsupport;
using namespace DatabaseService;

namespace {

using Ids = std::vector<std::string>;
using Records = std::vector<DriveDataTable>;

constexpr int64 day = 86400;
constexpr int64 now = 100 * day;
constexpr int64 limit = 70 * day; // what was recycled then, or before, has expired

/// The lists with their statements traced and the open hook at hand.
class TracedLists : public CloudDriverDb {
public:
    /// The statements since the last look, without the connection's number.
    Ids statements()
    {
        Ids all = m_trace.take();
        for (std::string& sql : all) {
            sql.erase(0, sql.find(':') + 1);
        }
        return all;
    }

    void rebind() { CloudDriverDb::OpenAfter(m_db); }

protected:
    void OpenAfter(sqlite3* db) override
    {
        CloudDriverDb::OpenAfter(db);
        m_db = db;
        m_trace.attach(db);
    }

private:
    StatementTrace m_trace;
    sqlite3* m_db = nullptr;
};

Ids idsOf(const Records& records)
{
    Ids ids;
    std::ranges::transform(records, std::back_inserter(ids), &DriveDataTable::GetFileid);
    return ids;
}

/// The ids in ascending order of what a list gives.
template <class List> Ids idsIn(List list)
{
    Records records;
    list(records);
    Ids ids = idsOf(records);
    std::ranges::sort(ids);
    return ids;
}

class CloudLists : public StoreTest {
protected:
    CloudLists()
    {
        settings().SetServerTime(now);
        settings().SetRecyFileAutoDelInterval(30);
        settings().SetEnableShowLostDiskFile(false);
        m_drive.InitDatabase();
        CloudDriverDb::InitDatabasePath(wide(L"DriveModuleData.dat"));
        m_lists.OpenUnicodePath(wide(L"DriveModuleData.dat").c_str());
        EXPECT_TRUE(m_log.failuresWere({}));
    }
    ~CloudLists() override { CloudDriverDb::InitDatabasePath({}); }

    static GlobalParamWrapper& settings() { return *GlobalParamWrapper::GetInstance(); }

    std::wstring wide(const std::wstring& name) const { return platform::toWide(platform::toUtf8(path(name))); }

    Ids logged() { return takePlainLines(m_log); }

    Ids files(const std::string& parentId)
    {
        return idsIn([&](Records& out) { m_lists.QueryChildFile(parentId, 0, 99, CLOUD_DB_SORT_NAME_ASC, out); });
    }
    Ids folders(const std::string& parentId)
    {
        return idsIn([&](Records& out) { m_lists.QueryChildFolder(parentId, 0, 99, CLOUD_DB_SORT_NAME_ASC, out); });
    }

    void insert(const std::string& columns, const std::string& values)
    {
        m_file.exec("INSERT INTO DriveDataTable(" + columns + ") VALUES " + values);
    }

    DriverDBProviderBase m_drive;
    TracedLists m_lists;
    SqliteFile m_file{path(L"DriveModuleData.dat"), SqliteFile::Collation::NameCompare};
};

std::string replaced(std::string text, const std::string& mark, const std::string& by)
{
    for (std::size_t at = text.find(mark); at != std::string::npos; at = text.find(mark, at + by.size())) {
        text.replace(at, mark.size(), by);
    }
    return text;
}

} // namespace

TEST_F(CloudLists, EveryStatementIsKeptToTheCharacter)
{
    struct Case {
        std::function<void()> call;
        Ids statements; // with {list}, {count}, {folder}, {file}, {live} and {display}
    };
    TracedLists& db = m_lists;
    int64 folders = 0;
    int64 files = 0;
    DriveDataTable record;
    DriveFullTask task{};
    Records out;
    std::vector<Case> cases{
        {[&] { db.QueryChildFolder("p", 0, 10, CLOUD_DB_SORT_NAME_ASC, out); },
         {"{list} where parentId = 'p'  and {folder} and {live} and  moveBatchId = 0{display}"
          " order by  name COLLATE NameCompare  limit 0, 10 "}},
        {[&] { db.QueryChildFile("p", 3, 4, CLOUD_DB_SORT_SIZE_DESC, out); },
         {"{list} where parentId = 'p'  and {file} and {live} and  moveBatchId = 0{display}"
          " order by size desc, name COLLATE NameCompare  limit 3, 4 "}},
        {[&] { db.QueryChildFolder("", 0, 10, CLOUD_DB_SORT_NAME_DESC, out); },
         {"{list} where directlyRecycled=1  and {folder} and  restoreBatchId = 0 and  hardDelBatchId = 0"
          " and  recycledTime > 6048000 {display} order by  name COLLATE NameCompare desc  limit 0, 10 "}},
        {[&] { db.QueryChildFile("", 0, 10, CLOUD_DB_SORT_TYPE(0), out); },
         {"{list} where directlyRecycled=1  and {file} and  restoreBatchId = 0 and  hardDelBatchId = 0"
          " and  recycledTime > 6048000 {display} limit 0, 10 "}},
        {[&] { db.QueryRecycleExpiredFile(5, 7, 1234, out); },
         {"{list} where directlyRecycled=1  and  restoreBatchId = 0 and  hardDelBatchId = 0"
          " and  recycledTime <= 1234  limit 5, 7 "}},
        {[&] { db.QueryRecycleExpiredFile(0, 1, -1, out); },
         {"{list} where directlyRecycled=1  and  restoreBatchId = 0 and  hardDelBatchId = 0"
          " and  recycledTime <= 18446744073709551615  limit 0, 1 "}},
        {[&] { db.QueryRecycleFolder("p", out); },
         {"{list} where parentId = 'p'  and {folder} and  directlyRecycled=0 "}},
        {[&] { db.UpdateRecycleChild("p", -2); },
         {"update DriveDataTable set recycled=-2 where parentId='p' and directlyRecycled=0"}},
        {[&] { db.QueryFileInfo("f", record); }, {"{list} where fileId='f'"}},
        {[&] { db.GetDuplicateName("p", "n"); },
         {"{count} where parentId = 'p'  and {live} and  moveBatchId = 0 and  name = 'n' "}},
        {[&] { db.GetSqlResult("select 1", out); }, {"select 1"}},
        {[&] { db.GetFirstSyncFolder(task); },
         {"select fileId,cursor,state,updateTime,data1,data2,data3,data4 from DriveFolderSync"
          " order by updateTime desc limit 1"}},
        {[&] { db.GetFullTaskStatus("f"); }, {"select state from DriveFullTask  where fileId='f' limit 1"}},
        {[&] { db.GetTotalNumber(); }, {"{count} where {live}"}},
        {[&] { db.GetTotalFolderNumber(); }, {"{count} where {live} and {folder}"}},
        {[&] { db.GetRecycleTotalNumber(); }, {"{count} where recycled = 1"}},
        {[&] { db.GetRecycleFolderNumber(); }, {"{count} where recycled = 1 and {folder}"}},
        {[&] { db.GetSubAllNumber("p"); }, {"{count} where parentId = 'p' "}},
        {[&] { db.GetFolderChildNumber("p", folders, files); },
         {"{count} where parentId = 'p' and {folder} and {live} and  moveBatchId = 0{display}",
          "{count} where parentId = 'p' and {file} and {live} and  moveBatchId = 0{display}"}},
        {[&] { db.GetSubFileNumber(""); },
         {"{count} where parentId = '' and {file} and {live} and  moveBatchId = 0{display}"}},
        {[&] { db.GetRecycleChildNumber(folders, files); },
         {"{count} where  directlyRecycled=1 and {folder} and  restoreBatchId = 0 and  hardDelBatchId = 0{display}",
          "{count} where  directlyRecycled=1 and {file} and  restoreBatchId = 0 and  hardDelBatchId = 0"
          " and  recycledTime > 6048000 {display}"}},
        {[&] { db.GetTypeTotalNumber(CLOUD_DB_VIEW_RECYCLE); }, {"{count} where directlyRecycled=1 {display}"}},
        // What asks nothing.
        {[&] {
             db.UpdateRecycleChild("", 1);
             EXPECT_FALSE(db.QueryFileInfo("", record));
             EXPECT_EQ(db.GetFullTaskStatus(""), -1);
             EXPECT_EQ(db.GetSubAllNumber(""), 0);
             EXPECT_EQ(db.GetSubFolderNumber(""), 0);
             EXPECT_FALSE(db.GetSqlResult(nullptr, out));
         },
         {}},
    };
    for (const int view : {1, 2, 3, 4, 5}) {
        const std::string condition =
            " where classIndex=" + std::to_string(1 << view) + "  and {file} and {live}{display}";
        cases.push_back({[&, view] {
                             db.QueryTypeFile(CLOUD_DB_VIEW_TYPE(view), 0, 9, CLOUD_DB_SORT_TYPE(7), out);
                             db.GetTypeTotalNumber(CLOUD_DB_VIEW_TYPE(view));
                         },
                         {"{list}" + condition + " order by fileExtSign, name COLLATE NameCompare  limit 0, 9 ",
                          "{count}" + condition}});
    }
    for (const int view : {-1, 0, 6, 7, 100}) {
        cases.push_back({[&, view] {
                             const auto type = CLOUD_DB_VIEW_TYPE(view);
                             EXPECT_FALSE(db.QueryTypeFile(type, 0, 9, CLOUD_DB_SORT_NAME_ASC, out));
                             EXPECT_EQ(view == 6 ? 0 : db.GetTypeTotalNumber(type), 0);
                         },
                         {}});
    }
    for (const bool showLost : {false, true}) {
        settings().SetEnableShowLostDiskFile(showLost);
        const std::pair<std::string, std::string> marks[] = {
            {"{list}", "select " + driveColumnList() + " from DriveDataTable"},
            {"{count}", "select count(*) from DriveDataTable"},
            {"{folder}", " mimeType = 'application/vnd.tessix-apps.folder'"},
            {"{file}", " mimeType != 'application/vnd.tessix-apps.folder'"},
            {"{live}", " recycled = 0 and directlyRecycled = 0 and softDelBatchId = 0"},
            {"{display}", showLost ? "" : " and  (needToDisplay = 0 or needToDisplay = 1)"},
        };
        for (auto [call, expected] : cases) {
            SCOPED_TRACE(expected.empty() ? "nothing to ask" : expected.front());
            for (const auto& [mark, text] : marks) {
                for (std::string& sql : expected) {
                    sql = replaced(sql, mark, text);
                }
            }
            call();
            EXPECT_EQ(m_lists.statements(), expected);
        }
    }
}

TEST_F(CloudLists, ListsHideWhatTheirRulesHide)
{
    insert("fileId, name, parentId, classIndex, mimeType, recycled, directlyRecycled, softDelBatchId, moveBatchId, "
           "needToDisplay",
           replaced(
               "('plain', 'plain', 'p', 4, '', 0, 0, 0, 0, 1), ('shown', 'shown', 'p', 4, '', 0, 0, 0, 0, 0), "
               "('lost', 'lost', 'p', 4, '', 0, 0, 0, 0, 2), ('moves', 'moves', 'p', 4, '', 0, 0, 0, 5, 1), "
               "('recycled', 'recycled', 'p', 4, '', 1, 0, 0, 0, 1), ('direct', 'direct', 'p', 4, '', 0, 1, 0, 0, 1), "
               "('deleted', 'deleted', 'p', 4, '', 0, 0, 5, 0, 1), ('other', 'other', 'p', 6, '', 0, 0, 0, 0, 1), "
               "('docs', 'docs', 'p', 4, folder, 0, 0, 0, 0, 1), ('gone', 'gone', 'p', 4, folder, 1, 0, 0, 0, 1), "
               "('root', 'root', '', 0, '', 0, 0, 0, 0, 1)",
               "folder", textCell(DriveDataTable::folderMimeType)));
    for (const bool showLost : {false, true}) {
        SCOPED_TRACE(showLost);
        settings().SetEnableShowLostDiskFile(showLost);
        const auto with = [&](Ids ids) {
            if (showLost) {
                ids.emplace_back("lost");
            }
            std::ranges::sort(ids);
            return ids;
        };
        EXPECT_EQ(files("p"), with({"plain", "shown", "other"}));
        EXPECT_EQ(folders("p"), Ids{"docs"});
        EXPECT_EQ(idsIn([&](Records& out) { m_lists.QueryRecycleFolder("p", out); }), (Ids{"docs", "gone"}));
        EXPECT_EQ(idsIn([&](Records& out) {
                      m_lists.QueryTypeFile(CLOUD_DB_VIEW_CLASS4, 0, 99, CLOUD_DB_SORT_NAME_ASC, out);
                  }),
                  with({"plain", "shown", "moves"}));
        EXPECT_EQ(m_lists.GetTypeTotalNumber(CLOUD_DB_VIEW_CLASS4), 3 + showLost);
        int64 folderCount = -1;
        int64 fileCount = -1;
        m_lists.GetFolderChildNumber("p", folderCount, fileCount);
        EXPECT_EQ(std::pair(folderCount, fileCount), std::pair(int64{1}, int64{3 + showLost}));
        EXPECT_EQ(m_lists.GetSubFileNumber(""), 1);
        EXPECT_EQ(m_lists.GetSubAllNumber("p"), 10) << "hidden rows too";
        EXPECT_EQ(m_lists.GetTotalNumber(), 7) << "lost ones always";
        EXPECT_EQ(m_lists.GetTotalFolderNumber(), 1);
        EXPECT_EQ(m_lists.GetRecycleTotalNumber(), 2);
        EXPECT_EQ(m_lists.GetRecycleFolderNumber(), 1);
        for (const char* name : {"plain", "shown", "lost", "other", "docs"}) {
            EXPECT_TRUE(m_lists.GetDuplicateName("p", name)) << name;
        }
        for (const char* name : {"moves", "recycled", "direct", "deleted", "Plain", "root"}) {
            EXPECT_FALSE(m_lists.GetDuplicateName("p", name)) << name;
        }
    }
}

TEST_F(CloudLists, TheBinKeepsRowsUntilTheyExpire)
{
    for (const char* kind : {"folder", "file"}) {
        const std::string mime = kind == std::string("folder") ? DriveDataTable::folderMimeType : "image/png";
        const auto row = [&](const char* id, int64 time, const char* rest) {
            insert("fileId, mimeType, recycled, directlyRecycled, recycledTime, restoreBatchId, hardDelBatchId, "
                   "needToDisplay",
                   std::string("('") + id + ' ' + kind + "', '" + mime + "', 1, 1, " + std::to_string(time) + ", " +
                       rest + ')');
        };
        row("fresh", limit + 1, "0, 0, 1");
        row("edge", limit, "0, 0, 1");
        row("old", 5, "0, 0, 0");
        row("restoring", limit + 1, "3, 0, 1");
        row("destroyed", limit + 1, "0, 3, 1");
        row("lost", limit + 1, "0, 0, 2");
    }
    insert("fileId, mimeType, recycled, directlyRecycled, recycledTime", "('with its parent', '', 1, 0, 6048001)");
    const auto expired = [&](int64 time) {
        return idsIn([&](Records& out) { m_lists.QueryRecycleExpiredFile(0, 99, time, out); });
    };
    const auto counts = [&] {
        int64 folderCount = -1;
        int64 fileCount = -1;
        m_lists.GetRecycleChildNumber(folderCount, fileCount);
        return std::pair(folderCount, fileCount);
    };
    using Counts = std::pair<int64, int64>;
    EXPECT_EQ(files(""), Ids{"fresh file"});
    EXPECT_EQ(folders(""), Ids{"fresh folder"});
    EXPECT_EQ(expired(limit), (Ids{"edge file", "edge folder", "old file", "old folder"}));
    EXPECT_EQ(counts(), Counts(3, 1)) << "folders count when they have expired, files do not";
    EXPECT_EQ(m_lists.GetTypeTotalNumber(CLOUD_DB_VIEW_RECYCLE), 10);
    EXPECT_EQ(m_lists.GetRecycleTotalNumber(), 13);

    settings().SetEnableShowLostDiskFile(true);
    EXPECT_EQ(files(""), (Ids{"fresh file", "lost file"}));
    EXPECT_EQ(counts(), Counts(4, 2));
    EXPECT_EQ(m_lists.GetTypeTotalNumber(CLOUD_DB_VIEW_RECYCLE), 12);
    settings().SetEnableShowLostDiskFile(false);

    settings().SetRecyFileAutoDelInterval(1);
    EXPECT_EQ(files(""), Ids{"fresh file"}) << "the retention stays as it was first asked for";
    settings().SetServerTime(now - 1);
    EXPECT_EQ(files(""), (Ids{"edge file", "fresh file"})) << "the time is asked for at each call";
    settings().SetServerTime(now + 1);
    EXPECT_EQ(files(""), Ids{});
    settings().SetServerTime(10);
    EXPECT_EQ(files(""), Ids{}) << "a limit before 1970 is a huge one";
    EXPECT_EQ(expired(-1).size(), 8U);
}

TEST_F(CloudLists, PagesComeInEveryOrder)
{
    insert("fileId, name, size, modifiedTime, fileExtSign, parentId, mimeType, recycled, directlyRecycled, "
           "softDelBatchId, moveBatchId",
           "('a', 'x10', 5, 30, 1, 'p', '', 0, 0, 0, 0), ('b', 'x2', 5, 10, 2, 'p', '', 0, 0, 0, 0), "
           "('c', 'x1', 9, 30, 2, 'p', '', 0, 0, 0, 0), ('d', 'X3', 9, 10, 1, 'p', '', 0, 0, 0, 0)");
    const std::string key = " name COLLATE NameCompare";
    struct Sort {
        int sort;
        std::string text;
        std::string ids;
    };
    const Sort sorts[] = {
        {CLOUD_DB_SORT_MODIFIED_ASC, " order by modifiedTime," + key + " ", "bdca"},
        {CLOUD_DB_SORT_MODIFIED_DESC, " order by modifiedTime desc," + key + " ", "cabd"},
        {CLOUD_DB_SORT_SIZE_ASC, " order by size," + key + " ", "bacd"},
        {CLOUD_DB_SORT_SIZE_DESC, " order by size desc," + key + " ", "cdba"},
        {CLOUD_DB_SORT_NAME_DESC, " order by " + key + " desc ", "adbc"},
        {CLOUD_DB_SORT_NAME_ASC, " order by " + key + " ", "cbda"},
        {CLOUD_DB_SORT_EXT_ASC, " order by fileExtSign," + key + " ", "dacb"},
        {CLOUD_DB_SORT_EXT_DESC, " order by fileExtSign desc," + key + " ", "cbda"},
        {0, "", "abcd"},
        {9, "", "abcd"},
        {-1, "", "abcd"},
        {1000, "", "abcd"},
    };
    const auto joined = [](const Records& records) {
        std::string ids;
        for (const std::string& id : idsOf(records)) {
            ids += id;
        }
        return ids;
    };
    for (const auto& [sort, text, ids] : sorts) {
        SCOPED_TRACE(sort);
        Records out;
        EXPECT_TRUE(m_lists.QueryChildFile("p", 0, 10, CLOUD_DB_SORT_TYPE(sort), out));
        EXPECT_EQ(joined(out), ids);
        const std::string sql = m_lists.statements().at(0);
        EXPECT_TRUE(sql.ends_with("needToDisplay = 1)" + text + " limit 0, 10 ")) << sql;
    }
    constexpr int most = std::numeric_limits<int>::max();
    constexpr int least = std::numeric_limits<int>::min();
    struct Page {
        int offset;
        int count;
        std::string text;
        std::string ids;
    };
    const Page pages[] = {
        {0, 2, "0, 2", "cb"},
        {2, 3, "2, 3", "da"},
        {4, 1, "4, 1", ""},
        {0, 0, "0, 0", ""},
        {1, -1, "1, 4294967295", "bda"},
        {-1, 1, "4294967295, 1", ""},
        {most, most, "2147483647, 2147483647", ""},
        {least, least, "2147483648, 2147483648", ""},
    };
    for (const auto& [offset, count, text, ids] : pages) {
        SCOPED_TRACE(text);
        Records out{treeRecord("z", "")};
        EXPECT_TRUE(m_lists.QueryChildFile("p", offset, count, CLOUD_DB_SORT_NAME_ASC, out));
        EXPECT_EQ(joined(out), "z" + ids) << "what was there stays";
        EXPECT_TRUE(m_lists.statements().at(0).ends_with(" limit " + text + " "));
    }
}

TEST_F(CloudLists, ARowGivesEveryMember)
{
    const Records stored{filledRecord("a", 1), filledRecord("b", 2)};
    m_drive.InsertDriveDataBatch(stored);
    insert("fileId", "('bare')");
    Records out;
    const std::string text = "select " + driveColumnList() + " from DriveDataTable order by fileId";
    EXPECT_TRUE(m_lists.GetSqlResult(text.c_str(), out));
    DriveDataTable bare;
    bare.SetFileid("bare");
    bare.SetKind("");
    bare.SetCloudContentStatus(1); // the column's default
    for (const DriveField& field : driveFields()) {
        if (!field.text && field.column != "needToDisplay") {
            field.set(bare, "0");
        }
    }
    EXPECT_EQ(cellsOf(out), cellsOf({stored[0], stored[1], bare})) << "NULL reads as empty";

    m_drive.ReplaceDriveAllData({filledRecord("b", 3)});
    ASSERT_EQ(m_file.query("SELECT localAbsolutePath FROM DriveDataTable WHERE fileId = 'b'"), (Rows{{"NULL"}}));
    DriveDataTable replacedRow = filledRecord("b", 3);
    replacedRow.SetLocalAbsolutePath("");
    DriveDataTable record = filledRecord("x", 9);
    EXPECT_TRUE(m_lists.QueryFileInfo("b", record));
    EXPECT_EQ(cellsOf(record), cellsOf(replacedRow));
    record = filledRecord("x", 9);
    EXPECT_FALSE(m_lists.QueryFileInfo("B", record));
    EXPECT_FALSE(m_lists.QueryFileInfo("", record));
    EXPECT_EQ(cellsOf(record), cellsOf(filledRecord("x", 9))) << "left alone";
}

TEST_F(CloudLists, TasksAreReadFromTheirTables)
{
    DriveFullTask task{"untouched", "c", 1, 2, "", "", "", ""};
    EXPECT_FALSE(m_lists.GetFirstSyncFolder(task));
    EXPECT_EQ(task.fileId, "untouched");
    m_file.exec(
        "INSERT INTO DriveFolderSync VALUES('old', '', 1, 5, '', '', '', ''), "
        "('new', 'cursor', 4294967297, 4398046511104, 'd1', NULL, 'd3', 'd4'), ('mid', '', 1, 7, '', '', '', '')");
    EXPECT_TRUE(m_lists.GetFirstSyncFolder(task));
    EXPECT_EQ(std::tie(task.fileId, task.cursor, task.data1, task.data2, task.data3, task.data4),
              std::make_tuple("new", "cursor", "d1", "", "d3", "d4"));
    EXPECT_EQ(task.state, 1) << "the lower 32 bits";
    EXPECT_EQ(task.updateTime, int64{1} << 42);

    m_file.exec("INSERT INTO DriveFullTask(fileId, state) VALUES('a', 3), ('b', 4294967296), ('c', NULL)");
    const std::pair<const char*, int64> states[] = {{"a", 3}, {"b", int64{1} << 32}, {"c", 0}, {"A", -1}, {"", -1}};
    for (const auto& [id, state] : states) {
        EXPECT_EQ(m_lists.GetFullTaskStatus(id), state) << id;
    }
}

TEST_F(CloudLists, OnlyAShortEnoughUpdateRuns)
{
    const std::string rest = "update DriveDataTable set recycled=1 where parentId='' and directlyRecycled=0";
    const std::string longest(258 - rest.size(), 'p');
    insert("fileId, parentId, recycled, directlyRecycled",
           "('a', '" + longest + "', 0, 0), ('b', '" + longest + "', 0, 1), ('c', '" + longest + "p', 0, 0)");
    m_lists.UpdateRecycleChild(longest, 1);
    m_lists.UpdateRecycleChild(longest + 'p', 1);
    m_lists.UpdateRecycleChild(longest, 10); // one digit more
    EXPECT_EQ(m_lists.statements().size(), 1U);
    EXPECT_EQ(m_file.query("SELECT recycled FROM DriveDataTable ORDER BY fileId"), (Rows{{"1"}, {"0"}, {"0"}}));
}

TEST_F(CloudLists, AFailedQueryGivesEmptyListsAndDefaults)
{
    struct Case {
        const char* name;
        std::function<void(TracedLists&)> prepare;
        std::string query;
        std::string write;
    };
    std::ofstream(path(L"foreign.dat")) << std::string(8192, 'x');
    const auto reopen = [this](const wchar_t* name) {
        return [this, name](TracedLists& lists) { EXPECT_TRUE(lists.OpenUnicodePath(wide(name).c_str())); };
    };
    SqliteFile locked(path(L"locked.dat"));
    locked.exec("CREATE TABLE DriveDataTable(a); BEGIN EXCLUSIVE");
    const std::string foreign = "file is not a database";
    const std::string busy = "database is locked";
    const std::string table = "no such table: DriveDataTable";
    const Case cases[] = {
        {"closed", [](TracedLists& lists) { lists.Close(); }, notOpen("QuerySqlResult"), notOpen("ExcuteSql")},
        {"empty", reopen(L"empty.dat"), sqliteFailed("", 1, table), sqliteFailed(table, 1, table)},
        {"foreign", reopen(L"foreign.dat"), sqliteFailed("", 26, foreign), sqliteFailed(foreign, 26, foreign)},
        {"locked",
         [&](TracedLists& lists) {
             lists.setBusyTimeout(1);
             reopen(L"locked.dat")(lists);
         },
         sqliteFailed("", 5, busy), sqliteFailed(busy, 5, busy)},
    };
    CloudDriverDb other;
    for (const auto& [name, prepare, query, write] : cases) {
        SCOPED_TRACE(name);
        prepare(m_lists);
        Records out{treeRecord("z", "")};
        EXPECT_TRUE(m_lists.QueryChildFile("p", 0, 1, CLOUD_DB_SORT_NAME_ASC, out));
        EXPECT_TRUE(m_lists.GetSqlResult("select fileId from DriveDataTable", out));
        EXPECT_EQ(idsOf(out), Ids{"z"});
        EXPECT_FALSE(m_lists.QueryFileInfo("z", out[0]));
        EXPECT_EQ(m_lists.GetTotalNumber(), 0);
        EXPECT_FALSE(m_lists.GetDuplicateName("p", "z"));
        EXPECT_EQ(logged(), Ids(5, query));
        m_lists.UpdateRecycleChild("p", 1);
        EXPECT_EQ(logged(), Ids{write});
        EXPECT_TRUE(other.GetSqlResult("select 1", out)) << "another object has a connection of its own";
    }
    insert("fileId, parentId", "('f', 'p')");
    EXPECT_EQ(other.GetSubAllNumber("p"), 1) << "and sees what is written";
    reopen(L"DriveModuleData.dat")(m_lists);
    EXPECT_EQ(m_lists.GetSubAllNumber("p"), 1);
}

TEST_F(CloudLists, ADamagedPageEndsAListInSilence)
{
    m_file.exec("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 200) "
                "INSERT INTO DriveDataTable(fileId, description) SELECT i, hex(zeroblob(500)) FROM n");
    m_lists.Close();
    const std::filesystem::path file = path(L"DriveModuleData.dat");
    const auto half = static_cast<std::streamoff>(std::filesystem::file_size(file) / 2);
    std::fstream(file, std::ios::in | std::ios::out | std::ios::binary).seekp(half)
        << std::string(static_cast<std::size_t>(half), '\xFF');
    CloudDriverDb lists;
    const auto rows = idsIn([&](Records& out) {
        const std::string all = "select " + driveColumnList() + " from DriveDataTable";
        EXPECT_TRUE(lists.GetSqlResult(all.c_str(), out));
    });
    EXPECT_GT(rows.size(), 10U);
    EXPECT_LT(rows.size(), 190U);
    EXPECT_EQ(logged(), Ids{});
}

TEST_F(CloudLists, WithoutAPathAnObjectStaysClosed)
{
    CloudDriverDb::InitDatabasePath({});
    CloudDriverDb lists;
    EXPECT_FALSE(lists.IsOpen());
    Records out;
    DriveFullTask task{};
    EXPECT_TRUE(lists.QueryChildFolder("p", 0, 1, CLOUD_DB_SORT_NAME_ASC, out));
    EXPECT_EQ(lists.GetTotalNumber(), 0);
    EXPECT_FALSE(lists.GetFirstSyncFolder(task));
    EXPECT_EQ(lists.GetFullTaskStatus("f"), -1);
    EXPECT_EQ(logged(), Ids(4, notOpen("QuerySqlResult")));
    EXPECT_TRUE(out.empty());
    CloudDriverDb::InitDatabasePath(wide(L"DriveModuleData.dat"));
    CloudDriverDb open;
    EXPECT_EQ(open.QueryTotalCount("PRAGMA busy_timeout", -1), 30000);
    CloudDriverDb copy(open);
    copy.Close();
    EXPECT_FALSE(open.IsOpen()) << "copies share the connection";
}

TEST_F(CloudLists, AQuoteEndsTheLiteral)
{
    insert("fileId, name, parentId, recycled, directlyRecycled, softDelBatchId, moveBatchId",
           "('f', 'it''s', 'p', 0, 0, 0, 0)");
    EXPECT_FALSE(m_lists.GetDuplicateName("p", "it's"));
    DriveDataTable record;
    EXPECT_FALSE(m_lists.QueryFileInfo("it's", record));
    EXPECT_EQ(m_lists.statements(), Ids{});
    EXPECT_EQ(
        logged(),
        (Ids{sqliteFailed("' ", 1, "near \"s\": syntax error"), sqliteFailed("'", 1, "near \"s\": syntax error")}));
}

TEST_F(CloudLists, AnOrderThatCannotBeBoundIsLogged)
{
    insert("fileId", "('f')");
    EXPECT_TRUE(m_lists.QuerySqlResult(
        "select fileId from DriveDataTable", [&](sqlite3_stmt*&, int64) { m_lists.rebind(); }, 0));
    EXPECT_EQ(logged(),
              Ids{plainLine("CloudDriverDb::OpenAfter",
                            "bindname[unable to delete/modify collation sequence due to active statements]")});
}
