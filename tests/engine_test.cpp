// The engine: every way into it, what it runs, what it logs and what it leaves behind.

#include "databaseservice/cellreader.h"
#include "databaseservice/elementsource.h"
#include "databaseservice/keptconnections.h"
#include "databaseservice/parameterwriter.h"
#include "databaseservice/recordio.h"
#include "support/enginelines.h"
#include "support/observed.h"
#include "support/storetest.h"

#include <chrono>
#include <optional>
#include <stdexcept>
#include <thread>

using namespace testsupport;
using DatabaseService::CellReader;
using DatabaseService::DatabaseBindParameter;
using DatabaseService::DatabaseQueryResult;
using DatabaseService::ElementSource;
using DatabaseService::ListKeptConnections;
using DatabaseService::ParameterWriter;
using DatabaseService::RowFunction;

namespace {

using Results = std::list<DatabaseQueryResult*>;
using Binds = std::list<DatabaseBindParameter>;

const EngineLines lines("engine.dat");
const std::string insertRow = "INSERT INTO t(id, name) VALUES(:id, :name)";

DatabaseBindParameter idOnly(int id)
{
    DatabaseBindParameter bind;
    bind.Bind(id, ":id");
    return bind;
}

DatabaseBindParameter idAndName(int id, const std::string& name)
{
    DatabaseBindParameter bind = idOnly(id);
    bind.Bind(name, ":name");
    return bind;
}

ExpectedLine opening(const std::string& path)
{
    return {"DatabaseOperationBase::OpenDatabase", "OpenDataBase:" + path, 1};
}

class Engine : public StoreTest {
protected:
    Engine() { m_file.exec("CREATE TABLE t(id INTEGER PRIMARY KEY, name TEXT)"); }

    Rows rows() { return m_file.query("SELECT id, name FROM t ORDER BY id"); }

    /// What a query of its own connection gives, as it must be whenever the frame holds.
    Rows query(const std::string& sql)
    {
        Results* list = nullptr;
        EXPECT_TRUE(m_store.Query(sql, list));
        return takeRows(m_store, list);
    }

    SqliteFile m_file{path(L"engine.dat")};
    PlainStore m_store;
};

/// Fails in the middle, as client code may.
class ThrowingSource : public ElementSource {
public:
    bool Advance() override { return true; }
    bool Bind(ParameterWriter& parameters) override
    {
        if (m_bound++ == 1) {
            throw std::runtime_error("bind");
        }
        return parameters.bind(1, std::int64_t{1});
    }

private:
    int m_bound = 0;
};

} // namespace

TEST_F(Engine, EveryOverloadRunsOnTheConnectionAndStatementItIsGiven)
{
    m_file.exec("INSERT INTO t(id) VALUES(1),(2),(3)");
    const std::string sql = "SELECT id FROM t WHERE id = :id";
    sqlite3* db = m_store.GetDbConnection();
    sqlite3_stmt* stmt = nullptr;
    DatabaseBindParameter bind = idOnly(2);
    // A caller's statement must not stand on a row when another connection commits: it would hold that up.
    Binds list{idOnly(3), idOnly(9)};
    Results* result = nullptr;
    // Connection 0 is the caller's, the next one the call's own.
    enum Owner { Callers, Own };
    struct Case {
        const char* name;
        Owner connection;
        Owner statement;
        int steps;
        std::optional<Rows> rows;
        std::function<bool()> call;
    };
    const Rows none;
    const Rows one{{"2"}};
    auto& s = m_store;
    const Case cases[] = {
        // clang-format off
        {"Execute(sql)", Own, Own, 1, {}, [&] { return s.Execute(sql); }},
        {"Execute(sql, list)", Own, Own, 2, {}, [&] { return s.Execute(sql, list); }},
        {"Execute(sql, bind)", Own, Own, 1, {}, [&] { return s.Execute(sql, bind); }},
        {"Execute(stmt)", Own, Callers, 1, {}, [&] { return s.Execute(stmt); }},
        {"Execute(stmt, list)", Own, Callers, 2, {}, [&] { return s.Execute(stmt, list); }},
        {"Execute(db, sql)", Callers, Own, 1, {}, [&] { return s.Execute(db, sql); }},
        {"Execute(db, sql, list)", Callers, Own, 2, {}, [&] { return s.Execute(db, sql, list); }},
        {"Execute(db, stmt)", Callers, Callers, 1, {}, [&] { return s.Execute(db, stmt); }},
        {"Execute(db, stmt, list)", Callers, Callers, 2, {}, [&] { return s.Execute(db, stmt, list); }},
        {"Query(sql)", Own, Own, 1, none, [&] { return s.Query(sql, result); }},
        {"Query(sql, bind)", Own, Own, 1, one, [&] { return s.Query(sql, bind, result); }},
        {"Query(stmt)", Own, Callers, 1, none, [&] { return s.Query(stmt, result); }},
        {"Query(stmt, bind)", Own, Callers, 1, one, [&] { return s.Query(stmt, bind, result); }},
        {"Query(db, sql)", Callers, Own, 1, none, [&] { return s.Query(db, sql, result); }},
        {"Query(db, sql, bind)", Callers, Own, 1, one, [&] { return s.Query(db, sql, bind, result); }},
        {"Query(db, stmt)", Callers, Callers, 1, none, [&] { return s.Query(db, stmt, result); }},
        {"Query(db, stmt, bind)", Callers, Callers, 1, one, [&] { return s.Query(db, stmt, bind, result); }},
        // clang-format on
    };
    int connections = 1;
    for (const Case& test : cases) {
        SCOPED_TRACE(test.name);
        stmt = test.statement == Callers ? m_store.PrepareSql(db, sql) : nullptr;
        for (DatabaseBindParameter& element : list) {
            element.Reset();
        }
        result = nullptr;
        m_store.opened = m_store.closed = 0;
        m_store.trace.take();

        EXPECT_TRUE(test.call());

        const std::string transaction = (test.connection == Own ? std::to_string(connections) : "0") + ':';
        const std::string statement = test.statement == Own ? transaction : "0:";
        connections += test.connection == Own;
        std::vector<std::string> expected{transaction + (test.rows ? "BEGIN DEFERRED" : "BEGIN IMMEDIATE;")};
        expected.insert(expected.end(), static_cast<std::size_t>(test.steps), statement + sql);
        expected.push_back(transaction + "COMMIT;");
        EXPECT_EQ(m_store.trace.take(), expected);
        EXPECT_EQ(m_store.opened, test.connection == Own ? 1 : 0);
        EXPECT_EQ(m_store.closed, m_store.opened);
        EXPECT_TRUE(bind.HasNext()) << "a single binding stays as it is";
        EXPECT_EQ(list.front().HasNext(), test.steps != 2) << "a list's elements move";
        EXPECT_EQ(result != nullptr, test.rows.has_value());
        if (result != nullptr) {
            EXPECT_EQ(takeRows(m_store, result), *test.rows);
        }
        EXPECT_EQ(sqlite3_next_stmt(db, nullptr), stmt) << "own statements end, the caller's stay";
        EXPECT_TRUE(m_store.FinalizeStatment(stmt));
    }
    EXPECT_TRUE(m_store.CloseDatabase(db));
    EXPECT_TRUE(m_store.CloseDatabase(nullptr));
}

TEST_F(Engine, AFailedOpenIsThreeLinesAndNothingElse)
{
    std::filesystem::create_directory(path(L"folder.dat"));
    const std::string folder = platform::toUtf8(m_folder.path());
    struct Case {
        std::string subfolder;
        std::string name;
        std::string seen;
    };
    const Case cases[] = {
        {"/missing", "a.dat", "a.datdoes not exist."},
        {"/missing", "\xE5\x90\x8D.dat", "\xE5\x90\x8D.datdoes not exist."},
        {"", "folder.dat", "folder.datexist."},
        {"", "", "exist."}, // without a name the path is the folder's
    };
    for (const auto& [subfolder, name, seen] : cases) {
        SCOPED_TRACE(name);
        GlobalParamWrapper::GetInstance()->SetUserDataBaseFolder(platform::toWide(folder + subfolder));
        PlainStore store(platform::toWide(name));
        const std::vector<ExpectedLine> expected{opening(folder + subfolder + '/' + name), EngineLines(name).open,
                                                 engine("OpenDatabase", seen)};
        EXPECT_FALSE(store.Execute("CREATE TABLE x(y)"));
        EXPECT_TRUE(m_log.linesWere(expected));
        EXPECT_EQ(store.GetDbConnection(), nullptr);
        EXPECT_TRUE(m_log.linesWere(expected));
        Results* list = nullptr;
        EXPECT_FALSE(store.Query("SELECT 1", list));
        EXPECT_TRUE(m_log.linesWere(expected));
        EXPECT_EQ(takeRows(store, list), Rows());
        EXPECT_EQ(store.opened, 0);
        EXPECT_EQ(store.closed, 3) << "the handle of a failed open is closed like any other";
    }
}

TEST_F(Engine, TheNameAndTheFolderAreAskedAtEveryOpen)
{
    const std::string folder = platform::toUtf8(m_folder.path());
    PlainStore copy = m_store;
    EXPECT_TRUE(m_store.SetDatabasePath(L"\u540D.dat"));
    EXPECT_TRUE(m_store.SetDatabasePath(L"\u540D.dat"));
    EXPECT_TRUE(m_store.Execute("CREATE TABLE other(x)"));
    EXPECT_TRUE(m_log.linesWere({opening(folder + "/\xE5\x90\x8D.dat")}));
    EXPECT_TRUE(std::filesystem::is_regular_file(path(L"\u540D.dat")));
    EXPECT_TRUE(copy.Execute("INSERT INTO t(id) VALUES(1)")) << "a copy has a name of its own";

    std::filesystem::create_directory(path(L"second"));
    useFolder(path(L"second"));
    EXPECT_TRUE(copy.Execute("CREATE TABLE t(z)"));
    EXPECT_TRUE(
        m_log.linesWere({opening(folder + "/engine.dat"), opening(platform::toUtf8(path(L"second")) + "/engine.dat")}));
    EXPECT_EQ(SqliteFile(path(L"second") / "engine.dat").value("PRAGMA journal_mode"), "'delete'");
}

TEST_F(Engine, AFailedPrepareIsOneLine)
{
    Results* list = nullptr;
    sqlite3* db = m_store.GetDbConnection();
    EXPECT_FALSE(m_store.Execute("SELECT nothing FROM nowhere"));
    EXPECT_FALSE(m_store.Execute(db, "SELEC"));
    EXPECT_EQ(m_store.PrepareSql(db, "SELEC"), nullptr);
    EXPECT_FALSE(m_store.Query("SELECT nothing FROM nowhere", list));
    EXPECT_TRUE(m_log.failuresWere({lines.prepare, lines.prepare, lines.prepare, lines.prepare}));
    EXPECT_EQ(takeRows(m_store, list), Rows());
    // Text without a statement compiles to none, and that is no failure of SQLite's.
    EXPECT_FALSE(m_store.Execute(" -- nothing"));
    EXPECT_TRUE(m_store.CloseDatabase(db));
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

    EXPECT_FALSE(m_store.Execute(db, sql));
    EXPECT_TRUE(m_log.failuresWere({exec, lines.beginWrite, lines.errorMessage, EngineLines::sql(sql)}));
    Results* list = nullptr;
    EXPECT_FALSE(m_store.Query(db, sql, list));
    EXPECT_TRUE(m_log.failuresWere({exec, begin, lines.beginRead, EngineLines::sql(sql)}));
    EXPECT_EQ(sqlite3_next_stmt(db, nullptr), nullptr);
    EXPECT_EQ(takeRows(m_store, list), Rows());

    // A caller's statement comes without text and is not finalized.
    sqlite3_stmt* stmt = m_store.PrepareSql(db, sql);
    EXPECT_FALSE(m_store.Execute(db, stmt));
    EXPECT_TRUE(m_log.failuresWere({exec, lines.beginWrite, EngineLines::sql("")}));
    EXPECT_FALSE(m_store.Query(db, stmt, list));
    EXPECT_TRUE(m_log.failuresWere({exec, begin, lines.beginRead, EngineLines::sql("")}));
    EXPECT_EQ(takeRows(m_store, list), Rows());
    EXPECT_EQ(sqlite3_get_autocommit(db), 0) << "the caller's transaction goes on";
    EXPECT_TRUE(m_store.FinalizeStatment(stmt));
    EXPECT_TRUE(m_store.CloseDatabase(db));
}

TEST_F(Engine, AFailedBindEndsTheBatchWithoutACommit)
{
    m_store.onOpen = [](sqlite3* db) { sqlite3_limit(db, SQLITE_LIMIT_LENGTH, 1000); };
    const std::string large(2000, 'x');
    struct Case {
        const char* name;
        std::function<void(DatabaseBindParameter&)> spoil;
        std::string refused;
    };
    const Case cases[] = {
        {"unknown number", [](auto& bind) { bind.Bind(7, ":unknown"); }, "0 and value is 7"},
        {"unknown text", [](auto& bind) { bind.Bind(std::string("\xE5\x90\x8D"), ":unknown"); },
         "0 and value is \xE5\x90\x8D"},
        {"name without its colon", [](auto& bind) { bind.Bind(-7, "name"); }, "0 and value is -7"},
        {"too large", [&](auto& bind) { bind.Bind(large, ":name"); }, "2 and value is " + large},
    };
    for (const auto& [name, spoil, refused] : cases) {
        SCOPED_TRACE(name);
        Binds list{idAndName(1, "a"), idAndName(2, "b"), idAndName(3, "c")};
        spoil(*std::next(list.begin()));
        EXPECT_FALSE(m_store.Execute(insertRow, list));
        EXPECT_TRUE(m_log.failuresWere(
            {lines.bind(refused), EngineLines::bindMessage("*"), lines.errorMessage, EngineLines::sql(insertRow)}));
        EXPECT_EQ(m_store.opened, m_store.closed);
        EXPECT_EQ(rows(), Rows()) << "closing undid the first row";
        EXPECT_TRUE(list.back().HasNext()) << "the third element was not reached";

        // On a connection of the caller's the transaction stays open.
        sqlite3* db = m_store.GetDbConnection();
        sqlite3_stmt* stmt = m_store.PrepareSql(db, insertRow);
        for (DatabaseBindParameter& element : list) {
            element.Reset();
        }
        EXPECT_FALSE(m_store.Execute(db, stmt, list));
        EXPECT_TRUE(m_log.failuresWere({lines.bind(refused), EngineLines::bindMessage("*"), EngineLines::sql("")}));
        EXPECT_EQ(sqlite3_get_autocommit(db), 0);
        EXPECT_TRUE(m_store.FinalizeStatment(stmt));
        EXPECT_TRUE(m_store.CloseDatabase(db));
    }
}

TEST_F(Engine, AFailedStepCostsItsRowOnly)
{
    const ExpectedLine atReset = EngineLines::bindMessage("UNIQUE constraint failed: t.id");
    const std::vector<ExpectedLine> last{lines.step, lines.finalize,
                                         EngineLines::afterFinalize("UNIQUE constraint failed: t.id")};
    Binds list{idAndName(1, "a"), idAndName(1, "again"), idAndName(2, "b")};
    EXPECT_TRUE(m_store.Execute(insertRow, list));
    EXPECT_TRUE(m_log.failuresWere({lines.step, atReset}));
    EXPECT_EQ(rows(), (Rows{{"1", "'a'"}, {"2", "'b'"}}));

    Binds failingLast{idAndName(3, "c"), idAndName(2, "again")};
    EXPECT_TRUE(m_store.Execute(insertRow, failingLast));
    EXPECT_TRUE(m_log.failuresWere(last));
    EXPECT_EQ(rows().size(), 3U);

    EXPECT_TRUE(m_store.Execute("INSERT INTO t(id) VALUES(3)"));
    EXPECT_TRUE(m_log.failuresWere(last));

    // A caller's statement is not finalized: its failure shows again at its next reset.
    sqlite3* db = m_store.GetDbConnection();
    sqlite3_stmt* stmt = m_store.PrepareSql(db, insertRow);
    Binds single{idAndName(3, "again")};
    EXPECT_TRUE(m_store.Execute(db, stmt, single));
    EXPECT_TRUE(m_log.failuresWere({lines.step}));
    Binds good{idAndName(4, "d")};
    EXPECT_TRUE(m_store.Execute(db, stmt, good));
    EXPECT_TRUE(m_log.failuresWere({atReset}));
    single.front().Reset();
    EXPECT_TRUE(m_store.Execute(db, stmt, single));
    EXPECT_FALSE(m_store.FinalizeStatment(stmt));
    EXPECT_TRUE(m_log.failuresWere({lines.step, lines.finalize}));
    EXPECT_TRUE(m_store.FinalizeStatment(nullptr));
    EXPECT_TRUE(m_store.CloseDatabase(db));
    EXPECT_EQ(rows().size(), 4U);
}

TEST_F(Engine, AQueryThatFailsOnTheWayKeepsWhatItHas)
{
    const ExpectedLine overflow = EngineLines::afterFinalize("integer overflow");
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

    m_store.closed = 0;
    EXPECT_FALSE(m_store.Execute("INSERT INTO child VALUES(1)"));
    EXPECT_TRUE(m_log.failuresWere(expected));
    EXPECT_EQ(m_store.closed, 0);
    ASSERT_EQ(ListKeptConnections().size(), kept + 1);
    EXPECT_EQ(ListKeptConnections().back().database, L"engine.dat");
    EXPECT_FALSE(ListKeptConnections().back().reason.empty());
    // The kept connection still holds the lock of its transaction.
    sqlite3_busy_timeout(m_file.handle(), 0);
    EXPECT_THROW(m_file.exec("BEGIN IMMEDIATE"), std::runtime_error);
}

TEST_F(Engine, AFailedCloseLeavesTheHandleUsable)
{
    const ExpectedLine line = lines.close("unable to close due to unfinalized statements or unfinished backups");
    sqlite3* db = m_store.GetDbConnection();
    sqlite3_stmt* stmt = m_store.PrepareSql(db, "SELECT 1");
    EXPECT_FALSE(m_store.CloseDatabase(db));
    EXPECT_TRUE(m_log.failuresWere({line}));
    EXPECT_TRUE(m_store.Execute(db, "INSERT INTO t(id) VALUES(1)"));
    EXPECT_TRUE(m_store.FinalizeStatment(stmt));
    EXPECT_TRUE(m_store.CloseDatabase(db));
    EXPECT_EQ(rows().size(), 1U);

    // An own connection that cannot be closed does not change the call's answer.
    m_store.onOpen = [&](sqlite3* own) { sqlite3_prepare_v2(own, "SELECT 1", -1, &stmt, nullptr); };
    EXPECT_TRUE(m_store.Execute("INSERT INTO t(id) VALUES(2)"));
    EXPECT_TRUE(m_log.failuresWere({line}));
    db = sqlite3_db_handle(stmt);
    sqlite3_finalize(stmt);
    EXPECT_EQ(sqlite3_close(db), SQLITE_OK);
}

TEST_F(Engine, ExceptionsLeaveNoOwnConnectionOrStatement)
{
    m_file.exec("INSERT INTO t(id) VALUES(7)");
    const std::string insert = "INSERT INTO t(id) VALUES(:id)";
    const std::string select = "SELECT id FROM t";
    RowFunction throwing([](CellReader&) { throw std::runtime_error("row"); });
    ThrowingSource source;
    EXPECT_THROW(m_store.Execute(nullptr, nullptr, select, nullptr, &throwing), std::runtime_error);
    EXPECT_THROW(m_store.Execute(nullptr, nullptr, insert, &source, nullptr), std::runtime_error);
    EXPECT_EQ(m_store.opened, m_store.closed);
    EXPECT_EQ(rows().size(), 1U);

    sqlite3* db = m_store.GetDbConnection();
    EXPECT_THROW(m_store.Execute(db, nullptr, select, nullptr, &throwing), std::runtime_error);
    EXPECT_EQ(sqlite3_next_stmt(db, nullptr), nullptr);
    EXPECT_TRUE(m_store.CloseDatabase(db));

    m_store.onOpen = [&](sqlite3*) { throw std::bad_alloc(); };
    EXPECT_THROW(m_store.Execute(select), std::bad_alloc);
    EXPECT_THROW(m_store.GetDbConnection(), std::bad_alloc);
    EXPECT_EQ(m_store.opened, m_store.closed);
    m_file.exec("DROP TABLE t"); // nobody holds a lock
}

TEST_F(Engine, ListsBindInPlaceAndOnTopOfEachOther)
{
    DatabaseBindParameter second;
    second.Bind(2, ":id");
    Binds list{idAndName(1, "first"), second};
    EXPECT_TRUE(m_store.Execute(insertRow, list));
    EXPECT_EQ(rows(), (Rows{{"1", "'first'"}, {"2", "'first'"}})) << "what an element leaves out keeps its value";

    EXPECT_TRUE(m_store.Execute(insertRow, list)) << "spent elements bind nothing";
    EXPECT_EQ(rows().size(), 4U);
    EXPECT_EQ(m_file.value("SELECT count(*) FROM t WHERE name IS NULL"), "2");

    DatabaseBindParameter half = idAndName(10, "half");
    half.Next();
    EXPECT_TRUE(m_store.Execute(insertRow, half)) << "from the cursor on";
    Results* result = nullptr;
    EXPECT_TRUE(m_store.Query("SELECT :name", half, result));
    EXPECT_EQ(takeRows(m_store, result), (Rows{{"'half'"}}));
    EXPECT_EQ(m_file.value("SELECT count(*) FROM t WHERE id < 10 AND name = 'half'"), "1");

    m_store.trace.take();
    Binds none;
    EXPECT_TRUE(m_store.Execute(insertRow, none));
    const std::vector<std::string> statements = m_store.trace.take();
    ASSERT_EQ(statements.size(), 2U);
    EXPECT_TRUE(statements[0].ends_with("BEGIN IMMEDIATE;"));
    EXPECT_TRUE(statements[1].ends_with("COMMIT;"));
}

TEST_F(Engine, AListWithRowsGivesThoseOfItsLastElement)
{
    m_file.exec("INSERT INTO t(id, name) VALUES(1,'a'),(2,'b'),(3,'b')");
    const auto byName = DatabaseService::statementOf<std::string>("SELECT id FROM t WHERE name = :name", ":name");
    const std::vector<std::string> names{"a", "nobody", "b"};
    for (const std::size_t count : {3U, 2U, 0U}) {
        DatabaseService::RecordSource source(byName, std::span(names).first(count));
        std::vector<std::int64_t> ids;
        RowFunction sink([&](CellReader& cells) { ids.push_back(cells.nextInteger()); });
        EXPECT_TRUE(m_store.Execute(nullptr, nullptr, byName.sql, &source, &sink));
        EXPECT_EQ(ids, count == 3 ? (std::vector<std::int64_t>{2, 3}) : std::vector<std::int64_t>());
    }
}

TEST_F(Engine, SingleFormsCanBeUsedAgain)
{
    DatabaseBindParameter bind = idOnly(2);
    EXPECT_TRUE(m_store.Execute("INSERT INTO t(name) VALUES(:id)", bind));
    EXPECT_TRUE(m_store.Execute("INSERT INTO t(name) VALUES(:id)", bind));
    EXPECT_EQ(rows(), (Rows{{"1", "'2'"}, {"2", "'2'"}}));

    sqlite3* db = m_store.GetDbConnection();
    sqlite3_stmt* stmt = m_store.PrepareSql(db, "SELECT name FROM t WHERE id = :id");
    for (int twice = 0; twice < 2; ++twice) {
        Results* list = nullptr;
        EXPECT_TRUE(m_store.Query(db, stmt, bind, list));
        EXPECT_EQ(takeRows(m_store, list), (Rows{{"'2'"}}));
        EXPECT_TRUE(m_store.Query(stmt, list)) << "a finished statement starts again with what is bound";
        EXPECT_EQ(takeRows(m_store, list), (Rows{{"'2'"}}));
    }
    EXPECT_TRUE(m_store.FinalizeStatment(stmt));

    // What is bound to a caller's statement does not depend on the caller's memory.
    stmt = m_store.PrepareSql(db, "SELECT :text");
    std::string text = "before";
    const auto byText = DatabaseService::statementOf<std::string>("", ":text");
    auto source = DatabaseService::oneValue(byText, text);
    EXPECT_TRUE(m_store.Execute(db, stmt, "", &source, nullptr));
    text.replace(0, 6, "behind");
    sqlite3_reset(stmt);
    Results* rows = nullptr;
    EXPECT_TRUE(m_store.Query(db, stmt, rows));
    EXPECT_EQ(takeRows(m_store, rows), (Rows{{"'before'"}}));
    EXPECT_TRUE(m_store.FinalizeStatment(stmt));
    EXPECT_TRUE(m_store.CloseDatabase(db));

    auto* list = new Results{new DatabaseQueryResult, nullptr};
    EXPECT_FALSE(m_store.FreeTable(list));
    EXPECT_FALSE(m_store.FreeQueryResult(new Results));
}

TEST_F(Engine, StatementsAreCompiledOnceAndNotAgain)
{
    m_file.exec("INSERT INTO t(id) VALUES(1)");
    sqlite3* db = m_store.GetDbConnection();
    sqlite3_stmt* stmt = m_store.PrepareSql(db, "SELECT * FROM t");
    m_file.exec("ALTER TABLE t ADD COLUMN more TEXT");
    Results* list = nullptr;
    EXPECT_TRUE(m_store.Query(db, stmt, list));
    EXPECT_EQ(takeRows(m_store, list), Rows());
    EXPECT_FALSE(m_store.FinalizeStatment(stmt));
    EXPECT_TRUE(m_log.failuresWere({lines.step, lines.finalize}));
    EXPECT_TRUE(m_store.CloseDatabase(db));
}

TEST_F(Engine, ALockedFileIsWaitedForInSilence)
{
    using namespace std::chrono;
    m_file.exec("BEGIN IMMEDIATE; INSERT INTO t(id) VALUES(1)");
    const auto start = steady_clock::now();
    std::thread holder([this] {
        std::this_thread::sleep_for(milliseconds(100));
        m_file.exec("COMMIT");
    });
    EXPECT_TRUE(m_store.Execute("INSERT INTO t(id) VALUES(2)"));
    holder.join();
    EXPECT_GE(steady_clock::now() - start, milliseconds(100));
    EXPECT_EQ(rows().size(), 2U);
    EXPECT_EQ(m_log.take().size(), 1U) << "the open line only";
}

TEST_F(Engine, TextIsStoredWholeAndRepaired)
{
    struct Case {
        std::string given;
        std::string stored; // as hex
        std::string read;
    };
    const Case cases[] = {
        {"", "", ""},
        {"'; --", "273B202D2D", "'; --"},
        {std::string("a\0b", 3), "610062", "a"},
        {std::string("\0b", 2), "0062", ""},
        {"\xE5\x90\x8D\xF0\x9F\x98\x80", "E5908DF09F9880", "\xE5\x90\x8D\xF0\x9F\x98\x80"},
        {"a\xFFz", "61EFBFBD7A", "a\xEF\xBF\xBDz"},
        {"\xE5\x90", "EFBFBD", "\xEF\xBF\xBD"},
        {std::string("\xFF\0\xFF", 3), "EFBFBD00EFBFBD", "\xEF\xBF\xBD"},
    };
    for (const auto& [given, stored, read] : cases) {
        SCOPED_TRACE(testing::PrintToString(given));
        m_file.exec("DELETE FROM t");
        DatabaseBindParameter bind = idAndName(1, given);
        EXPECT_TRUE(m_store.Execute(insertRow, bind));
        EXPECT_EQ(m_file.value("SELECT typeof(name) FROM t"), "'text'");
        EXPECT_EQ(m_file.value("SELECT hex(CAST(name AS BLOB)) FROM t"), textCell(stored));
        EXPECT_EQ(query("SELECT name FROM t"), (Rows{{textCell(read)}}));
    }
    m_file.exec("UPDATE t SET name = CAST(x'61FF7A' AS TEXT)");
    EXPECT_EQ(query("SELECT name FROM t"), (Rows{{"'a\xEF\xBF\xBDz'"}})) << "and on the way out";

    DatabaseBindParameter lone = idOnly(1);
    lone.Bind(std::wstring{L'a', static_cast<wchar_t>(0xD800), L'z'}, ":name");
    EXPECT_TRUE(m_store.Execute("REPLACE INTO t(id, name) VALUES(:id, :name)", lone));
    EXPECT_EQ(rows(), (Rows{{"1", "'a\xEF\xBF\xBDz'"}}));
}

TEST_F(Engine, CellsFollowTheStorageClassAndTheDeclaredType)
{
    struct Case {
        const char* declared; // null for an expression
        const char* value;
        std::vector<std::string> cells; // none: the column behind takes the place
    };
    const Case cases[] = {
        {"INTEGER", "NULL", {"0"}},
        {"TEXT", "NULL", {"''"}},
        {"VARCHAR", "NULL", {"''"}},
        {"REAL", "NULL", {}},
        {"BOOL", "NULL", {}},
        {"INT", "NULL", {}},
        {"BLOB", "NULL", {}},
        {"varchar", "NULL", {}}, // SQLite itself spells some types in capitals, integer and text among them
        {"VARCHAR(20)", "NULL", {}},
        {"TEXT NOCASE", "NULL", {}},
        {"", "NULL", {"0"}}, // a column without a type is as an expression
        {nullptr, "NULL", {"0"}},
        {nullptr, "1 + 1", {"2"}},
        {nullptr, "x'00'", {}},
        {"TEXT", "x'6162'", {}},
        {"INTEGER", "x''", {}},
        {"INTEGER", "-9223372036854775807 - 1", {"-9223372036854775808"}},
        {"BOOL", "1", {"1"}},
        {"INTEGER", "'text'", {"'text'"}},
        {"TEXT", "17", {"'17'"}},
        {"TEXT", "''", {"''"}},
        {"REAL", "2", {"'2.0'"}},
        {"INTEGER", "12.5", {"'12.5'"}},
        {"REAL", "-1e300", {"'-1.0e+300'"}},
        {"REAL", "9e999", {"'Inf'"}},
    };
    for (const auto& [declared, value, cells] : cases) {
        SCOPED_TRACE(std::string(declared == nullptr ? "an expression" : declared) + " " + value);
        std::string sql = "SELECT " + std::string(value) + ", 'behind'";
        if (declared != nullptr) {
            m_file.exec("DROP TABLE IF EXISTS cell; CREATE TABLE cell(v " + std::string(declared) +
                        "); INSERT INTO cell VALUES(" + value + ")");
            sql = "SELECT v, 'behind' FROM cell";
        }
        std::vector<std::string> expected = cells;
        expected.emplace_back("'behind'");
        EXPECT_EQ(query(sql), Rows{expected});
    }
}
