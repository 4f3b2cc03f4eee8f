// The drive's readers, tree queries and the mark-and-sweep pair.

#include "support/drivetest.h"
#include "support/enginelines.h"

#include <algorithm>
#include <functional>
#include <set>

using namespace testsupport;
using DatabaseService::DatabaseBindParameter;
using DatabaseService::DriveDataTable;
using DatabaseService::int64;
using DatabaseService::uint64;

namespace {

using Ids = std::vector<std::string>;

const EngineLines lines("DriveModuleData.dat");
const EngineLines linesOfEmpty("empty.dat");

class DriveReaders : public DriveTest {
protected:
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

template <class Records> Ids idsOf(const Records& records)
{
    Ids ids;
    for (const auto& record : records) {
        if constexpr (std::is_same_v<Records, std::vector<DriveDataTable>>) {
            ids.push_back(record.GetFileid());
        } else {
            ids.push_back(record->GetFileid());
        }
    }
    std::sort(ids.begin(), ids.end());
    return ids;
}

/// The names between SELECT and FROM.
Ids selected(const std::string& sql)
{
    std::string list = sql.substr(7, sql.find(" FROM ") - 7);
    std::replace(list.begin(), list.end(), ',', ' ');
    return split(list);
}

} // namespace

TEST_F(DriveReaders, EveryFullReadGivesEveryMember)
{
    const std::vector<DriveDataTable> stored{filledRecord("a", 1), filledRecord("b", 2)};
    m_drive.InsertDriveDataBatch(stored);
    m_drive.trace.take();
    DatabaseBindParameter bind;
    bind.Bind(std::string("data4-2"), ":value");
    const std::string raw = "SELECT " + driveColumnList() + " FROM DriveDataTable ORDER BY fileId";
    struct Case {
        const char* name;
        std::function<std::vector<DriveDataTable>()> read;
        std::string tail;
        std::vector<DriveDataTable> expected;
    };
    const auto values = [](const std::vector<std::shared_ptr<DriveDataTable>>& pointers) {
        std::vector<DriveDataTable> records;
        for (const auto& pointer : pointers) {
            records.push_back(*pointer);
        }
        return records;
    };
    const Case cases[] = {
        {"id", [&] { return std::vector{m_drive.GetDriveDataById("b")}; }, "WHERE fileId = :fileId ;", {stored[1]}},
        {"all", [&] { return m_drive.GetALLDriveData(); }, "FROM DriveDataTable;", stored},
        {"parent",
         [&] { return m_drive.GetDriveDataByParentId("parentId-1"); },
         "WHERE parentId = :parentId;",
         {stored[0]}},
        {"where",
         [&] { return m_drive.GetDriveDataByWhereSql("data4 = :value", bind); },
         "FROM DriveDataTable WHERE data4 = :value",
         {stored[1]}},
        {"where again",
         [&] { return m_drive.GetDriveDataByWhereSql("data4 != :value", bind); },
         "FROM DriveDataTable WHERE data4 != :value",
         {stored[0]}},
        {"raw", [&] { return values(m_drive.GetDriveDataByRawSQL(raw)); }, "ORDER BY fileId", stored},
        {"raw metadata", [&] { return values(m_drive.GetFileMetadataByRawSQL(raw)); }, "ORDER BY fileId", stored},
    };
    const Ids columns = driveColumns();
    for (const auto& [name, read, tail, expected] : cases) {
        SCOPED_TRACE(name);
        std::vector<DriveDataTable> records = read();
        std::ranges::sort(records, {}, &DriveDataTable::GetFileid);
        EXPECT_EQ(cellsOf(records), cellsOf(expected));
        const std::string sql = statement();
        EXPECT_TRUE(sql.ends_with(tail)) << sql;
        const bool byId = std::string(name) == "id";
        EXPECT_EQ(selected(sql), Ids(columns.begin() + byId, columns.end()));
        for (const DriveDataTable& record : records) {
            EXPECT_EQ(record.GetHelpData(), "");
            EXPECT_EQ(record.GetFileOperationType(), -1);
        }
    }
}

TEST_F(DriveReaders, NullReadsAsEmpty)
{
    m_file.exec("INSERT INTO DriveDataTable(fileId, needToDisplay) VALUES('id', NULL)");
    for (const DriveDataTable& record : {m_drive.GetDriveDataById("id"), m_drive.GetALLDriveData().at(0)}) {
        EXPECT_EQ(record.GetFileid(), "id");
        for (const DriveField& field : driveFields()) {
            if (field.column != "fileId") {
                EXPECT_EQ(field.get(record), field.text ? "" : "0") << field.column;
            }
        }
    }
    m_file.exec("UPDATE DriveDataTable SET name = NULL");
    EXPECT_EQ(m_drive.GetDriveDataNameByFieldId({"id"}), Ids{""});
}

TEST_F(DriveReaders, NothingThereIsEmpty)
{
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

TEST_F(DriveReaders, RawReadsGoByPosition)
{
    const auto records = m_drive.GetDriveDataByRawSQL("SELECT 'id', 12, x'00', 'kind', 'mime', 'text', '42 bytes'");
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0]->GetFileid(), "id");
    EXPECT_EQ(records[0]->GetName(), "12");
    EXPECT_EQ(records[0]->GetKind(), "kind") << "the blob leaves its place to the next cell";
    EXPECT_EQ(records[0]->GetDescription(), "text");
    EXPECT_EQ(records[0]->GetSize(), 42);
    EXPECT_EQ(records[0]->GetData4(), "");
}

TEST_F(DriveReaders, TheCallbackSeesEveryRow)
{
    m_drive.InsertDriveDataBatch({filledRecord("a", 1), filledRecord("b", 2)});
    int context = 0;
    Ids seen;
    m_drive.GetFileMetadataByRawSQL(&context, [&](uint64 given, int64 address) {
        EXPECT_EQ(given, reinterpret_cast<std::uintptr_t>(&context));
        const auto* record = reinterpret_cast<const DriveDataTable*>(static_cast<std::uintptr_t>(address));
        EXPECT_EQ(cellsOf(*record), cellsOf(filledRecord(record->GetFileid(), record->GetFileid() == "a" ? 1 : 2)));
        seen.push_back(record->GetFileid());
        // The connection is closed by now, so a callback may write.
        m_drive.DeleteDriveDataById(record->GetFileid());
        return false;
    });
    std::sort(seen.begin(), seen.end());
    EXPECT_EQ(seen, (Ids{"a", "b"}));
    EXPECT_EQ(m_drive.CountDriverData(), 0);
    m_drive.InsertDriveData(treeRecord("a", ""));
    EXPECT_THROW(m_drive.GetFileMetadataByRawSQL(nullptr, {}), std::bad_function_call);
    EXPECT_EQ(m_drive.opened, m_drive.closed);
}

TEST_F(DriveReaders, LoopsOverIdsKeepPlaceAndStatement)
{
    plantTree();
    const Ids ids{"plan", "unknown", "plan", "", "photo"};
    struct Case {
        const char* name;
        std::function<void()> call;
        std::string sql;
    };
    const Case cases[] = {
        {"names",
         [&] {
             EXPECT_EQ(m_drive.GetDriveDataNameByFieldId(ids),
                       (Ids{"name of plan", "", "name of plan", "", "name of photo"}));
         },
         "SELECT name FROM DriveDataTable WHERE fileId = :fileId;"},
        {"exist",
         [&] {
             EXPECT_EQ(m_drive.CheckWhetherFileIdExistsInDriveData(ids),
                       (std::vector<bool>{true, false, true, false, true}));
         },
         "SELECT COUNT(fileId) FROM DriveDataTable WHERE fileId = :fileId ;"},
    };
    for (const auto& [name, call, sql] : cases) {
        SCOPED_TRACE(name);
        m_drive.opened = m_drive.closed = 0;
        m_drive.trace = {};
        call();
        // The statement stays on the loop's connection, each transaction has one of its own.
        std::vector<std::string> expected;
        for (std::size_t at = 1; at <= ids.size(); ++at) {
            const std::string own = std::to_string(at) + ':';
            expected.insert(expected.end(), {own + "BEGIN DEFERRED", "0:" + sql, own + "COMMIT;"});
        }
        EXPECT_EQ(m_drive.trace.take(), expected);
        EXPECT_EQ(m_drive.opened, m_drive.closed);
    }
    EXPECT_TRUE(m_drive.GetDriveDataNameByFieldId({}).empty());
    EXPECT_TRUE(m_drive.CheckWhetherFileIdExistsInDriveData(Ids()).empty());

    sqlite3* db = m_drive.GetDbConnection();
    sqlite3_stmt* stmt = m_drive.PrepareSql(db, cases[1].sql);
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
    EXPECT_TRUE(m_drive.GetDriveDataNameByFieldId(ids).empty());
    EXPECT_TRUE(m_drive.CheckWhetherFileIdExistsInDriveData(ids).empty());
    EXPECT_TRUE(m_log.failuresWere({linesOfEmpty.prepare, linesOfEmpty.prepare}));
    EXPECT_EQ(m_drive.opened, m_drive.closed);
    useFolder(path(L"missing"));
    EXPECT_TRUE(m_drive.GetDriveDataNameByFieldId(ids).empty());
    EXPECT_TRUE(m_drive.CheckWhetherFileIdExistsInDriveData(ids).empty());
    EXPECT_EQ(m_log.take().size(), 6U);
}

TEST_F(DriveReaders, Counts)
{
    EXPECT_EQ(m_drive.CountDriverData(), 0);
    plantTree();
    EXPECT_EQ(m_drive.CountDriverData(), 7);
    EXPECT_EQ(statement(), "SELECT COUNT(fileId) FROM DriveDataTable");
    const std::pair<std::string, int> cases[] = {
        {"SELECT COUNT(*) FROM DriveDataTable WHERE recycled = 1", 2},
        {"SELECT 1 WHERE 0", 0},
        {"SELECT -5, 7", -5},
        {"SELECT 4294967297", 1}, // cut to the result's width
        {"SELECT NULL", 0},
        {"SELECT '12'", -1},
        {"SELECT 1.0", -1}, // a float arrives as text
        {"SELECT fileId FROM DriveDataTable", -1},
        {"SELECT size FROM DriveDataTable", 0},
    };
    for (const auto& [sql, count] : cases) {
        std::string text = sql;
        EXPECT_EQ(m_drive.GetCountBySelectSQL(text), count) << sql;
        EXPECT_EQ(text, sql);
    }
    std::string nonsense = "nonsense";
    EXPECT_EQ(m_drive.GetCountBySelectSQL(nonsense), 0);
    EXPECT_TRUE(m_log.failuresWere({lines.prepare}));
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

    // Pages of two give every child once.
    files.clear();
    folders.clear();
    for (unsigned start = 0; start < 6; start += 2) {
        EXPECT_TRUE(m_drive.GetFolderSubFile("docs", files, folders, 2, start));
        EXPECT_EQ(files.size() + folders.size(), std::min<std::size_t>(start + 2, 4));
    }
    EXPECT_EQ(std::set(files.begin(), files.end()), (std::set<std::string>{"f2", "f3", "plan"}));
    EXPECT_EQ(folders, Ids{"f1"});
    EXPECT_TRUE(m_drive.GetFolderSubFile("docs", files, folders, 0, 0));
    EXPECT_TRUE(m_drive.GetFolderSubFile("docs", files, folders, 4294967295U, 4294967295U));
    EXPECT_EQ(files.size() + folders.size(), 4U);
    m_drive.SetDatabasePath(L"empty.dat");
    EXPECT_TRUE(m_drive.GetFolderSubFile("docs", files, folders, 2, 0));
    EXPECT_EQ(files.size() + folders.size(), 4U);
    EXPECT_TRUE(m_log.failuresWere({linesOfEmpty.prepare}));
}

TEST_F(DriveReaders, TreesAreWalkedThroughTheRecycleBin)
{
    plantTree();
    using Set = std::unordered_set<std::string>;
    const std::pair<Set, Set> folders[] = {
        {{"root"}, {"root", "docs", "old", "deep"}},
        {{"old", "plan"}, {"old", "deep"}}, // a source that is a file is none
        {{"unknown", "nowhere", "stray", ""}, {}},
        {{}, {}},
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

    const std::pair<const char*, int> counts[] = {
        {"root", 4}, {"docs", 3}, {"old", 1}, {"deep", 1}, {"plan", 1}, {"photo", 0}, {"unknown", 0}, {"nowhere", 0},
    };
    for (const auto& [id, count] : counts) {
        EXPECT_EQ(m_drive.GetFilesChildNodeCount(id), count) << id;
    }
}

TEST_F(DriveReaders, MarkAndSweep)
{
    const auto child = [](const char* id, void (DriveDataTable::*set)(int64) = nullptr) {
        DriveDataTable record = treeRecord(id, "root");
        if (set != nullptr) {
            (record.*set)(1);
        }
        return record;
    };
    DriveDataTable recycled = child("recycled");
    recycled.SetRecycled(1);
    m_drive.InsertDriveDataBatch({child("gone"), child("gone too"), child("listed"), child("simple"), recycled,
                                  child("deleted", &DriveDataTable::SetSoftDelBatchId),
                                  child("moved", &DriveDataTable::SetMoveBatchId),
                                  child("restored", &DriveDataTable::SetRestoreBatchId),
                                  child("uploaded", &DriveDataTable::SetUploadBatchId), treeRecord("below", "gone")});
    m_drive.trace.take();
    const auto marked = [this] {
        return m_file.value("SELECT group_concat(fileId) FROM (SELECT fileId FROM DriveDataTable WHERE data2 = '1' "
                            "ORDER BY fileId)");
    };
    m_drive.SetDriveDataSyncFlag({"unknown", "root"});
    const std::vector<std::string> trace = m_drive.trace.take();
    ASSERT_EQ(trace.size(), 4U) << "all parents in one transaction";
    EXPECT_TRUE(
        trace[1].ends_with(":UPDATE DriveDataTable SET data2 = 1 WHERE parentId = :parentId and recycled = 0 and "
                           "softDelBatchId = 0 and moveBatchId = 0 and restoreBatchId = 0;"));
    EXPECT_EQ(marked(), "'gone,gone too,listed,simple,uploaded'");
    EXPECT_EQ(m_drive.GetDriveDataById("gone").GetData2(), "1");

    // A listing that writes the spare columns clears the mark, one that does not leaves it.
    m_drive.UpdateDriveBaseData({child("listed")});
    m_drive.UpdateDriveSimpleData({child("simple")});
    m_drive.UpdateDriveOperData({child("gone too", &DriveDataTable::SetMoveBatchId)});
    EXPECT_EQ(marked(), "'gone,gone too,simple,uploaded'");

    m_drive.trace.take();
    m_drive.DelDriveDataBySyncFlag({"root", "gone"});
    EXPECT_TRUE(m_drive.trace.take().at(1).ends_with(":DELETE FROM DriveDataTable WHERE data2 = 1 and parentId = "
                                                     ":parentId and recycled = 0;"));
    EXPECT_EQ(idsOf(m_drive.GetALLDriveData()), (Ids{"below", "deleted", "listed", "moved", "recycled", "restored"}));
    m_drive.SetDriveDataSyncFlag({});
    m_drive.DelDriveDataBySyncFlag({});
    EXPECT_EQ(m_drive.CountDriverData(), 6);
}
