#pragma once

#include "databaseservice/export.h"

#include <string>
#include <vector>

struct sqlite3;

namespace DatabaseService {

/// Lays down the tables of the main store in an older shape: ids without AUTOINCREMENT, changes of files without
/// `imageRotate`, settings whose value must not be NULL. Nothing in this library uses it.
///
/// Threads: one at a time. A locked file is waited for up to 0.4 seconds per statement.
/// Ownership: the one instance belongs to the process; its connection lives for one call.
/// Failure: false, and lines in the log. No exception leaves it.
class DATABASESERVICE_EXPORT MainDBSQLProvider {
public:
    /// The process has one.
    static MainDBSQLProvider& GetInstance();

    MainDBSQLProvider(const MainDBSQLProvider&) = delete;
    MainDBSQLProvider& operator=(const MainDBSQLProvider&) = delete;

    /// Creates what is missing in the file, which must exist; `path` is the whole path, in UTF-8. False when a
    /// statement failed; the others are committed, and whether the commit succeeded does not count.
    bool CreateTables(std::string& path);

private:
    MainDBSQLProvider() = default;
    ~MainDBSQLProvider() = default;

    DATABASESERVICE_NO_EXPORT bool ExecuteMulitNoQuerySQL(const std::vector<std::string>& statements);
    DATABASESERVICE_NO_EXPORT bool ConnectDb();
    DATABASESERVICE_NO_EXPORT bool BeginTransaction();
    DATABASESERVICE_NO_EXPORT bool CommitTransaction();
    DATABASESERVICE_NO_EXPORT bool CloseDb();
    DATABASESERVICE_NO_EXPORT int ExecuteNoQuerySqlCmd(const std::string& sql);
    DATABASESERVICE_NO_EXPORT std::wstring GetDBPath(const std::string& path);

    std::string m_path;
    sqlite3* m_db = nullptr;
};

} // namespace DatabaseService
