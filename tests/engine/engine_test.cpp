// The engine: every way into it, what it runs, what it logs and what it leaves behind.

#include "databaseservice/engine/cellreader.h"
#include "databaseservice/engine/recordio.h"
#include "databaseservice/keptconnections.h"
#include "support/enginelines.h"
#include "support/faultydisk.h"
#include "support/observed.h"
#include "support/storetest.h"

#include <stdexcept>
#include <thread>

using namespace testsupport;
using namespace DatabaseService;

namespace {

using Results = std::list<DatabaseQueryResult*>;
using Binds = std::list<DatabaseBindParameter>;

const EngineLines lines("engine.dat");
const std::string insertRow = "INSERT INTO t(id, name) VALUES(:id, :name)";

template <class... Name> DatabaseBindParameter row(int id, const Name&... name)
{
    DatabaseBindParameter bind;
    bind.Bind(id, ":id");
    (bind.Bind(std::string(name), ":name"), ...);
    return bind;
}

ExpectedLine opening(const std::string& path)
{
    return {"DatabaseOperationBase::OpenDatabase", "OpenDataBase:" + path, 1};
}

struct Engine : StoreTest {
    Engine() { m_file.exec("CREATE TABLE t(id INTEGER PRIMARY KEY, name TEXT)"); }

    Rows rows() const { return m_file.query("SELECT id, name FROM t ORDER BY id"); }

    /// What a query gives when its transaction holds.
    template <class... Arguments> Rows query(Arguments... arguments)
    {
        Results* list = nullptr;
        EXPECT_TRUE(m_store.Query(arguments..., list));
        return takeRows(m_store, list);
    }

    SqliteFile m_file{path(L"engine.dat")};
    PlainStore m_store;
};

} // namespace

TEST_F(Engine, EveryOverloadRunsOnTheConnectionAndStatementItIsGiven)
{
    m_file.exec("INSERT INTO t(id) VALUES(1),(2),(3)");
    const std::string sql = "SELECT id FROM t WHERE id = :id";
    sqlite3* db = m_store.GetDbConnection();
    sqlite3_stmt* stmt = nullptr;
    DatabaseBindParameter bind = row(2);
    Binds list;
    Results* rows = nullptr;
    // clang-format off
#define CALL(call) {#call, [&] { return m_store.call; }}
    const std::pair<std::string, std::function<bool()>> cases[] = { // the call tells what is to be expected
        CALL(Execute(sql)), CALL(Execute(sql, list)), CALL(Execute(sql, bind)),
        CALL(Execute(stmt)), CALL(Execute(stmt, list)),
        CALL(Execute(db, sql)), CALL(Execute(db, sql, list)), CALL(Execute(db, stmt)), CALL(Execute(db, stmt, list)),
        CALL(Query(sql, rows)), CALL(Query(sql, bind, rows)), CALL(Query(stmt, rows)), CALL(Query(stmt, bind, rows)),
        CALL(Query(db, sql, rows)), CALL(Query(db, sql, bind, rows)),
        CALL(Query(db, stmt, rows)), CALL(Query(db, stmt, bind, rows))};
#undef CALL
    // clang-format on
    int connections = 1; // the caller's is number 0, each call's own one the next
    for (const auto& [call, run] : cases) {
        SCOPED_TRACE(call);
        const auto has = [call = call](const char* word) { return call.find(word) != std::string::npos; };
        stmt = has("stmt") ? m_store.PrepareSql(db, sql) : nullptr;
        list = {row(3), row(9)}; // a caller's statement that ends on a row would hold up another's commit
        rows = nullptr;
        m_store.closed = 0;
        m_store.trace.take();

        EXPECT_TRUE(run());

        const bool own = !has("db");
        const std::string transaction = (own ? std::to_string(connections++) : "0") + ':';
        const std::string statement = has("stmt") ? "0:" : transaction;
        std::vector<std::string> expected(has("list") ? 2 : 1, statement + sql);
        expected.insert(expected.begin(), transaction + (has("Query") ? "BEGIN DEFERRED" : "BEGIN IMMEDIATE;"));
        expected.push_back(transaction + "COMMIT;");
        EXPECT_EQ(m_store.trace.take(), expected);
        EXPECT_EQ(m_store.closed, own ? 1 : 0);
        EXPECT_TRUE(bind.HasNext()) << "a single binding stays as it is";
        EXPECT_EQ(list.front().HasNext(), !has("list")) << "a list's elements move";
        ASSERT_EQ(rows != nullptr, has("Query"));
        if (rows != nullptr) {
            EXPECT_EQ(takeRows(m_store, rows), has("bind") ? Rows{{"2"}} : Rows());
        }
        EXPECT_EQ(sqlite3_next_stmt(db, nullptr), stmt) << "own statements end, the caller's stay";
        EXPECT_TRUE(m_store.FinalizeStatment(stmt));
    }
    EXPECT_TRUE(m_store.CloseDatabase(db));
    EXPECT_TRUE(m_store.CloseDatabase(nullptr));
    EXPECT_FALSE(m_store.FreeTable(new Results{new DatabaseQueryResult, nullptr}) ||
                 m_store.FreeQueryResult(new Results));
}

TEST_F(Engine, AFailedOpenIsThreeLinesAndNothingElse)
{
    std::filesystem::create_directory(path(L"\u540D.dat"));
    const std::string name = "\xE5\x90\x8D.dat";
    for (const auto& [folder, seen] : {std::pair(m_folder.path(), "exist."), {path(L"missing"), "does not exist."}}) {
        useFolder(folder);
        const std::vector<ExpectedLine> expected{opening(platform::toUtf8(folder) + '/' + name), EngineLines(name).open,
                                                 engine("OpenDatabase", name + seen)};
        PlainStore store(L"\u540D.dat");
        EXPECT_EQ(store.GetDbConnection(), nullptr);
        EXPECT_TRUE(m_log.linesWere(expected));
        Results* list = nullptr;
        EXPECT_FALSE(store.Query("SELECT 1", list));
        EXPECT_TRUE(m_log.linesWere(expected));
        EXPECT_EQ(takeRows(store, list), Rows());
        EXPECT_EQ(store.opened, 0);
        EXPECT_EQ(store.closed, 2) << "the handle of a failed open is closed like any other";
    }
}

TEST_F(Engine, TheNameAndTheFolderAreAskedAtEveryOpen)
{
    PlainStore copy = m_store;
    EXPECT_TRUE(m_store.SetDatabasePath(L"\u540D.dat"));
    EXPECT_TRUE(m_store.Execute("SELECT 1"));
    EXPECT_TRUE(copy.Execute("SELECT 1")) << "a copy has a name of its own";
    std::filesystem::create_directory(path(L"second"));
    useFolder(path(L"second"));
    EXPECT_TRUE(copy.Execute("SELECT 1"));
    const std::string folder = platform::toUtf8(m_folder.path());
    EXPECT_TRUE(m_log.linesWere({opening(folder + "/\xE5\x90\x8D.dat"), opening(folder + "/engine.dat"),
                                 opening(platform::toUtf8(path(L"second")) + "/engine.dat")}));
}

TEST_F(Engine, AFailedPrepareIsOneLine)
{
    Results* list = nullptr;
    EXPECT_FALSE(m_store.Execute("SELEC"));
    EXPECT_FALSE(m_store.Query("SELECT nothing FROM nowhere", list));
    EXPECT_TRUE(m_log.failuresWere({lines.prepare, lines.prepare}));
    EXPECT_EQ(takeRows(m_store, list), Rows());
    EXPECT_FALSE(m_store.Execute(" -- nothing")) << "no statement, and that is no failure of SQLite's";
    EXPECT_EQ(m_store.opened, m_store.closed);
}

TEST_F(Engine, AFailedBeginSaysMoreForWritesThanForReads)
{
    sqlite3* db = m_store.GetDbConnection();
    sqlite3_exec(db, "BEGIN", nullptr, nullptr, nullptr);
    const std::string message = "cannot start a transaction within a transaction";
    const ExpectedLine exec = lines.exec(message);
    const ExpectedLine begin = engine("BeginReadTransaction", "Begin transaction failed,Error msg is" + message);
    const std::string sql = "SELECT '\xE5\x90\x8D'";
    Results* list = nullptr;
    EXPECT_FALSE(m_store.Execute(db, sql));
    EXPECT_TRUE(m_log.failuresWere({exec, lines.beginWrite, lines.errorMessage, lines.sql(sql)}));
    EXPECT_FALSE(m_store.Query(db, sql, list));
    EXPECT_TRUE(m_log.failuresWere({exec, begin, lines.beginRead, lines.sql(sql)}));
    EXPECT_EQ(takeRows(m_store, list), Rows());
    EXPECT_EQ(sqlite3_next_stmt(db, nullptr), nullptr);

    // A caller's statement comes without text and is not finalized.
    sqlite3_stmt* stmt = m_store.PrepareSql(db, sql);
    EXPECT_FALSE(m_store.Execute(db, stmt));
    EXPECT_TRUE(m_log.failuresWere({exec, lines.beginWrite, lines.sql("")}));
    EXPECT_TRUE(m_store.FinalizeStatment(stmt));
    EXPECT_TRUE(m_store.CloseDatabase(db));
}

TEST_F(Engine, AFailedBindEndsTheBatchWithoutACommit)
{
    m_store.onOpen = [](sqlite3* db) { sqlite3_limit(db, SQLITE_LIMIT_LENGTH, 1000); };
    const std::string large(2000, 'x');
    const std::tuple<std::string, std::string, std::string> cases[] = {{"name", "\xE5\x90\x8D without its colon", "0"},
                                                                       {":name", large, "2"}};
    for (const auto& [name, value, index] : cases) {
        Binds list{row(1, "a"), row(2), row(3, "c")};
        std::next(list.begin())->Bind(value, name);
        EXPECT_FALSE(m_store.Execute(insertRow, list));
        EXPECT_TRUE(m_log.failuresWere({lines.bind(index + " and value is " + value), lines.bindMessage("*"),
                                        lines.errorMessage, lines.sql(insertRow)}));
        EXPECT_EQ(rows(), Rows()) << "closing undid the first row";
        EXPECT_TRUE(list.back().HasNext()) << "the third element was not reached";
        EXPECT_EQ(m_store.opened, m_store.closed);
    }
    // On a connection of the caller's the transaction stays open.
    sqlite3* db = m_store.GetDbConnection();
    Binds list{row(-7)};
    EXPECT_FALSE(m_store.Execute(db, "SELECT :name", list));
    EXPECT_TRUE(m_log.failuresWere(
        {lines.bind("0 and value is -7"), lines.bindMessage("*"), lines.errorMessage, lines.sql("SELECT :name")}));
    EXPECT_EQ(sqlite3_get_autocommit(db), 0);
    EXPECT_TRUE(m_store.CloseDatabase(db));
}

TEST_F(Engine, AFailedStepCostsItsRowOnly)
{
    const std::string reason = "UNIQUE constraint failed: t.id";
    Binds list{row(1, "a"), row(1, "again"), row(2, "b")};
    EXPECT_TRUE(m_store.Execute(insertRow, list));
    EXPECT_TRUE(m_log.failuresWere({lines.step, lines.bindMessage(reason)}));
    EXPECT_EQ(rows(), (Rows{{"1", "'a'"}, {"2", "'b'"}}));
    EXPECT_TRUE(m_store.Execute("INSERT INTO t(id) VALUES(2)"));
    EXPECT_TRUE(m_log.failuresWere({lines.step, lines.finalize, lines.afterFinalize(reason)}));

    // A caller's statement is not finalized: its failure shows again at its next reset.
    sqlite3* db = m_store.GetDbConnection();
    sqlite3_stmt* stmt = m_store.PrepareSql(db, insertRow);
    Binds one{row(2, "again")};
    EXPECT_TRUE(m_store.Execute(db, stmt, one));
    EXPECT_TRUE(m_log.failuresWere({lines.step}));
    one.front().Reset();
    EXPECT_TRUE(m_store.Execute(db, stmt, one));
    EXPECT_FALSE(m_store.FinalizeStatment(stmt));
    EXPECT_TRUE(m_log.failuresWere({lines.bindMessage(reason), lines.step, lines.finalize}));
    EXPECT_TRUE(m_store.CloseDatabase(db));
}

TEST_F(Engine, AQueryThatFailsOnTheWayKeepsWhatItHas)
{
    const ExpectedLine overflow = lines.afterFinalize("integer overflow");
    m_file.exec("CREATE TABLE n(v INTEGER); INSERT INTO n VALUES(-1), (-2), (-9223372036854775807 - 1), (-4)");
    EXPECT_EQ(query("SELECT abs(v) FROM n"), (Rows{{"1"}, {"2"}}));
    EXPECT_TRUE(m_log.failuresWere({lines.finalize, overflow}));
    EXPECT_EQ(query("SELECT abs(v) FROM n WHERE rowid >= 3"), Rows());
    EXPECT_TRUE(m_log.failuresWere({lines.step, lines.finalize, overflow}));
}

TEST_F(Engine, AFailedCommitKeepsItsConnection)
{
    m_file.exec("CREATE TABLE child(t INTEGER REFERENCES t(id) DEFERRABLE INITIALLY DEFERRED)");
    m_store.onOpen = [](sqlite3* db) { sqlite3_exec(db, "PRAGMA foreign_keys=ON", nullptr, nullptr, nullptr); };
    const std::size_t kept = ListKeptConnections().size();
    const std::vector<ExpectedLine> expected{lines.exec("FOREIGN KEY constraint failed"), lines.commit};
    sqlite3* db = m_store.GetDbConnection();
    EXPECT_FALSE(m_store.Execute(db, "INSERT INTO child VALUES(1)"));
    EXPECT_TRUE(m_log.failuresWere(expected));
    EXPECT_EQ(sqlite3_get_autocommit(db), 0);
    EXPECT_TRUE(m_store.CloseDatabase(db));
    EXPECT_EQ(ListKeptConnections().size(), kept) << "the caller's connection is the caller's";

    EXPECT_FALSE(m_store.Execute("INSERT INTO child VALUES(1)"));
    EXPECT_TRUE(m_log.failuresWere(expected));
    EXPECT_EQ(m_store.opened, m_store.closed + 1);
    ASSERT_EQ(ListKeptConnections().size(), kept + 1);
    EXPECT_EQ(ListKeptConnections().back().database, L"engine.dat");
    // The kept connection still holds the lock of its transaction.
    sqlite3_busy_timeout(m_file.handle(), 0);
    EXPECT_THROW(m_file.exec("BEGIN IMMEDIATE"), std::runtime_error);
    {
        PlainStore other(L"full.dat");
        other.Execute("CREATE TABLE t(id)");
        const FaultyDisk disk(FaultyDisk::Fault::Full, 1);
        EXPECT_FALSE(other.Execute("INSERT INTO t VALUES(1)"));
        m_log.take();
        EXPECT_EQ(CloseKeptConnections(), 1U) << "SQLite has rolled this one back";
    }
    EXPECT_THROW(m_file.exec("BEGIN IMMEDIATE"), std::runtime_error);
    std::thread([] { EXPECT_EQ(CloseKeptConnections(OpenTransactions::RollBack), 1U); }).join(); // from any thread
    EXPECT_TRUE(ListKeptConnections().empty());
    m_file.exec("BEGIN IMMEDIATE");
}

TEST_F(Engine, AFailedCloseIsALineAndTheConnectionIsKept)
{
    const ExpectedLine line = lines.close("unable to close due to unfinalized statements or unfinished backups");
    sqlite3* db = m_store.GetDbConnection();
    sqlite3_stmt* stmt = m_store.PrepareSql(db, "SELECT 1");
    EXPECT_FALSE(m_store.CloseDatabase(db));
    EXPECT_TRUE(m_log.failuresWere({line}));
    EXPECT_TRUE(m_store.FinalizeStatment(stmt));
    EXPECT_TRUE(m_store.CloseDatabase(db)) << "the handle stayed usable";

    const std::size_t kept = ListKeptConnections().size();
    m_store.onOpen = [&](sqlite3* own) { sqlite3_prepare_v2(own, "SELECT 1", -1, &stmt, nullptr); };
    EXPECT_TRUE(m_store.Execute("INSERT INTO t(id) VALUES(2)")) << "the call's answer is the commit's";
    EXPECT_TRUE(m_log.failuresWere({line}));
    EXPECT_EQ(ListKeptConnections().size(), kept + 1);
    EXPECT_EQ(CloseKeptConnections(OpenTransactions::RollBack), 0U) << "the statement may still be used";
    sqlite3_finalize(stmt);
    std::thread([] { EXPECT_EQ(CloseKeptConnections(), 1U); }).join();
}

TEST_F(Engine, ExceptionsLeaveNoOwnConnectionOrStatement)
{
    m_file.exec("INSERT INTO t(id) VALUES(7)");
    const std::string select = "SELECT id FROM t";
    RowFunction throwing([](CellReader&) { throw std::runtime_error("row"); });
    EXPECT_THROW(run(m_store, {.sql = select, .rows = &throwing}), std::runtime_error);
    m_store.onOpen = [&](sqlite3*) { throw std::bad_alloc(); };
    EXPECT_THROW(m_store.Execute(select), std::bad_alloc);
    EXPECT_EQ(m_store.opened, m_store.closed);
    m_file.exec("DROP TABLE t"); // nobody holds a lock
}

TEST_F(Engine, ListsBindInPlaceAndOnTopOfEachOther)
{
    Binds list{row(1, "first"), row(2)};
    EXPECT_TRUE(m_store.Execute(insertRow, list));
    EXPECT_EQ(rows(), (Rows{{"1", "'first'"}, {"2", "'first'"}})) << "what an element leaves out keeps its value";
    EXPECT_TRUE(m_store.Execute(insertRow, list)) << "spent elements bind nothing";
    EXPECT_EQ(m_file.value("SELECT count(*) FROM t WHERE name IS NULL"), "2");
    DatabaseBindParameter half = row(10, "half");
    half.Next();
    EXPECT_EQ(query("SELECT :name", half), (Rows{{"'half'"}})) << "from the cursor on";

    list.clear();
    m_store.trace.take();
    EXPECT_TRUE(m_store.Execute(insertRow, list));
    EXPECT_EQ(m_store.trace.take().size(), 2U) << "an empty list begins and commits";
}

TEST_F(Engine, AParameterTakesWhatTheElementBeforeDidNotHave)
{
    m_file.exec("CREATE TABLE v(value)");
    Rows expected;
    Binds list;
    for (const std::string cell : {"0", "0", "''", "''", "0", "7", "7", "'a'", "7", "''", "'b'", "''"}) {
        const bool isText = cell.front() == '\'';
        isText ? list.emplace_back().Bind(cell.substr(1, cell.size() - 2), ":value")
               : list.emplace_back().Bind(std::stoi(cell), ":value");
        expected.push_back({cell});
    }
    EXPECT_TRUE(m_store.Execute("INSERT INTO v VALUES(:value)", list));
    EXPECT_EQ(m_file.query("SELECT value FROM v ORDER BY rowid"), expected);
}

TEST_F(Engine, AListWithRowsGivesThoseOfItsLastElement)
{
    m_file.exec("INSERT INTO t(id, name) VALUES(1,'a'),(2,'b'),(3,'b')");
    const auto byName = statementOf<std::string>("SELECT id FROM t WHERE name = :name", ":name");
    const std::vector<std::string> names{"a", "nobody", "b"};
    for (const std::size_t count : {3U, 2U, 0U}) {
        RecordSource source(byName, std::span(names).first(count));
        std::vector<std::int64_t> ids;
        RowFunction sink([&](CellReader& cells) { ids.push_back(cells.nextInteger()); });
        EXPECT_TRUE(run(m_store, {.sql = byName.sql, .elements = &source, .rows = &sink}));
        EXPECT_EQ(ids, count == 3 ? (std::vector<std::int64_t>{2, 3}) : std::vector<std::int64_t>());
    }
}

TEST_F(Engine, WhatIsBoundToACallersStatementStays)
{
    sqlite3* db = m_store.GetDbConnection();
    sqlite3_stmt* stmt = m_store.PrepareSql(db, "SELECT :text");
    std::string text = "before";
    const auto byText = statementOf<std::string>("", ":text");
    auto source = oneValue(byText, text);
    EXPECT_TRUE(run(m_store, {.db = db, .stmt = stmt, .elements = &source}));
    text.replace(0, 6, "behind");
    sqlite3_reset(stmt);
    EXPECT_EQ(query(db, stmt), (Rows{{"'before'"}}));
    EXPECT_EQ(query(db, stmt), (Rows{{"'before'"}})) << "a finished statement starts again with what is bound";
    EXPECT_TRUE(m_store.FinalizeStatment(stmt));
    EXPECT_TRUE(m_store.CloseDatabase(db));
}

TEST_F(Engine, StatementsAreCompiledOnceAndNotAgain)
{
    sqlite3* db = m_store.GetDbConnection();
    sqlite3_stmt* stmt = m_store.PrepareSql(db, "SELECT count(*) FROM t");
    m_file.exec("ALTER TABLE t ADD COLUMN more TEXT");
    EXPECT_EQ(query(db, stmt), Rows());
    EXPECT_FALSE(m_store.FinalizeStatment(stmt));
    EXPECT_TRUE(m_log.failuresWere({lines.step, lines.finalize}));
    EXPECT_TRUE(m_store.CloseDatabase(db));
}

TEST_F(Engine, TextIsStoredWholeAndRepaired)
{
    const std::tuple<std::string, std::string, std::string> cases[] = {
        {std::string("a\0b", 3), "610062", "a"},
        {"\xE5\x90\x8D\xF0\x9F\x98\x80", "E5908DF09F9880", "\xE5\x90\x8D\xF0\x9F\x98\x80"},
        {std::string("\xFFz\0\xFF", 4), "EFBFBD7A00EFBFBD", "\xEF\xBF\xBDz"},
    };
    for (const auto& [given, storedHex, read] : cases) {
        DatabaseBindParameter bind = row(1, given);
        EXPECT_TRUE(m_store.Execute("REPLACE INTO t(id, name) VALUES(:id, :name)", bind));
        EXPECT_EQ(m_file.query("SELECT typeof(name), hex(CAST(name AS BLOB)) FROM t"),
                  (Rows{{"'text'", textCell(storedHex)}}));
        EXPECT_EQ(query("SELECT name FROM t"), (Rows{{textCell(read)}}));
    }
    EXPECT_EQ(query("SELECT CAST(x'61FF7A' AS TEXT)"), (Rows{{"'a\xEF\xBF\xBDz'"}})) << "on the way out as well";
}

TEST_F(Engine, CellsFollowTheStorageClassAndTheDeclaredType)
{
    // The declared type, null for an expression; the value; its cell, or none: the column behind takes the place.
    const std::tuple<const char*, const char*, std::string> cases[] = {
        // clang-format off
        {"INTEGER", "NULL", "0"},
        {"TEXT", "NULL", "''"},
        {"VARCHAR", "NULL", "''"},
        {"REAL", "NULL", ""},
        {"varchar", "NULL", ""}, // SQLite itself spells some types in capitals, integer and text among them
        {"TEXT NOCASE", "NULL", ""},
        {"", "NULL", "0"}, // a column without a type is as an expression
        {nullptr, "NULL", "0"},
        {nullptr, "1 + 1", "2"},
        {"TEXT", "x'6162'", ""},
        {"INTEGER", "-9223372036854775807 - 1", "-9223372036854775808"},
        {"INTEGER", "'text'", "'text'"},
        {"TEXT", "17", "'17'"},
        {"INTEGER", "12.5", "'12.5'"},
        {"REAL", "-1e300", "'-1.0e+300'"},
        // clang-format on
    };
    for (const auto& [declared, value, cell] : cases) {
        SCOPED_TRACE(std::string(declared == nullptr ? "an expression" : declared) + " " + value);
        std::string sql = "SELECT " + std::string(value) + ", 'behind'";
        if (declared != nullptr) {
            m_file.exec("DROP TABLE IF EXISTS cell; CREATE TABLE cell(v " + std::string(declared) +
                        "); INSERT INTO cell VALUES(" + value + ")");
            sql = "SELECT v, 'behind' FROM cell";
        }
        EXPECT_EQ(query(sql), cell.empty() ? Rows{{"'behind'"}} : (Rows{{cell, "'behind'"}}));
    }
}
