#include "support/drivetest.h"

#include <algorithm>
#include <functional>
#include <set>

using namespace testsupport;
using namespace DatabaseService;

namespace {

using Ids = std::vector<std::string>;

const EngineLines linesOfEmpty("empty.dat");

struct DriveReaders : DriveTest {
    std::string statement() { return DriveTest::statement("BEGIN DEFERRED"); }

    /// A tree: root/{docs/{old/{deep}, plan}, photo}, where "old" and "photo" lie in the recycle bin, and a stray row.
    void plantTree()
    {
        DriveDataTable old = treeRecord("old", "docs", true);
        DriveDataTable photo = treeRecord("photo", "root");
        old.SetRecycled(1);
        photo.SetRecycled(1);
        m_drive.InsertDriveDataBatch({treeRecord("root", "", true), treeRecord("docs", "root", true), old,
                                      treeRecord("deep", "old", true), treeRecord("plan", "docs"), photo,
                                      treeRecord("stray", "nowhere")});
        m_drive.trace.take();
    }
};

Ids idsOf(const std::vector<DriveDataTable>& records)
{
    Ids ids = mapped(records, &DriveDataTable::GetFileid);
    std::ranges::sort(ids);
    return ids;
}

} // namespace

TEST_F(DriveReaders, EveryFullReadGivesEveryMember)
{
    const std::vector<DriveDataTable> stored{filledRecord("a", 1), filledRecord("b", 2)};
    m_drive.InsertDriveDataBatch(stored);
    m_drive.trace.take();
    DatabaseBindParameter bind;
    bind.Bind(std::string("data4-2"), ":value");
    const std::string names = joined(driveColumns());
    const std::string raw = "SELECT " + names + " FROM DriveDataTable ORDER BY fileId";
    using Records = std::vector<DriveDataTable>;
    const auto values = [](const std::vector<std::shared_ptr<DriveDataTable>>& pointers) {
        return mapped(pointers, [](const auto& pointer) { return *pointer; });
    };
    // The call, what its statement has behind the table, and its records.
    const std::tuple<std::function<Records()>, std::string, Records> cases[] = {
        {[&] { return std::vector{m_drive.GetDriveDataById("b")}; }, " WHERE fileId = :fileId ;", {stored[1]}},
        {[&] { return m_drive.GetALLDriveData(); }, ";", stored},
        {[&] { return m_drive.GetDriveDataByParentId("parentId-1"); }, " WHERE parentId = :parentId;", {stored[0]}},
        {[&] { return m_drive.GetDriveDataByWhereSql("data4 = :value", bind); }, " WHERE data4 = :value", {stored[1]}},
        {[&] { return values(m_drive.GetDriveDataByRawSQL(raw)); }, " ORDER BY fileId", stored},
        {[&] { return values(m_drive.GetFileMetadataByRawSQL(raw)); }, " ORDER BY fileId", stored},
    };
    for (const auto& [read, tail, expected] : cases) {
        SCOPED_TRACE(tail);
        std::vector<DriveDataTable> records = read();
        std::ranges::sort(records, {}, &DriveDataTable::GetFileid);
        EXPECT_EQ(cellsOf(records), cellsOf(expected));
        const bool knowsTheId = tail.starts_with(" WHERE fileId");
        EXPECT_EQ(statement(), "SELECT " + names.substr(knowsTheId ? 7 : 0) + " FROM DriveDataTable" + tail);
        for (const DriveDataTable& record : records) {
            EXPECT_EQ(record.GetHelpData(), "");
            EXPECT_EQ(record.GetFileOperationType(), -1);
        }
    }
}

TEST_F(DriveReaders, NullAndNothingReadAsEmpty)
{
    m_file.exec("INSERT INTO DriveDataTable(fileId, needToDisplay) VALUES('id', NULL)");
    const DriveDataTable record = m_drive.GetALLDriveData().at(0);
    EXPECT_EQ(cellsOf(record), cellsOf(m_drive.GetDriveDataById("id")));
    for (const DriveField& field : driveFields()) {
        EXPECT_EQ(field.get(record), field.column == "fileId" ? "id" : field.text ? "" : "0") << field.column;
    }
    EXPECT_EQ(m_drive.GetDriveDataNameByFieldId({"id"}), Ids{""});
    m_file.exec("DELETE FROM DriveDataTable");
    const DriveDataTable unknown = m_drive.GetDriveDataById("unknown");
    EXPECT_TRUE(unknown.Empty());
    EXPECT_EQ(cellsOf(unknown), cellsOf(DriveDataTable()));
    EXPECT_TRUE(m_drive.GetALLDriveData().empty());
    EXPECT_TRUE(m_drive.GetDriveDataByParentId("unknown").empty());
    m_drive.GetFileMetadataByRawSQL(nullptr, {});

    DatabaseBindParameter bind;
    EXPECT_TRUE(m_drive.GetDriveDataByWhereSql("nonsense(", bind).empty());
    EXPECT_TRUE(m_drive.GetDriveDataByRawSQL("nonsense").empty());
    EXPECT_TRUE(m_drive.GetFileMetadataByRawSQL("nonsense").empty());
    EXPECT_TRUE(m_log.failuresWere({lines.prepare, lines.prepare, lines.prepare}));
}

TEST_F(DriveReaders, TheCallbackSeesEveryRow)
{
    m_drive.InsertDriveDataBatch({filledRecord("a", 1), filledRecord("b", 2)});
    int context = 0;
    std::vector<DriveDataTable> seen;
    m_drive.GetFileMetadataByRawSQL(&context, [&](uint64 given, int64 address) {
        EXPECT_EQ(given, reinterpret_cast<std::uintptr_t>(&context));
        seen.push_back(*reinterpret_cast<const DriveDataTable*>(static_cast<std::uintptr_t>(address)));
        // The connection is closed by now, so a callback may write.
        m_drive.DeleteDriveDataById(seen.back().GetFileid());
        return false;
    });
    std::ranges::sort(seen, {}, &DriveDataTable::GetFileid);
    EXPECT_EQ(cellsOf(seen), cellsOf({filledRecord("a", 1), filledRecord("b", 2)}));
    EXPECT_EQ(m_drive.CountDriverData(), 0);
    m_drive.InsertDriveData(treeRecord("a", ""));
    EXPECT_THROW(m_drive.GetFileMetadataByRawSQL(nullptr, {}), std::bad_function_call);
    EXPECT_EQ(m_drive.opened, m_drive.closed);
}

TEST_F(DriveReaders, LoopsOverIdsKeepPlaceAndStatement)
{
    plantTree();
    const Ids ids{"plan", "unknown", "plan", "", "photo"};
    // The statement stays on the loop's connection, each transaction has one of its own.
    const auto expectLoop = [&](const std::string& sql) {
        std::vector<std::string> expected;
        for (std::size_t at = 1; at <= ids.size(); ++at) {
            const std::string own = std::to_string(at) + ':';
            expected.insert(expected.end(), {own + "BEGIN DEFERRED", "0:" + sql, own + "COMMIT;"});
        }
        EXPECT_EQ(m_drive.trace.take(), expected);
        EXPECT_EQ(m_drive.opened, m_drive.closed);
        m_drive.trace = {};
    };
    m_drive.trace = {};
    EXPECT_EQ(m_drive.GetDriveDataNameByFieldId(ids), (Ids{"name of plan", "", "name of plan", "", "name of photo"}));
    expectLoop("SELECT name FROM DriveDataTable WHERE fileId = :fileId;");
    EXPECT_EQ(m_drive.CheckWhetherFileIdExistsInDriveData(ids), (std::vector{true, false, true, false, true}));
    const std::string count = "SELECT COUNT(fileId) FROM DriveDataTable WHERE fileId = :fileId ;";
    expectLoop(count);

    sqlite3* db = m_drive.GetDbConnection();
    sqlite3_stmt* stmt = m_drive.PrepareSql(db, count);
    EXPECT_TRUE(m_drive.CheckWhetherFileIdExistsInDriveData(L"plan", stmt));
    EXPECT_FALSE(m_drive.CheckWhetherFileIdExistsInDriveData(L"unknown", stmt));
    EXPECT_TRUE(m_drive.FinalizeStatment(stmt));
    for (const auto& [text, exists] : {std::pair{"'07'", true}, {"'none'", false}, {"0.9", false}, {"NULL", false}}) {
        stmt = m_drive.PrepareSql(db, std::string("SELECT ") + text + " WHERE :fileId = 'plan'");
        EXPECT_EQ(m_drive.CheckWhetherFileIdExistsInDriveData(L"plan", stmt), exists) << text;
        EXPECT_TRUE(m_drive.FinalizeStatment(stmt));
    }
    EXPECT_TRUE(m_drive.CloseDatabase(db));

    // Without a table the statement cannot be prepared, without a folder nothing opens.
    m_drive.SetDatabasePath(L"empty.dat");
    const auto expectNothing = [&] {
        EXPECT_TRUE(m_drive.GetDriveDataNameByFieldId(ids).empty());
        EXPECT_TRUE(m_drive.CheckWhetherFileIdExistsInDriveData(ids).empty());
    };
    expectNothing();
    EXPECT_TRUE(m_log.failuresWere({linesOfEmpty.prepare, linesOfEmpty.prepare}));
    EXPECT_EQ(m_drive.opened, m_drive.closed);
    useFolder(path(L"missing"));
    expectNothing();
    EXPECT_EQ(m_log.take().size(), 6U);
}

TEST_F(DriveReaders, Counts)
{
    EXPECT_EQ(m_drive.CountDriverData(), 0);
    plantTree();
    EXPECT_EQ(m_drive.CountDriverData(), 7);
    EXPECT_EQ(statement(), "SELECT COUNT(fileId) FROM DriveDataTable");
    const std::pair<std::string, int> cases[] = {
        {"SELECT COUNT(*) FROM DriveDataTable WHERE recycled = 1 OR parentId = 'docs'", 3},
        {"SELECT 1 WHERE 0", 0},
        {"SELECT -5, 7", -5},
        {"SELECT 4294967297", 1}, // cut to the result's width
        {"SELECT NULL", 0},
        {"SELECT '12'", -1},
        {"SELECT 1.0", -1}, // a float arrives as text
    };
    for (const auto& [sql, count] : cases) {
        std::string text = sql;
        EXPECT_EQ(m_drive.GetCountBySelectSQL(text), count) << sql;
        EXPECT_EQ(text, sql);
    }
    m_drive.SetDatabasePath(L"empty.dat");
    EXPECT_EQ(m_drive.CountDriverData(), 0);
    EXPECT_TRUE(m_log.failuresWere({linesOfEmpty.prepare}));
}

TEST_F(DriveReaders, ChildrenOfAFolder)
{
    plantTree();
    EXPECT_EQ(idsOf(m_drive.GetDriveDataByParentId("docs")), (Ids{"old", "plan"})) << "recycled children too";
    m_file.exec("INSERT INTO DriveDataTable(fileId, parentId, mimeType, recycled) VALUES"
                "('f1', 'docs', 'application/vnd.tessix-apps.folder', 0),"
                "('f2', 'docs', 'APPLICATION/vnd.tessix-apps.folder', 0),"
                "('f3', 'docs', NULL, 0), ('f4', 'docs', 'text/plain', NULL)");
    m_drive.trace.take();
    Ids files{"kept"};
    Ids folders{"kept"};
    EXPECT_TRUE(m_drive.GetFolderSubFile("docs", files, folders, 100, 0));
    EXPECT_EQ(statement(),
              "SELECT fileId, mimetype FROM DriveDataTable WHERE parentId = :parentId AND recycled='0' "
              "LIMIT :selNums OFFSET :startPos");
    EXPECT_EQ(files.front(), "kept");
    EXPECT_EQ(std::set(files.begin(), files.end()), (std::set<std::string>{"f2", "f3", "kept", "plan"}));
    EXPECT_EQ(folders, (Ids{"kept", "f1"}));

    // Pages of two give every child once more, pages of none and past the end nothing.
    for (unsigned start = 0; start < 6; start += 2) {
        EXPECT_TRUE(m_drive.GetFolderSubFile("docs", files, folders, 2, start));
        EXPECT_EQ(files.size() + folders.size(), 6 + std::min<std::size_t>(start + 2, 4));
    }
    EXPECT_EQ(std::multiset(files.begin(), files.end()),
              (std::multiset<std::string>{"f2", "f2", "f3", "f3", "kept", "plan", "plan"}));
    EXPECT_EQ(folders, (Ids{"kept", "f1", "f1"}));
    EXPECT_TRUE(m_drive.GetFolderSubFile("docs", files, folders, 0, 0));
    EXPECT_TRUE(m_drive.GetFolderSubFile("docs", files, folders, 4294967295U, 4294967295U));
    m_drive.SetDatabasePath(L"empty.dat");
    EXPECT_TRUE(m_drive.GetFolderSubFile("docs", files, folders, 2, 0));
    EXPECT_EQ(files.size() + folders.size(), 10U);
    EXPECT_TRUE(m_log.failuresWere({linesOfEmpty.prepare}));
}

TEST_F(DriveReaders, TreesAreWalkedThroughTheRecycleBin)
{
    plantTree();
    using Set = std::unordered_set<std::string>;
    const std::pair<Set, Set> folders[] = {
        {{"root"}, {"root", "docs", "old", "deep"}},
        {{"old", "plan"}, {"old", "deep"}}, // a source that is a file is none
        {{"unknown", "stray", ""}, {}},
    };
    for (const auto& [sources, expected] : folders) {
        Set found{"kept"};
        EXPECT_TRUE(m_drive.GetSourcesFolder(sources, found));
        EXPECT_EQ(found.erase("kept"), 1U);
        EXPECT_EQ(found, expected);
    }
    const int opened = m_drive.opened;
    Set found;
    m_drive.GetSourcesFolder({"root", "docs", "plan"}, found);
    EXPECT_EQ(m_drive.opened, opened + 3) << "each source costs a connection";

    const std::pair<const char*, int> counts[] = {{"root", 4}, {"docs", 3}, {"plan", 1}, {"photo", 0}, {"nowhere", 0}};
    for (const auto& [id, count] : counts) {
        EXPECT_EQ(m_drive.GetFilesChildNodeCount(id), count) << id;
    }
}

TEST_F(DriveReaders, MarkAndSweep)
{
    const DriveDataTable listed = treeRecord("listed", "root");
    const DriveDataTable simple = treeRecord("simple", "root");
    m_drive.InsertDriveDataBatch({treeRecord("gone", "root"), listed, simple, treeRecord("recycled", "root"),
                                  treeRecord("deleted", "root"), treeRecord("moved", "root"),
                                  treeRecord("restored", "root"), treeRecord("below", "gone")});
    m_file.exec("UPDATE DriveDataTable SET recycled = fileId = 'recycled', softDelBatchId = fileId = 'deleted', "
                "moveBatchId = fileId = 'moved', restoreBatchId = fileId = 'restored'");
    m_drive.trace.take();
    m_drive.SetDriveDataSyncFlag({"unknown", "root"});
    const std::vector<std::string> trace = m_drive.trace.take();
    ASSERT_EQ(trace.size(), 4U) << "all parents in one transaction";
    EXPECT_TRUE(
        trace[1].ends_with(":UPDATE DriveDataTable SET data2 = 1 WHERE parentId = :parentId and recycled = 0 and "
                           "softDelBatchId = 0 and moveBatchId = 0 and restoreBatchId = 0;"));

    // A listing that writes the spare columns clears the mark, one that does not leaves it.
    m_drive.UpdateDriveBaseData({listed});
    m_drive.UpdateDriveSimpleData({simple});
    m_drive.UpdateDriveOperData({simple});
    EXPECT_EQ(m_file.value("SELECT group_concat(fileId) FROM DriveDataTable WHERE data2 = '1'"), "'gone,simple'");

    m_drive.trace.take();
    m_drive.DelDriveDataBySyncFlag({"root", "gone"});
    EXPECT_TRUE(m_drive.trace.take().at(1).ends_with(":DELETE FROM DriveDataTable WHERE data2 = 1 and parentId = "
                                                     ":parentId and recycled = 0;"));
    EXPECT_EQ(idsOf(m_drive.GetALLDriveData()), (Ids{"below", "deleted", "listed", "moved", "recycled", "restored"}));
}
