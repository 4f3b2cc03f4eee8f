// The client's file lists: the statements to the character, what becomes of their rows, and what bad input does.

#include "databaseservice/clouddriverdb.h"
#include "support/drivefields.h"
#include "support/lists.h"
#include "support/observed.h"
#include "support/plainlines.h"

#include <limits>

using namespace testsupport;
using namespace DatabaseService;

namespace {

using Records = std::vector<DriveDataTable>;

constexpr int64 day = 86400;

/// What many statements have in common, and the marks that stand for it.
const std::vector<std::pair<std::string, std::string>> marks{
    {"{list}", "select " + joined(driveColumns(), ", ") + " from DriveDataTable"},
    {"{count}", "select count(*) from DriveDataTable"},
    {"{folder}", " mimeType = 'application/vnd.tessix-apps.folder'"},
    {"{file}", " mimeType != 'application/vnd.tessix-apps.folder'"},
    {"{live}", " recycled = 0 and directlyRecycled = 0 and softDelBatchId = 0"},
    {"{staying}", " moveBatchId = 0"},
    {"{binned}", " restoreBatchId = 0 and  hardDelBatchId = 0"},
    {"{recent}", " recycledTime > 6048000 "},
    {"{key}", " name COLLATE NameCompare"},
};

struct CloudLists : PlainTest {
    CloudLists()
    {
        settings().SetServerTime(100 * day);
        settings().SetRecyFileAutoDelInterval(30);
        settings().SetEnableShowLostDiskFile(false);
        m_drive.InitDatabase();
        CloudDriverDb::InitDatabasePath(m_path);
        m_lists.OpenUnicodePath(m_path.c_str());
        m_lists.QuerySqlResult(
            "select 1", [this](sqlite3_stmt*& row, int64) { m_trace.attach(sqlite3_db_handle(row)); }, 0);
        EXPECT_TRUE(m_log.failuresWere({}));
    }
    ~CloudLists() override { CloudDriverDb::InitDatabasePath({}); }

    static GlobalParamWrapper& settings() { return *GlobalParamWrapper::GetInstance(); }

    /// The statements since the last look, without the connection's number.
    Lines statements()
    {
        return mapped(m_trace.take(), [](const std::string& sql) { return sql.substr(2); });
    }

    /// The call runs exactly these statements, {display} in them or not as the setting says.
    void expectSql(const std::function<void()>& call, const Lines& wanted)
    {
        for (const bool showLost : {false, true}) {
            settings().SetEnableShowLostDiskFile(showLost);
            call();
            auto meanings = marks;
            meanings.emplace_back("{display}", showLost ? "" : " and  (needToDisplay = 0 or needToDisplay = 1)");
            Lines expected = wanted;
            for (std::string& sql : expected) {
                for (const auto& [mark, meaning] : meanings) {
                    if (const std::size_t at = sql.find(mark); at != std::string::npos) {
                        sql.replace(at, mark.size(), meaning);
                    }
                }
            }
            EXPECT_EQ(statements(), expected);
        }
    }

    const std::wstring m_path = wide(path(L"DriveModuleData.dat"));
    ObservedDrive m_drive;
    StatementTrace m_trace;
    CloudDriverDb m_lists;
    SqliteFile m_file{path(L"DriveModuleData.dat"), SqliteFile::Collation::NameCompare};
};

} // namespace

TEST_F(CloudLists, ListsAreAskedForToTheCharacter)
{
    CloudDriverDb& db = m_lists;
    DriveDataTable record;
    DriveFullTask task{};
    Records out;
    expectSql([&] { db.QueryChildFolder("p", 0, 10, CLOUD_DB_SORT_NAME_ASC, out); },
              {"{list} where parentId = 'p'  and {folder} and {live} and {staying}{display}"
               " order by {key}  limit 0, 10 "});
    expectSql([&] { db.QueryChildFolder("", 0, 10, CLOUD_DB_SORT_NAME_ASC, out); },
              {"{list} where directlyRecycled=1  and {folder} and {binned} and {recent}{display}"
               " order by {key}  limit 0, 10 "});
    expectSql([&] { db.QueryChildFile("", 3, 4, CLOUD_DB_SORT_TYPE(0), out); },
              {"{list} where directlyRecycled=1  and {file} and {binned} and {recent}{display} limit 3, 4 "});
    expectSql([&] { db.QueryRecycleExpiredFile(5, 7, 1234, out); },
              {"{list} where directlyRecycled=1  and {binned} and  recycledTime <= 1234  limit 5, 7 "});
    expectSql([&] { db.QueryRecycleExpiredFile(0, 1, -1, out); },
              {"{list} where directlyRecycled=1  and {binned}"
               " and  recycledTime <= 18446744073709551615  limit 0, 1 "});
    expectSql([&] { db.QueryRecycleFolder("p", out); },
              {"{list} where parentId = 'p'  and {folder} and  directlyRecycled=0 "});
    expectSql([&] { db.QueryFileInfo("f", record); }, {"{list} where fileId='f'"});
    expectSql([&] { db.GetSqlResult("select 1", out); }, {"select 1"});
    expectSql([&] { db.GetFirstSyncFolder(task); },
              {"select fileId,cursor,state,updateTime,data1,data2,data3,data4 from DriveFolderSync"
               " order by updateTime desc limit 1"});
    expectSql([&] { db.UpdateRecycleChild("p", -2); },
              {"update DriveDataTable set recycled=-2 where parentId='p' and directlyRecycled=0"});
}

TEST_F(CloudLists, CountsAreAskedForToTheCharacter)
{
    CloudDriverDb& db = m_lists;
    int64 folders = 0;
    int64 files = 0;
    expectSql([&] { db.GetTotalNumber(); }, {"{count} where {live}"});
    expectSql([&] { db.GetTotalFolderNumber(); }, {"{count} where {live} and {folder}"});
    expectSql([&] { db.GetRecycleTotalNumber(); }, {"{count} where recycled = 1"});
    expectSql([&] { db.GetRecycleFolderNumber(); }, {"{count} where recycled = 1 and {folder}"});
    expectSql([&] { db.GetSubAllNumber("p"); }, {"{count} where parentId = 'p' "});
    expectSql([&] { db.GetFolderChildNumber("p", folders, files); },
              {"{count} where parentId = 'p' and {folder} and {live} and {staying}{display}",
               "{count} where parentId = 'p' and {file} and {live} and {staying}{display}"});
    expectSql([&] { db.GetSubFileNumber(""); },
              {"{count} where parentId = '' and {file} and {live} and {staying}{display}"});
    expectSql([&] { db.GetRecycleChildNumber(folders, files); },
              {"{count} where  directlyRecycled=1 and {folder} and {binned}{display}",
               "{count} where  directlyRecycled=1 and {file} and {binned} and {recent}{display}"});
    expectSql([&] { db.GetTypeTotalNumber(CLOUD_DB_VIEW_RECYCLE); }, {"{count} where directlyRecycled=1 {display}"});
    expectSql([&] { db.GetDuplicateName("p", "n"); },
              {"{count} where parentId = 'p'  and {live} and {staying} and  name = 'n' "});
    expectSql([&] { db.GetFullTaskStatus("f"); }, {"select state from DriveFullTask  where fileId='f' limit 1"});
}

TEST_F(CloudLists, EachViewHasItsClass)
{
    Records out;
    for (const int number : {1, 2, 3, 4, 5}) {
        const auto view = CLOUD_DB_VIEW_TYPE(number);
        const std::string shown =
            " where classIndex=" + std::to_string(1 << number) + "  and {file} and {live}{display}";
        expectSql([&] { m_lists.QueryTypeFile(view, 0, 9, CLOUD_DB_SORT_NAME_ASC, out); },
                  {"{list}" + shown + " order by {key}  limit 0, 9 "});
        expectSql([&] { m_lists.GetTypeTotalNumber(view); }, {"{count}" + shown});
    }
}

TEST_F(CloudLists, EachSortHasItsOrder)
{
    const std::pair<int, std::string> sorts[] = {
        {CLOUD_DB_SORT_MODIFIED_ASC, " order by modifiedTime,{key} "},
        {CLOUD_DB_SORT_MODIFIED_DESC, " order by modifiedTime desc,{key} "},
        {CLOUD_DB_SORT_SIZE_ASC, " order by size,{key} "},
        {CLOUD_DB_SORT_SIZE_DESC, " order by size desc,{key} "},
        {CLOUD_DB_SORT_NAME_DESC, " order by {key} desc "},
        {CLOUD_DB_SORT_NAME_ASC, " order by {key} "},
        {CLOUD_DB_SORT_EXT_ASC, " order by fileExtSign,{key} "},
        {CLOUD_DB_SORT_EXT_DESC, " order by fileExtSign desc,{key} "},
        {9, ""},
        {-1, ""},
    };
    Records out;
    for (const auto& [number, order] : sorts) {
        const auto sort = CLOUD_DB_SORT_TYPE(number);
        expectSql([&] { m_lists.QueryChildFile("p", -1, std::numeric_limits<int>::min(), sort, out); },
                  {"{list} where parentId = 'p'  and {file} and {live} and {staying}{display}" + order +
                   " limit 4294967295, 2147483648 "});
    }
}

TEST_F(CloudLists, SomeArgumentsAskNothing)
{
    Records out;
    DriveDataTable record;
    m_lists.UpdateRecycleChild("", 1);
    EXPECT_FALSE(m_lists.QueryFileInfo("", record));
    EXPECT_FALSE(m_lists.GetSqlResult(nullptr, out));
    EXPECT_EQ(m_lists.GetFullTaskStatus(""), -1);
    EXPECT_EQ(m_lists.GetSubAllNumber(""), 0);
    EXPECT_EQ(m_lists.GetSubFolderNumber(""), 0);
    for (const int view : {-1, 0, 6, 7}) {
        EXPECT_FALSE(m_lists.QueryTypeFile(CLOUD_DB_VIEW_TYPE(view), 0, 9, CLOUD_DB_SORT_NAME_ASC, out));
        EXPECT_EQ(view == CLOUD_DB_VIEW_RECYCLE ? 0 : m_lists.GetTypeTotalNumber(CLOUD_DB_VIEW_TYPE(view)), 0);
    }
    EXPECT_EQ(statements(), Lines{});
}

TEST_F(CloudLists, TheRetentionIsAskedOnceAndTheTimeAtEachCall)
{
    Records out;
    m_lists.QueryChildFile("", 0, 1, CLOUD_DB_SORT_TYPE(0), out); // asks
    settings().SetRecyFileAutoDelInterval(1);
    m_trace.take();
    const std::pair<int64, std::string> times[] = {
        {100 * day, " recycledTime > 6048000 "},
        {100 * day + 1, " recycledTime > 6048001 "},
        {0, " recycledTime > 18446744073706959616 "}, // before 1970
    };
    for (const auto& [now, condition] : times) {
        settings().SetServerTime(now);
        m_lists.QueryChildFile("", 0, 1, CLOUD_DB_SORT_TYPE(0), out);
        EXPECT_NE(statements().at(0).find(condition), std::string::npos) << condition;
    }
}

TEST_F(CloudLists, RowsAreOrderedPagedAndCounted)
{
    DriveDataTable expired = treeRecord("g", "", true);
    expired.SetDirectlyRecycled(1);
    m_drive.InsertDriveDataBatch({treeRecord("a", "p"), treeRecord("b", "p"), treeRecord("c", "p"),
                                  treeRecord("d", "p"), treeRecord("e", "p"), treeRecord("f", "p", true), expired});
    m_file.exec(
        "UPDATE DriveDataTable SET name = CASE fileId WHEN 'a' THEN 'x10' WHEN 'b' THEN 'x2' WHEN 'c' THEN 'x1' "
        "WHEN 'd' THEN 'X3' ELSE name END, moveBatchId = fileId = 'e'");
    Records out{treeRecord("z", "")};
    EXPECT_TRUE(m_lists.QueryChildFile("p", 0, 3, CLOUD_DB_SORT_NAME_ASC, out));
    EXPECT_TRUE(m_lists.QueryChildFile("p", 3, 3, CLOUD_DB_SORT_NAME_ASC, out));
    EXPECT_EQ(joined(mapped(out, &DriveDataTable::GetFileid)), "z,c,b,d,a") << "pages append to what was there";

    int64 folders = -1;
    int64 files = -1;
    m_lists.GetFolderChildNumber("p", folders, files);
    EXPECT_EQ(std::pair(folders, files), std::pair(int64{1}, int64{4}));
    m_lists.GetRecycleChildNumber(folders, files);
    EXPECT_EQ(std::pair(folders, files), std::pair(int64{1}, int64{0})) << "folders count when they have expired";
    EXPECT_EQ(m_lists.GetSubAllNumber("p"), 6);
    EXPECT_TRUE(m_lists.GetDuplicateName("p", "x10"));
    EXPECT_FALSE(m_lists.GetDuplicateName("p", "X10"));
    EXPECT_FALSE(m_lists.GetDuplicateName("p", "name of e"));
    EXPECT_FALSE(m_lists.GetDuplicateName("p", "it's")) << "the quote ends the literal";
    EXPECT_EQ(logged().back(), sqliteFailed("' ", 1, "near \"s\": syntax error"));
}

TEST_F(CloudLists, ARowGivesEveryMember)
{
    const Records stored{filledRecord("a", 1), filledRecord("b", 2)};
    m_drive.InsertDriveDataBatch(stored);
    m_file.exec("INSERT INTO DriveDataTable(fileId, needToDisplay) VALUES('bare', NULL)");
    DriveDataTable bare;
    for (const DriveField& field : driveFields()) {
        field.set(bare, field.column == "fileId" ? "bare" : field.text ? "" : "0");
    }
    Records out;
    const std::string all = "select " + joined(driveColumns(), ", ") + " from DriveDataTable order by fileId";
    EXPECT_TRUE(m_lists.GetSqlResult(all.c_str(), out));
    EXPECT_EQ(cellsOf(out), cellsOf({stored[0], stored[1], bare})) << "NULL reads as empty";

    DriveDataTable record;
    EXPECT_TRUE(m_lists.QueryFileInfo("b", record));
    EXPECT_EQ(cellsOf(record), cellsOf(stored[1]));
    EXPECT_FALSE(m_lists.QueryFileInfo("B", record));
    EXPECT_EQ(cellsOf(record), cellsOf(stored[1])) << "left alone";
}

TEST_F(CloudLists, TasksAreReadFromTheirTables)
{
    DriveFullTask task{"untouched", "c", 1, 2, "", "", "", ""};
    EXPECT_FALSE(m_lists.GetFirstSyncFolder(task));
    EXPECT_EQ(task.fileId, "untouched");
    m_file.exec("INSERT INTO DriveFolderSync VALUES('old', '', 1, 5, '', '', '', ''), "
                "('new', 'cursor', 4294967297, 4398046511104, 'd1', NULL, 'd3', 'd4')");
    EXPECT_TRUE(m_lists.GetFirstSyncFolder(task));
    EXPECT_EQ(std::tie(task.fileId, task.cursor, task.data1, task.data2, task.data3, task.data4),
              std::make_tuple("new", "cursor", "d1", "", "d3", "d4"));
    EXPECT_EQ(task.state, 1) << "the lower 32 bits";
    EXPECT_EQ(task.updateTime, int64{1} << 42);

    m_file.exec("INSERT INTO DriveFullTask(fileId, state) VALUES('a', 4294967296)");
    EXPECT_EQ(m_lists.GetFullTaskStatus("a"), int64{1} << 32);
    EXPECT_EQ(m_lists.GetFullTaskStatus("A"), -1);
}

TEST_F(CloudLists, OnlyAShortEnoughUpdateRuns)
{
    const std::string rest = "update DriveDataTable set recycled=1 where parentId='' and directlyRecycled=0";
    const std::string longest(258 - rest.size(), 'p');
    m_lists.UpdateRecycleChild(longest, 1);
    EXPECT_EQ(statements().size(), 1U);
    m_lists.UpdateRecycleChild(longest + 'p', 1);
    m_lists.UpdateRecycleChild(longest, 10); // one digit more
    EXPECT_EQ(statements(), Lines{});
}

TEST_F(CloudLists, WithoutAFileOrATableListsAreEmptyAndCountsAreDefaults)
{
    const auto expectNothing = [&](CloudDriverDb& lists, const std::string& line) {
        Records out{treeRecord("z", "")};
        DriveFullTask task{};
        EXPECT_TRUE(lists.QueryChildFolder("p", 0, 1, CLOUD_DB_SORT_NAME_ASC, out));
        EXPECT_TRUE(lists.GetSqlResult("select fileId from DriveDataTable", out));
        EXPECT_EQ(out.size(), 1U);
        EXPECT_FALSE(lists.QueryFileInfo("z", out[0]));
        EXPECT_EQ(lists.GetTotalNumber(), 0);
        EXPECT_EQ(logged(), Lines(4, line));
        EXPECT_FALSE(lists.GetFirstSyncFolder(task));
        EXPECT_EQ(lists.GetFullTaskStatus("f"), -1);
        EXPECT_EQ(logged().size(), 2U);
    };
    CloudDriverDb::InitDatabasePath({});
    CloudDriverDb closed;
    EXPECT_FALSE(closed.IsOpen());
    expectNothing(closed, notOpen("QuerySqlResult"));
    CloudDriverDb::InitDatabasePath(wide(path(L"empty.dat")));
    CloudDriverDb empty;
    EXPECT_EQ(empty.QueryTotalCount("PRAGMA busy_timeout", -1), 30000);
    expectNothing(empty, sqliteFailed("", 1, "no such table: DriveDataTable"));
}

TEST_F(CloudLists, AnOrderThatCannotBeBoundIsLogged)
{
    struct OpenLists : CloudDriverDb {
        using CloudDriverDb::OpenAfter;
    } lists;
    lists.QuerySqlResult(
        "select 1", [&](sqlite3_stmt*& row, int64) { lists.OpenAfter(sqlite3_db_handle(row)); }, 0);
    EXPECT_EQ(logged(),
              Lines{plainLine("CloudDriverDb::OpenAfter",
                              "bindname[unable to delete/modify collation sequence due to active statements]")});
}
