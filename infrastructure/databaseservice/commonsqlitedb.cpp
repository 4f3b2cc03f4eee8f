#include "databaseservice/commonsqlitedb.h"

#include "databaseservice/engine/calltimer.h"
#include "databaseservice/engine/keepconnection.h"
#include "databaseservice/handover/addresses.h"
#include "databaseservice/korvlog.h"
#include "platform/text.h"

#include <sqlite3.h>

namespace DatabaseService {

namespace {

constexpr int defaultTimeout = 30000;

constexpr KorvLog log{31, 0x40001, "commonsqlitedb"};

struct FreeText {
    void operator()(char* text) const { sqlite3_free(text); }
};

// Runs a text and keeps SQLite's message, which is null unless something failed.
class Execution {
public:
    Execution(sqlite3* db, const char* sql)
    {
        char* message = nullptr;
        m_code = sqlite3_exec(db, sql, nullptr, nullptr, &message);
        m_message.reset(message);
    }

    bool succeeded() const { return m_code == SQLITE_OK; }
    int code() const { return m_code; }
    const char* message() const { return m_message.get(); }

private:
    int m_code = SQLITE_OK;
    std::unique_ptr<char, FreeText> m_message;
};

// Ends a statement that a callback may have ended and nulled before.
class StatementEnd {
public:
    explicit StatementEnd(sqlite3_stmt*& statement) : m_statement(statement) { }
    StatementEnd(const StatementEnd&) = delete;
    StatementEnd& operator=(const StatementEnd&) = delete;
    ~StatementEnd() { sqlite3_finalize(m_statement); }

private:
    sqlite3_stmt*& m_statement;
};

} // namespace

// What copies share. The handle is null while closed. One that is open when its last owner goes stays open, as it
// could not be closed or another was assigned over it.
struct CommonSqliteDb::Connection {
    Connection() = default;
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    ~Connection()
    {
        if (handle != nullptr) {
            keepConnection(handle, path, "was left open by its last owner");
        }
    }

    sqlite3* handle = nullptr;
    std::string path;
};

CommonSqliteDb::CommonSqliteDb() : CommonSqliteDb(defaultTimeout) { }

CommonSqliteDb::CommonSqliteDb(int timeout)
    : m_connection(std::make_shared<Connection>()),
      m_busyTimeout(timeout <= 0 ? defaultTimeout : timeout)
{
}

CommonSqliteDb::~CommonSqliteDb()
{
    Close();
}

sqlite3* CommonSqliteDb::handle() const
{
    return m_connection->handle;
}

void CommonSqliteDb::OpenAfter(sqlite3* /*db*/) { }

void CommonSqliteDb::CloseBefore(sqlite3* /*db*/) { }

bool CommonSqliteDb::OpenUtf8Path(const char* path)
{
    Close();
    if (path == nullptr) {
        return false;
    }
    m_connection = std::make_shared<Connection>();
    m_connection->path = path;
    const int code = sqlite3_open(path, &m_connection->handle);
    if (code != SQLITE_OK) {
        LogoutDbError("open database", code);
        return false;
    }
    sqlite3_busy_timeout(handle(), m_busyTimeout);
    OpenAfter(handle());
    return true;
}

bool CommonSqliteDb::OpenUnicodePath(const wchar_t* path)
{
    return path != nullptr && OpenUtf8Path(platform::toUtf8(std::wstring_view(path)).c_str());
}

bool CommonSqliteDb::OpenAnsiPath(const char* path)
{
    return path != nullptr && OpenUnicodePath(platform::systemTextToWide(path).c_str());
}

bool CommonSqliteDb::IsOpen() const
{
    return handle() != nullptr;
}

void CommonSqliteDb::Close()
{
    if (handle() == nullptr) {
        return;
    }
    CloseBefore(handle()); // NOLINT(clang-analyzer-optin.cplusplus.VirtualCall): as said of the destructor
    if (const int code = sqlite3_close(handle()); code != SQLITE_OK) {
        LogoutDbError("close db", code);
        return;
    }
    m_connection->handle = nullptr;
}

void CommonSqliteDb::setBusyTimeout(int timeout)
{
    m_busyTimeout = timeout;
    if (handle() != nullptr) {
        sqlite3_busy_timeout(handle(), timeout);
    }
}

bool CommonSqliteDb::ExcuteSql(const char* sql) const
{
    constexpr const char* function = "CommonSqliteDb::ExcuteSql";
    if (sql == nullptr) {
        return false;
    }
    if (handle() == nullptr) {
        log(__LINE__, function, "db not open, excute failed");
        return false;
    }
    CallTimer timer(m_connection->path, sql);
    timer.opened();
    const Execution execution(handle(), sql);
    if (!execution.succeeded()) {
        LogoutDbError(execution.message(), execution.code());
    }
    return timer.ended(execution.succeeded());
}

bool CommonSqliteDb::ExcuteMultiSql(std::list<std::string> statements)
{
    constexpr const char* function = "CommonSqliteDb::ExcuteMultiSql";
    if (statements.empty()) {
        return true;
    }
    if (handle() == nullptr) {
        log(__LINE__, function, "db not open, excute failed");
        return false;
    }
    CallTimer timer(m_connection->path, statements.front());
    timer.opened();
    if (const Execution begin(handle(), "BEGIN"); !begin.succeeded()) {
        LogoutDbError(begin.message(), begin.code());
        return false;
    }
    unsigned failed = 0;
    for (const std::string& sql : statements) {
        if (const Execution execution(handle(), sql.c_str()); !execution.succeeded()) {
            LogoutDbError(execution.message(), execution.code());
            ++failed;
        }
    }
    timer.worked();
    if (const Execution commit(handle(), "COMMIT"); !commit.succeeded()) {
        LogoutDbError(commit.message(), commit.code());
        return false;
    }
    if (failed > 0) {
        log(__LINE__, function, "total[%u] error[%u]", static_cast<unsigned>(statements.size()), failed);
    }
    return timer.ended(true);
}

bool CommonSqliteDb::QuerySqlResult(const char* sql, std::function<void(sqlite3_stmt*&, int64)> onRow, int64 context)
{
    if (sql == nullptr) {
        return false;
    }
    if (handle() == nullptr) {
        log(__LINE__, "CommonSqliteDb::QuerySqlResult", "db not open, excute failed");
        return false;
    }
    CallTimer timer(m_connection->path, sql);
    sqlite3_stmt* statement = PreCompile(sql);
    timer.opened();
    if (statement == nullptr) {
        return false;
    }
    const StatementEnd end(statement);
    while (sqlite3_step(statement) == SQLITE_ROW) {
        timer.rowOut();
        onRow(statement, context);
    }
    return timer.ended(true);
}

int64 CommonSqliteDb::QueryTotalCount(const char* sql, int64 value)
{
    QuerySqlResult(
        sql, [this](sqlite3_stmt*& statement, int64 context) { GetQueryResult(statement, context); },
        addressOf(&value));
    return value;
}

void CommonSqliteDb::GetQueryResult(sqlite3_stmt*& statement, int64 context)
{
    if (auto* value = reinterpret_cast<int64*>(static_cast<std::intptr_t>(context)); value != nullptr) {
        *value = sqlite3_column_int64(statement, 0);
    }
}

sqlite3_stmt* CommonSqliteDb::PreCompile(const char* sql)
{
    if (sql == nullptr || handle() == nullptr) {
        return nullptr;
    }
    sqlite3_stmt* statement = nullptr;
    const char* tail = nullptr;
    if (const int code = sqlite3_prepare_v2(handle(), sql, -1, &statement, &tail); code != SQLITE_OK) {
        LogoutDbError(tail, code);
        return nullptr;
    }
    return statement;
}

void CommonSqliteDb::LogoutDbError(const char* title, int code) const
{
    constexpr const char* function = "CommonSqliteDb::LogoutDbError";
    if (handle() == nullptr) {
        return;
    }
    if (title == nullptr) {
        title = "nullTitle";
    }
    if (const char* description = sqlite3_errmsg(handle()); description != nullptr) {
        log(__LINE__, function, "%s failed, errcode=%d,errDesc[%s]", title, code, description);
    } else {
        log(__LINE__, function, "%s failed, errcode=%d", title, code);
    }
}

} // namespace DatabaseService
