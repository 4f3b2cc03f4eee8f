// The plain connection: opening and closing, text on it, its log, and what copies share.

#include "databaseservice/commonsqlitedb.h"
#include "databaseservice/keptconnections.h"
#include "support/observed.h"
#include "support/plainlines.h"

#include <stdexcept>

using namespace testsupport;
using namespace DatabaseService;

namespace {

/// Notes when its hooks run.
class HookedDb : public CommonSqliteDb {
public:
    explicit HookedDb(std::vector<std::string>& calls) : m_calls(calls) { }

    StatementTrace trace;

protected:
    void OpenAfter(sqlite3* db) override
    {
        m_calls.emplace_back("open");
        trace.attach(db);
    }
    void CloseBefore(sqlite3*) override { m_calls.emplace_back("close"); }

private:
    std::vector<std::string>& m_calls;
};

struct PlainConnection : PlainTest {
    PlainConnection() { open(m_db); }

    std::string utf8(const std::wstring& name) const { return platform::toUtf8(path(name)); }

    void open(CommonSqliteDb& db, const std::wstring& name = L"plain.dat") const
    {
        ASSERT_TRUE(db.OpenUtf8Path(utf8(name).c_str()));
    }

    Lines m_calls;
    HookedDb m_db{m_calls}; // open
};

int64 busyTimeout(CommonSqliteDb& db)
{
    return db.QueryTotalCount("PRAGMA busy_timeout", -1);
}

std::string failed(const std::string& text)
{
    return sqliteFailed(text, 1, text);
}

} // namespace

TEST_F(PlainConnection, TheBusyTimeoutIsReplacedOnlyAtConstruction)
{
    for (const auto& [constructed, timeout] : {std::pair{0, 30000}, {-1, 30000}, {1, 1}}) {
        CommonSqliteDb db(constructed);
        open(db);
        EXPECT_EQ(busyTimeout(db), timeout);
        db.setBusyTimeout(123);
        EXPECT_EQ(busyTimeout(db), 123) << "on the open connection";
        db.setBusyTimeout(0);
        open(db);
        EXPECT_EQ(busyTimeout(db), 0) << "after the next open";
    }
}

TEST_F(PlainConnection, EveryFormOfPathOpensAndCreatesItsFile)
{
    const std::wstring name = L"gr\u00F6\u00DFe \u6587\u4EF6.dat";
    CommonSqliteDb db;
    EXPECT_FALSE(db.IsOpen());
    EXPECT_TRUE(db.OpenUnicodePath(wide(path(name)).c_str()));
    EXPECT_TRUE(db.IsOpen());
    EXPECT_TRUE(db.ExcuteSql("CREATE TABLE t(a)"));
    EXPECT_TRUE(db.OpenUtf8Path(utf8(name).c_str()));
    EXPECT_EQ(db.QueryTotalCount("SELECT count(*) FROM t", -1), 0);
    EXPECT_TRUE(db.OpenAnsiPath(utf8(L"ansi.dat").c_str()));
    EXPECT_TRUE(db.ExcuteSql("CREATE TABLE t(a)"));
    EXPECT_TRUE(std::filesystem::exists(path(L"ansi.dat")));
}

TEST_F(PlainConnection, OpeningClosesWhatWasOpen)
{
    open(m_db, L"second.dat");
    EXPECT_FALSE(m_db.OpenUnicodePath(nullptr));
    EXPECT_FALSE(m_db.OpenAnsiPath(nullptr));
    EXPECT_EQ(m_calls, (Lines{"open", "close", "open"})) << "null in a converting form changes nothing";
    EXPECT_FALSE(m_db.OpenUtf8Path(nullptr));
    EXPECT_FALSE(m_db.IsOpen());
    m_db.Close();
    EXPECT_EQ(m_calls, (Lines{"open", "close", "open", "close"}));
}

TEST_F(PlainConnection, TheDestructorClosesWithTheBasesOwnHook)
{
    {
        HookedDb db(m_calls);
        open(db);
        db.ExcuteSql("BEGIN EXCLUSIVE");
        m_calls.clear();
    }
    EXPECT_EQ(m_calls, Lines{});
    m_db.setBusyTimeout(1);
    EXPECT_TRUE(m_db.ExcuteSql("BEGIN EXCLUSIVE"));
}

TEST_F(PlainConnection, AFailedOpenKeepsAHandleOnWhichEverythingFails)
{
    const std::string reason = "unable to open database file";
    EXPECT_FALSE(m_db.OpenUtf8Path(platform::toUtf8(m_folder.path()).c_str()));
    EXPECT_TRUE(m_db.IsOpen());
    EXPECT_EQ(m_calls, (Lines{"open", "close"}));
    EXPECT_FALSE(m_db.ExcuteSql("SELECT 1"));
    EXPECT_EQ(logged(), (Lines{sqliteFailed("open database", 14, reason), sqliteFailed("nullTitle", 21, reason)}));
    open(m_db);
    EXPECT_EQ(m_db.QueryTotalCount("SELECT 1", 9), 1);
}

TEST_F(PlainConnection, WithoutAConnectionOnlyTheLogTells)
{
    CommonSqliteDb db;
    EXPECT_FALSE(db.ExcuteSql(nullptr) || db.QuerySqlResult(nullptr, {}, 0));
    EXPECT_TRUE(db.ExcuteMultiSql({}));
    EXPECT_EQ(logged(), Lines{});
    EXPECT_FALSE(db.ExcuteSql("SELECT 1") || db.ExcuteMultiSql({"SELECT 1"}) || db.QuerySqlResult("SELECT 1", {}, 0));
    EXPECT_EQ(db.QueryTotalCount("SELECT 1", 9), 9);
    EXPECT_EQ(
        logged(),
        (Lines{notOpen("ExcuteSql"), notOpen("ExcuteMultiSql"), notOpen("QuerySqlResult"), notOpen("QuerySqlResult")}));
}

TEST_F(PlainConnection, TextIsRunUpToItsFirstFailure)
{
    EXPECT_TRUE(m_db.ExcuteSql("CREATE TABLE t(a); INSERT INTO t VALUES(1); INSERT INTO t VALUES(2)"));
    EXPECT_FALSE(m_db.ExcuteSql("DELETE FROM t WHERE a = 1; DELETE FROM \"%s%n\"; DELETE FROM t"));
    EXPECT_EQ(logged(), Lines{failed("no such table: %s%n")});
    EXPECT_EQ(m_db.QueryTotalCount("SELECT count(*) FROM t", -1), 1);
}

TEST_F(PlainConnection, ABatchIsOneTransactionThatFailuresDoNotEnd)
{
    const std::string one = "INSERT INTO t VALUES(1)";
    const std::string bad = "INSERT INTO nowhere VALUES(1)";
    const std::string badFailed = failed("no such table: nowhere");
    const std::tuple<std::list<std::string>, bool, Lines, Lines> cases[] = {
        {{}, true, {}, {}},
        {{one, one + ";" + one}, true, {}, {"0:BEGIN", "0:" + one, "0:" + one + ";", "0:" + one, "0:COMMIT"}},
        {{one, bad, one},
         true,
         {badFailed, plainLine("CommonSqliteDb::ExcuteMultiSql", "total[3] error[1]")},
         {"0:BEGIN", "0:" + one, "0:" + one, "0:COMMIT"}},
        {{one, "COMMIT", bad},
         false,
         {badFailed, failed("cannot commit - no transaction is active")},
         {"0:BEGIN", "0:" + one, "0:COMMIT", "0:COMMIT"}},
    };
    m_db.ExcuteSql("CREATE TABLE t(a)");
    for (const auto& [statements, result, log, trace] : cases) {
        SCOPED_TRACE(testing::PrintToString(statements));
        m_db.trace.take();
        EXPECT_EQ(m_db.ExcuteMultiSql(statements), result);
        EXPECT_EQ(logged(), log);
        EXPECT_EQ(m_db.trace.take(), trace);
    }
    m_db.ExcuteSql("BEGIN");
    EXPECT_FALSE(m_db.ExcuteMultiSql({one}));
    EXPECT_EQ(logged(), Lines{failed("cannot start a transaction within a transaction")});
    EXPECT_TRUE(m_db.ExcuteSql("ROLLBACK")) << "the caller's transaction is still there";
}

TEST_F(PlainConnection, AQueryHandsOverEachRow)
{
    m_db.ExcuteSql("CREATE TABLE t(a); INSERT INTO t VALUES(1), (2), (-9223372036854775807 - 1), (4)");
    const std::tuple<const char*, bool, Lines, Lines> cases[] = {
        {"SELECT a FROM t ORDER BY rowid", true, {"1", "2", "-9223372036854775808", "4"}, {}},
        {"SELECT abs(a) FROM t ORDER BY rowid", true, {"1", "2"}, {}}, // a step that fails ends the rows in silence
        {nullptr, false, {}, {}},
        {"-- nothing", false, {}, {}},
        {"SELEC 1", false, {}, {sqliteFailed(" 1", 1, "near \"SELEC\": syntax error")}},
    };
    for (const auto& [sql, result, rows, log] : cases) {
        SCOPED_TRACE(sql == nullptr ? "null" : sql);
        Lines seen;
        const auto onRow = [&](sqlite3_stmt*& statement, int64 context) {
            EXPECT_EQ(context, -7);
            seen.emplace_back(reinterpret_cast<const char*>(sqlite3_column_text(statement, 0)));
        };
        EXPECT_EQ(m_db.QuerySqlResult(sql, onRow, -7), result);
        EXPECT_EQ(seen, rows);
        EXPECT_EQ(logged(), log);
    }
    EXPECT_EQ(m_db.QueryTotalCount("SELECT a FROM t WHERE a = 3", 9), 9);
    EXPECT_EQ(m_db.QueryTotalCount("SELECT a << 40, 5 FROM t ORDER BY rowid", 9), 4LL << 40) << "the last row's";
}

TEST_F(PlainConnection, AQueryEndsItsStatementHoweverTheCallbackEnds)
{
    const auto fail = [](sqlite3_stmt*&, int64) { throw std::runtime_error("no more"); };
    EXPECT_THROW(m_db.QuerySqlResult("SELECT 1", fail, 0), std::runtime_error);
    EXPECT_THROW(m_db.QuerySqlResult("SELECT 1", {}, 0), std::bad_function_call);
    EXPECT_TRUE(m_db.QuerySqlResult("SELECT 1 WHERE 0", {}, 0)) << "no row, no call";
    const auto end = [](sqlite3_stmt*& statement, int64) {
        sqlite3_finalize(statement);
        statement = nullptr;
    };
    EXPECT_TRUE(m_db.QuerySqlResult("SELECT 1 UNION SELECT 2", end, 0));
    m_db.Close();
    EXPECT_FALSE(m_db.IsOpen()) << "no statement is left";
}

TEST_F(PlainConnection, AConnectionInUseCannotBeClosed)
{
    const std::size_t kept = ListKeptConnections().size();
    const std::string line =
        sqliteFailed("close db", 5, "unable to close due to unfinalized statements or unfinished backups");
    const auto whileInUse = [&](const std::function<void()>& action) {
        EXPECT_TRUE(m_db.QuerySqlResult(
            "SELECT 1", [&](sqlite3_stmt*&, int64) { action(); }, 0));
    };
    whileInUse([&] {
        m_db.Close();
        EXPECT_TRUE(m_db.IsOpen());
        EXPECT_FALSE(m_db.OpenUtf8Path(nullptr));
        EXPECT_TRUE(m_db.ExcuteSql("CREATE TABLE t(a)"));
    });
    EXPECT_EQ(logged(), (Lines{line, line}));
    EXPECT_EQ(ListKeptConnections().size(), kept);
    // The next open takes the object's place from a connection that cannot be closed.
    whileInUse([&] { open(m_db, L"second.dat"); });
    EXPECT_EQ(logged(), Lines{line});
    EXPECT_EQ(m_db.QueryTotalCount("SELECT count(*) FROM sqlite_master", -1), 0) << "of the second file";
    ASSERT_EQ(ListKeptConnections().size(), kept + 1);
    EXPECT_EQ(ListKeptConnections().back().database, wide(path(L"plain.dat")));
}

TEST_F(PlainConnection, CopiesShareTheConnection)
{
    CommonSqliteDb first(700);
    open(first);
    {
        CommonSqliteDb copy(first); // NOLINT(performance-unnecessary-copy-initialization): it is what is tried
        EXPECT_TRUE(copy.ExcuteSql("CREATE TEMP TABLE shared(a)"));
        EXPECT_TRUE(first.ExcuteSql("INSERT INTO shared VALUES(1)"));
    }
    EXPECT_FALSE(first.IsOpen()) << "the copy's destructor closes it for both";
    CommonSqliteDb copy(first);
    open(copy, L"second.dat");
    EXPECT_EQ(busyTimeout(copy), 700);
    EXPECT_FALSE(first.IsOpen()) << "a copy that opens has a connection of its own";
    open(first);
    const std::size_t kept = ListKeptConnections().size();
    first = copy;
    EXPECT_EQ(ListKeptConnections().size(), kept + 1) << "what was assigned over stays open";
}
