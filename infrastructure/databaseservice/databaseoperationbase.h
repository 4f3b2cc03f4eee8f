#pragma once

#include "databaseservice/databasebindparameter.h"
#include "databaseservice/databasequeryresult.h"
#include "databaseservice/export.h"

#include <list>
#include <string>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace DatabaseService {

class ElementSource;
class RowSink;
template <class Record> class ColumnList;
template <class Record> struct Statement;

/// The engine under every store: turns one call into one unit of work on the store's file, which is open, prepare,
/// begin, bind and step, read, finalize, commit, close. It knows the file's name below the user's database folder
/// (`GlobalParamWrapper::GetUserDataBaseFolder`, asked at every open) and holds nothing else.
///
/// Threads: any thread may call any provider at any time. Each call has a connection of its own unless it is handed
/// one, and a connection or statement that is handed in must stay on the calling thread for the call. Threads and
/// processes wait for each other at SQLite's file locks: 10 milliseconds at a time, without limit and without a line
/// in the log.
/// Ownership: see `Query` for result lists and `GetDbConnection` for connections.
/// Failure: a result of false and lines in the client's log. A step that fails is a line in the log and a lost row;
/// the rest of the batch runs and commits, and the call returns true. Nothing is ever rolled back, except by closing
/// a connection in mid-transaction. No database failure throws.
///
/// Providers must not be deleted through a pointer to this class: its destructor is not virtual.
class DATABASESERVICE_EXPORT DatabaseOperationBase {
public:
    DatabaseOperationBase(const DatabaseOperationBase&) = default;
    DatabaseOperationBase(DatabaseOperationBase&&) = default;
    DatabaseOperationBase& operator=(const DatabaseOperationBase&) = default;
    DatabaseOperationBase& operator=(DatabaseOperationBase&&) = default;
    ~DatabaseOperationBase() = default;

    /// Creates the provider's schema.
    virtual bool InitDatabase() = 0;

    /// Takes another file name below the user's folder, from the next open on. Always true.
    bool SetDatabasePath(const std::wstring& name);

protected:
    DatabaseOperationBase() = default;
    explicit DatabaseOperationBase(const std::wstring& name);

    /// Called after every successful open: the place for what a connection needs, such as a collation.
    virtual void AfterOpen(sqlite3* db);
    /// Called before every close.
    virtual void BeforeClose(sqlite3* db);

    /// What every connection does while its file is locked: waits 10 milliseconds and tries again, without limit.
    static int BusyHandler(void* data, int count);

    /// Opens the store, creating the file when it is missing. The caller owns the connection and gives it back to
    /// `CloseDatabase`. Null when the open failed.
    sqlite3* GetDbConnection();
    /// True for null. On failure the connection stays open.
    bool CloseDatabase(sqlite3* db);
    /// Compiles the first statement of UTF-8 text. Null on failure, and for text that holds no statement.
    sqlite3_stmt* PrepareSql(sqlite3* db, std::string sql);
    bool FinalizeStatment(sqlite3_stmt* stmt);

    /// Deletes the rows and the list. Always false; nobody reads the result.
    bool FreeQueryResult(std::list<DatabaseQueryResult*>* rows);
    bool FreeTable(std::list<DatabaseQueryResult*>* rows);

    /// Runs a statement under "BEGIN IMMEDIATE;". Lists of bindings run the statement once per element, in one
    /// transaction, and move the elements' cursors; a single binding is copied first and stays as it is. An empty
    /// list begins and commits and runs nothing.
    ///
    /// A binding that cannot be bound ends the batch without a commit. On a connection of the caller's the
    /// transaction is then still open.
    ///
    /// The forms with a statement but no connection run their transaction on a second connection of their own, and
    /// the statement on the one that prepared it, where the transaction does not reach. A statement that writes
    /// waits there for the lock that the second connection holds, and the second connection's commit waits for a
    /// statement that still stands on a row, both without end: these forms are for statements that read and that one
    /// step brings to their end. A statement of the caller's is neither reset at the end nor finalized.
    bool Execute(const std::string& sql);
    bool Execute(const std::string& sql, std::list<DatabaseBindParameter>& binds);
    bool Execute(const std::string& sql, DatabaseBindParameter& bind);
    bool Execute(sqlite3_stmt* stmt);
    bool Execute(sqlite3_stmt* stmt, std::list<DatabaseBindParameter>& binds);
    bool Execute(sqlite3* db, const std::string& sql);
    bool Execute(sqlite3* db, const std::string& sql, std::list<DatabaseBindParameter>& binds);
    bool Execute(sqlite3* db, sqlite3_stmt* stmt);
    bool Execute(sqlite3* db, sqlite3_stmt* stmt, std::list<DatabaseBindParameter>& binds);

    /// Runs a statement under "BEGIN DEFERRED" and reads its rows.
    ///
    /// `rows` is set to a new list before anything else happens. It belongs to the caller, also when the call
    /// returns false, and goes back through `FreeQueryResult` exactly once. A step that fails on the way ends the
    /// list where it stands.
    bool Query(const std::string& sql, std::list<DatabaseQueryResult*>*& rows);
    bool Query(const std::string& sql, DatabaseBindParameter& bind, std::list<DatabaseQueryResult*>*& rows);
    bool Query(sqlite3_stmt* stmt, std::list<DatabaseQueryResult*>*& rows);
    bool Query(sqlite3_stmt* stmt, DatabaseBindParameter& bind, std::list<DatabaseQueryResult*>*& rows);
    bool Query(sqlite3* db, const std::string& sql, std::list<DatabaseQueryResult*>*& rows);
    bool Query(sqlite3* db, const std::string& sql, DatabaseBindParameter& bind,
               std::list<DatabaseQueryResult*>*& rows);
    bool Query(sqlite3* db, sqlite3_stmt* stmt, std::list<DatabaseQueryResult*>*& rows);
    bool Query(sqlite3* db, sqlite3_stmt* stmt, DatabaseBindParameter& bind, std::list<DatabaseQueryResult*>*& rows);

    /// The one worker behind every overload above, open to the library's own providers: values come from `elements`
    /// and rows go to `rows`, either of which may be null. A null `db` or `stmt` means one of the call's own.
    /// With `rows` the call is a query. What the log shows and the file holds is the same whoever feeds it.
    bool Execute(sqlite3* db, sqlite3_stmt* stmt, const std::string& sql, ElementSource* elements, RowSink* rows);

    /// For the library's own providers: a batch straight from its records, and rows straight into records, which are
    /// appended. `elements` may be null.
    template <class Record, class Element>
    bool WriteRecords(const Statement<Record>& statement, const std::vector<Element>& records);
    template <class Record, class Element>
    bool ReadRecords(const std::string& sql, ElementSource* elements, const ColumnList<Record>& columns,
                     std::vector<Element>& records);
    /// The first cell of the first row as a number; 0 without one.
    int64 ReadNumber(const std::string& sql, ElementSource* elements = nullptr);

private:
    enum class Opened { Yes, Failed, NoHandle };

    Opened OpenDatabase(sqlite3*& db, int flags);
    bool BeginReadTransaction(sqlite3* db);
    bool BeginReadWriteTransaction(sqlite3* db);
    bool CommitTransaction(sqlite3* db);
    bool ExecuteSql(sqlite3* db, const std::string& sql);
    bool BindParameter(sqlite3* db, ElementSource& element, sqlite3_stmt* stmt, bool ownStatement);
    static bool ResetStatment(sqlite3_stmt* stmt);
    static int StepStatment(sqlite3_stmt* stmt);
    static void GetQueryResult(sqlite3_stmt* stmt, RowSink& rows, int code);
    bool QueryRows(sqlite3* db, sqlite3_stmt* stmt, const std::string& sql, const DatabaseBindParameter* bind,
                   std::list<DatabaseQueryResult*>*& rows);

    std::wstring m_databaseName;
};

} // namespace DatabaseService
