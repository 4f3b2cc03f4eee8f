// The plain connection: opening and closing, text on it, its log, and what copies share.

#include "clientservices/cloudlogger.h"
#include "databaseservice/commonsqlitedb.h"
#include "databaseservice/keptconnections.h"
#include "support/observed.h"
#include "support/plainlines.h"
#include "support/storetest.h"

#include <chrono>
#include <optional>
#include <stdexcept>

using namespace testsupport;
using DatabaseService::CommonSqliteDb;
using DatabaseService::int64;

namespace {

using Lines = std::vector<std::string>;

/// Notes when its hooks run.
class HookedDb : public CommonSqliteDb {
public:
    explicit HookedDb(Lines& calls) : m_calls(calls) { }

    StatementTrace trace;

protected:
    void OpenAfter(sqlite3* db) override
    {
        m_calls.push_back(db == nullptr ? "open without a handle" : "open");
        trace.attach(db);
    }
    void CloseBefore(sqlite3* db) override { m_calls.push_back(db == nullptr ? "close without a handle" : "close"); }

private:
    Lines& m_calls;
};

class PlainConnection : public StoreTest {
protected:
    std::string utf8(const std::wstring& name) const { return platform::toUtf8(path(name)); }
    std::wstring wide(const std::wstring& name) const { return platform::toWide(utf8(name)); }

    void open(CommonSqliteDb& db, const std::wstring& name = L"plain.dat")
    {
        ASSERT_TRUE(db.OpenUtf8Path(utf8(name).c_str()));
    }

    Lines logged() { return takePlainLines(m_log); }
};

int64 busyTimeout(CommonSqliteDb& db)
{
    return db.QueryTotalCount("PRAGMA busy_timeout", -1);
}

/// Column 0 of each row as text, and whether the call said that it ran.
std::pair<bool, Lines> texts(CommonSqliteDb& db, const char* sql)
{
    Lines rows;
    const bool result = db.QuerySqlResult(
        sql,
        [&](sqlite3_stmt*& statement, int64 context) {
            EXPECT_EQ(context, -7);
            rows.emplace_back(reinterpret_cast<const char*>(sqlite3_column_text(statement, 0)));
        },
        -7);
    return {result, rows};
}

const char* const unfinished = "unable to close due to unfinalized statements or unfinished backups";

} // namespace

TEST_F(PlainConnection, TheBusyTimeoutIsReplacedOnlyAtConstruction)
{
    struct Case {
        std::optional<int> constructed;
        std::optional<int> set;
        int expected;
    };
    const Case cases[] = {
        {{}, {}, 30000}, {0, {}, 30000}, {-1, {}, 30000}, {1, {}, 1}, {45000, {}, 45000}, {500, 700, 700}, {500, 0, 0},
    };
    for (const auto& [constructed, set, expected] : cases) {
        SCOPED_TRACE(expected);
        CommonSqliteDb db = constructed ? CommonSqliteDb(*constructed) : CommonSqliteDb();
        if (set) {
            db.setBusyTimeout(*set);
        }
        open(db);
        EXPECT_EQ(busyTimeout(db), expected);
        db.setBusyTimeout(123);
        EXPECT_EQ(busyTimeout(db), 123) << "on the open connection";
        open(db);
        EXPECT_EQ(busyTimeout(db), 123) << "after the next open";
        db.setBusyTimeout(-5);
        EXPECT_EQ(busyTimeout(db), 0);
    }
}

TEST_F(PlainConnection, ALockedFileIsWaitedForAsLongAsTheTimeoutSays)
{
    SqliteFile holder(path(L"plain.dat"));
    holder.exec("CREATE TABLE t(a); BEGIN EXCLUSIVE");
    CommonSqliteDb db(150);
    open(db);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(db.ExcuteSql("INSERT INTO t VALUES(1)"));
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(100));
    db.setBusyTimeout(1);
    EXPECT_EQ(texts(db, "SELECT a FROM t"), std::pair(false, Lines{}));
    EXPECT_EQ(logged(),
              (Lines{sqliteFailed("database is locked", 5, "database is locked"),
                     sqliteFailed("", 5, "database is locked")}));
    holder.exec("COMMIT");
    EXPECT_TRUE(db.ExcuteSql("INSERT INTO t VALUES(1)"));
}

TEST_F(PlainConnection, EveryFormOfPathOpensAndCreatesItsFile)
{
    const std::wstring names[] = {L"plain.dat", L"with blank.dat",
                                  L"gr\u00F6\u00DFe \u0444\u0430\u0439\u043B \u6587\u4EF6.dat",
                                  platform::toWide("\xF0\x9F\x93\x81.dat")};
    for (const std::wstring& name : names) {
        SCOPED_TRACE(platform::toUtf8(name));
        CommonSqliteDb db;
        EXPECT_FALSE(db.IsOpen());
        EXPECT_TRUE(db.OpenUnicodePath(wide(name).c_str()));
        EXPECT_TRUE(db.IsOpen());
        EXPECT_TRUE(db.ExcuteSql("CREATE TABLE IF NOT EXISTS t(a)"));
        EXPECT_TRUE(std::filesystem::exists(path(name)));
        EXPECT_TRUE(db.OpenUtf8Path(utf8(name).c_str()));
        EXPECT_EQ(db.QueryTotalCount("SELECT count(*) FROM t", -1), 0);
    }
    CommonSqliteDb db;
    EXPECT_TRUE(db.OpenAnsiPath(utf8(L"ansi.dat").c_str()));
    EXPECT_TRUE(db.ExcuteSql("CREATE TABLE t(a)"));
    EXPECT_TRUE(std::filesystem::exists(path(L"ansi.dat")));
}

TEST_F(PlainConnection, OpeningClosesWhatWasOpen)
{
    Lines calls;
    {
        HookedDb db(calls);
        open(db);
        open(db, L"second.dat");
        EXPECT_FALSE(db.OpenUnicodePath(nullptr));
        EXPECT_FALSE(db.OpenAnsiPath(nullptr));
        EXPECT_EQ(calls, (Lines{"open", "close", "open"})) << "null in a converting form changes nothing";
        EXPECT_TRUE(db.IsOpen());
        EXPECT_FALSE(db.OpenUtf8Path(nullptr));
        EXPECT_FALSE(db.IsOpen());
        EXPECT_FALSE(db.OpenUtf8Path(nullptr));
        db.Close();
        EXPECT_EQ(calls, (Lines{"open", "close", "open", "close"}));

        open(db);
        db.ExcuteSql("BEGIN EXCLUSIVE");
        calls.clear();
    }
    EXPECT_EQ(calls, Lines{}) << "the destructor runs the base's own hook";
    CommonSqliteDb next(1);
    open(next);
    EXPECT_TRUE(next.ExcuteSql("BEGIN EXCLUSIVE")) << "the destructor has closed the connection";
}

TEST_F(PlainConnection, AFailedOpenKeepsAHandleOnWhichEverythingFails)
{
    std::filesystem::create_directory(path(L"folder"));
    const std::string reason = "unable to open database file";
    Lines calls;
    HookedDb db(calls);
    EXPECT_FALSE(db.OpenUtf8Path(utf8(L"folder").c_str()));
    EXPECT_TRUE(db.IsOpen());
    EXPECT_EQ(calls, Lines{});
    EXPECT_FALSE(db.ExcuteSql("SELECT 1"));
    EXPECT_FALSE(db.ExcuteMultiSql({"SELECT 1"}));
    EXPECT_EQ(texts(db, "SELECT 1"), std::pair(false, Lines{}));
    EXPECT_EQ(db.QueryTotalCount("SELECT 1", 9), 9);
    EXPECT_EQ(logged(),
              (Lines{sqliteFailed("open database", 14, reason), sqliteFailed("nullTitle", 21, reason),
                     sqliteFailed("nullTitle", 21, reason), sqliteFailed("nullTitle", 21, reason),
                     sqliteFailed("nullTitle", 21, reason)}));
    open(db);
    EXPECT_EQ(db.QueryTotalCount("SELECT 1", 9), 1);
}

TEST_F(PlainConnection, WithoutAConnectionOnlyTheLogTells)
{
    CommonSqliteDb db;
    EXPECT_FALSE(db.ExcuteSql(nullptr));
    EXPECT_FALSE(db.QuerySqlResult(nullptr, {}, 0));
    EXPECT_TRUE(db.ExcuteMultiSql({}));
    EXPECT_EQ(logged(), Lines{});
    EXPECT_FALSE(db.ExcuteSql("SELECT 1"));
    EXPECT_FALSE(db.ExcuteMultiSql({"SELECT 1"}));
    EXPECT_EQ(texts(db, "SELECT 1"), std::pair(false, Lines{}));
    EXPECT_EQ(db.QueryTotalCount("SELECT 1", 9), 9);
    EXPECT_EQ(
        logged(),
        (Lines{notOpen("ExcuteSql"), notOpen("ExcuteMultiSql"), notOpen("QuerySqlResult"), notOpen("QuerySqlResult")}));
}

TEST_F(PlainConnection, TextIsRunWhole)
{
    CommonSqliteDb db;
    open(db);
    EXPECT_FALSE(db.ExcuteSql(nullptr));
    EXPECT_TRUE(db.ExcuteSql(""));
    EXPECT_TRUE(db.ExcuteSql("CREATE TABLE t(a); INSERT INTO t VALUES(1); INSERT INTO t VALUES(2)"));
    EXPECT_EQ(db.QueryTotalCount("SELECT count(*) FROM t", -1), 2);
    EXPECT_FALSE(db.ExcuteSql("DELETE FROM t; DELETE FROM \"%s%n\"; INSERT INTO t VALUES(3)"));
    EXPECT_EQ(logged(), Lines{sqliteFailed("no such table: %s%n", 1, "no such table: %s%n")});
    EXPECT_EQ(db.QueryTotalCount("SELECT count(*) FROM t", -1), 0);
}

TEST_F(PlainConnection, ABatchIsOneTransactionThatFailuresDoNotEnd)
{
    const auto failed = [](const std::string& text) { return sqliteFailed(text, 1, text); };
    const std::string noTable = "no such table: nowhere";
    const std::string begun = "cannot start a transaction within a transaction";
    const std::string ended = "cannot commit - no transaction is active";
    const auto totals = [](const char* text) { return plainLine("CommonSqliteDb::ExcuteMultiSql", text); };
    struct Case {
        std::list<std::string> statements;
        bool result;
        Lines log;
        int rows;
    };
    const std::string one = "INSERT INTO t VALUES(1)";
    const std::string bad = "INSERT INTO nowhere VALUES(1)";
    const Case cases[] = {
        {{}, true, {}, 0},
        {{one, one + ";" + one}, true, {}, 3},
        {{one, bad, one}, true, {failed(noTable), totals("total[3] error[1]")}, 2},
        {{bad, bad}, true, {failed(noTable), failed(noTable), totals("total[2] error[2]")}, 0},
        {{"BEGIN", one}, true, {failed(begun), totals("total[2] error[1]")}, 1},
        {{one, "COMMIT", bad}, false, {failed(noTable), failed(ended)}, 1},
    };
    for (const auto& [statements, result, log, rows] : cases) {
        SCOPED_TRACE(testing::PrintToString(statements));
        CommonSqliteDb db;
        open(db);
        db.ExcuteSql("DROP TABLE IF EXISTS t; CREATE TABLE t(a)");
        EXPECT_EQ(db.ExcuteMultiSql(statements), result);
        EXPECT_EQ(logged(), log);
        EXPECT_EQ(SqliteFile(path(L"plain.dat")).value("SELECT count(*) FROM t"), std::to_string(rows)) << "committed";
    }
    Lines calls;
    HookedDb db(calls);
    open(db);
    EXPECT_TRUE(db.ExcuteMultiSql({one, one}));
    EXPECT_EQ(db.trace.take(), (Lines{"0:BEGIN", "0:" + one, "0:" + one, "0:COMMIT"}));
    db.ExcuteSql("BEGIN");
    EXPECT_FALSE(db.ExcuteMultiSql({one}));
    EXPECT_EQ(logged(), Lines{failed(begun)});
    EXPECT_TRUE(db.ExcuteSql("ROLLBACK")) << "the caller's transaction is still there";
}

TEST_F(PlainConnection, AQueryHandsOverEachRow)
{
    CommonSqliteDb db;
    open(db);
    db.ExcuteSql("CREATE TABLE t(a); INSERT INTO t VALUES(1), (2), (-9223372036854775807 - 1), (4)");
    struct Case {
        const char* sql;
        bool result;
        Lines rows;
        Lines log;
    };
    const Case cases[] = {
        {"SELECT a FROM t ORDER BY rowid", true, {"1", "2", "-9223372036854775808", "4"}, {}},
        {"SELECT a FROM t WHERE a = 3", true, {}, {}},
        // A step that fails ends the rows in silence.
        {"SELECT abs(a) FROM t ORDER BY rowid", true, {"1", "2"}, {}},
        {"SELECT 1; SELECT 2", true, {"1"}, {}},
        {nullptr, false, {}, {}},
        {"", false, {}, {}},
        {"-- nothing", false, {}, {}},
        {"SELEC 1", false, {}, {sqliteFailed(" 1", 1, "near \"SELEC\": syntax error")}},
        {"SELECT a FROM nowhere", false, {}, {sqliteFailed("", 1, "no such table: nowhere")}},
        {"SELECT a FROM t WHERE a = 'it's'", false, {}, {sqliteFailed("'", 1, "near \"s\": syntax error")}},
    };
    for (const auto& [sql, result, rows, log] : cases) {
        SCOPED_TRACE(sql == nullptr ? "null" : sql);
        EXPECT_EQ(texts(db, sql), std::pair(result, rows));
        EXPECT_EQ(logged(), log);
    }

    const std::pair<const char*, int64> counts[] = {
        {"SELECT a FROM t WHERE a = 3", 9},
        {"SELECT a FROM t ORDER BY rowid", 4},
        {"SELECT 1099511627776, 5", 1LL << 40},
        {"SELECT '12 rows'", 12},
        {"SELECT NULL", 0},
        {nullptr, 9},
    };
    for (const auto& [sql, expected] : counts) {
        EXPECT_EQ(db.QueryTotalCount(sql, 9), expected) << (sql == nullptr ? "null" : sql);
    }
}

TEST_F(PlainConnection, AQueryEndsItsStatementHoweverTheCallbackEnds)
{
    struct Case {
        const char* name;
        std::function<void(sqlite3_stmt*&, int64)> onRow;
        enum Outcome { Thrown, EmptyCall, Done } outcome;
    };
    const Case cases[] = {
        {"throws", [](sqlite3_stmt*&, int64) { throw std::runtime_error("no more"); }, Case::Thrown},
        {"is empty", {}, Case::EmptyCall},
        {"ends the statement itself",
         [](sqlite3_stmt*& statement, int64) {
             sqlite3_finalize(statement);
             statement = nullptr;
         },
         Case::Done},
    };
    for (const auto& [name, onRow, outcome] : cases) {
        SCOPED_TRACE(name);
        CommonSqliteDb db;
        open(db);
        Case::Outcome seen = Case::Done;
        try {
            EXPECT_TRUE(db.QuerySqlResult("SELECT 1 UNION SELECT 2", onRow, 0));
        } catch (const std::bad_function_call&) {
            seen = Case::EmptyCall;
        } catch (const std::runtime_error&) {
            seen = Case::Thrown;
        }
        EXPECT_EQ(seen, outcome);
        EXPECT_TRUE(db.QuerySqlResult("SELECT 1 WHERE 0", onRow, 0)) << "no row, no call";
        db.Close();
        EXPECT_FALSE(db.IsOpen()) << "no statement is left";
    }
}

TEST_F(PlainConnection, AConnectionInUseCannotBeClosed)
{
    const std::size_t kept = DatabaseService::ListKeptConnections().size();
    const std::string line = sqliteFailed("close db", 5, unfinished);
    CommonSqliteDb db;
    open(db);
    EXPECT_TRUE(db.QuerySqlResult(
        "SELECT 1",
        [&](sqlite3_stmt*&, int64) {
            db.Close();
            EXPECT_TRUE(db.IsOpen());
            EXPECT_FALSE(db.OpenUtf8Path(nullptr));
            EXPECT_TRUE(db.ExcuteSql("CREATE TABLE t(a)"));
        },
        0));
    EXPECT_EQ(logged(), (Lines{line, line}));
    db.Close();
    EXPECT_FALSE(db.IsOpen());
    EXPECT_EQ(DatabaseService::ListKeptConnections().size(), kept);

    // The next open takes the object's place from a connection that cannot be closed.
    open(db);
    EXPECT_TRUE(db.QuerySqlResult(
        "SELECT 1", [&](sqlite3_stmt*&, int64) { open(db, L"second.dat"); }, 0));
    EXPECT_EQ(logged(), Lines{line});
    EXPECT_EQ(db.QueryTotalCount("SELECT count(*) FROM sqlite_master", -1), 0) << "of the second file";
    const auto all = DatabaseService::ListKeptConnections();
    ASSERT_EQ(all.size(), kept + 1);
    EXPECT_EQ(all.back().database, wide(L"plain.dat"));
}

TEST_F(PlainConnection, CopiesShareTheConnection)
{
    CommonSqliteDb first(700);
    open(first);
    {
        CommonSqliteDb copy(first);
        EXPECT_TRUE(copy.IsOpen());
        EXPECT_TRUE(copy.ExcuteSql("CREATE TEMP TABLE shared(a)"));
        EXPECT_TRUE(first.ExcuteSql("INSERT INTO shared VALUES(1)"));
    }
    EXPECT_FALSE(first.IsOpen()) << "the copy's destructor closes it for both";
    first.Close();
    EXPECT_FALSE(first.ExcuteSql("SELECT 1"));
    EXPECT_EQ(logged(), Lines{notOpen("ExcuteSql")});

    CommonSqliteDb copy(first);
    open(copy, L"second.dat");
    EXPECT_EQ(busyTimeout(copy), 700);
    EXPECT_FALSE(first.IsOpen()) << "a copy that opens has a connection of its own";
    open(first);
    CommonSqliteDb assigned;
    assigned = first;
    open(assigned, L"second.dat");
    EXPECT_FALSE(first.IsOpen()) << "opening closes the shared one first";
    EXPECT_TRUE(copy.IsOpen());
    const std::size_t kept = DatabaseService::ListKeptConnections().size();
    assigned = copy;
    EXPECT_EQ(DatabaseService::ListKeptConnections().size(), kept + 1) << "what was assigned over stays open";
}

TEST_F(PlainConnection, LinesCarryTheirSource)
{
    const auto sink = std::make_shared<Logger::CaptureSink>();
    Logger::CloudLogger::GetInstance()->AddSink(sink);
    CommonSqliteDb db;
    db.ExcuteSql("SELECT 1");
    open(db);
    db.ExcuteMultiSql({"bad"});
    Logger::CloudLogger::GetInstance()->RemoveSink(sink);
    m_log.take();
    ASSERT_EQ(sink->Entries().size(), 3U);
    for (const Logger::LogEntry& entry : sink->Entries()) {
        SCOPED_TRACE(entry.message);
        EXPECT_EQ(entry.module, 31);
        EXPECT_EQ(entry.severity, 0x40001);
        EXPECT_EQ(entry.tag, "unknow");
        EXPECT_EQ(entry.file, "commonsqlitedb");
        EXPECT_GT(entry.line, 0);
        EXPECT_FALSE(entry.flag);
    }
}
