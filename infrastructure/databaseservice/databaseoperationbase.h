#pragma once

#include "databaseservice/databasebindparameter.h"
#include "databaseservice/databasequeryresult.h"
#include "databaseservice/export.h"

#include <list>
#include <string>

struct sqlite3;
struct sqlite3_stmt;

namespace DatabaseService {

struct UnitOfWork;

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
    /// Takes the file's name below the user's folder.
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
    /// Ends a statement of `PrepareSql`. True for null.
    bool FinalizeStatment(sqlite3_stmt* stmt);

    ///@{
    /// Deletes the rows and the list. Always false; nobody reads the result.
    bool FreeQueryResult(std::list<DatabaseQueryResult*>* rows);
    bool FreeTable(std::list<DatabaseQueryResult*>* rows);
    ///@}

    ///@{
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
    ///@}

    ///@{
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
    ///@}

private:
    class DATABASESERVICE_NO_EXPORT Worker;

    // The library's own operations come in here; the headers for that are not installed.
    friend bool run(DatabaseOperationBase& store, const UnitOfWork& work);

    std::wstring m_databaseName;
};

} // namespace DatabaseService
