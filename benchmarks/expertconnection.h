#pragma once

#include <filesystem>
#include <map>
#include <sqlite3.h>
#include <string>
#include <utility>

namespace benchmarks {

/// Registers the library's own comparison of names on a connection. SQLite's code.
int addNameCompare(sqlite3* db);

/// A store's file under somebody who knows the C interface of SQLite well: the same opens, transactions and commits as
/// the library, statements prepared with the legacy `sqlite3_prepare`, too. What he leaves out is what the library
/// promises beyond that: other storage classes than the declared ones, ill-formed text, lines in a log.
///
/// With `Kind::Kept` he opens once and keeps each statement that he has prepared.
///
/// Failures throw `std::runtime_error`.
class ExpertConnection {
public:
    enum class Kind { PerCall, Kept };
    using AfterOpen = int (*)(sqlite3*);

    explicit ExpertConnection(Kind kind, AfterOpen afterOpen = nullptr);
    ExpertConnection(const ExpertConnection&) = delete;
    ExpertConnection& operator=(const ExpertConnection&) = delete;
    ~ExpertConnection();

    bool isKept() const { return m_kind == Kind::Kept; }

    void open(const std::filesystem::path& file);
    void close();

    void execute(const char* sql);

    /// `begin`, then `body` with the prepared statement, then a commit.
    template <class Body> void transaction(const char* begin, const std::string& sql, Body body)
    {
        if (!isKept()) {
            connect();
        }
        sqlite3_stmt* const stmt = statement(sql);
        execute(begin);
        body(stmt);
        if (isKept()) {
            check(sqlite3_reset(stmt));
        } else {
            finalize();
        }
        execute("COMMIT;");
        if (!isKept()) {
            disconnect();
        }
    }

    /// For a kept connection: prepares any text for this one time, as the library's lists do it.
    template <class Body> void once(const std::string& sql, Body body)
    {
        sqlite3_stmt* stmt = nullptr;
        check(sqlite3_prepare_v2(m_db, sql.data(), static_cast<int>(sql.size()), &stmt, nullptr));
        body(stmt);
        check(sqlite3_finalize(stmt));
    }

    /// Runs `stmt` once for each record; `bindAll(stmt, record)` says whether all its values were taken.
    template <class Records, class BindAll> void runForEach(sqlite3_stmt* stmt, const Records& records, BindAll bindAll)
    {
        for (const auto& record : records) {
            check(sqlite3_reset(stmt));
            require(bindAll(stmt, record));
            require(sqlite3_step(stmt) == SQLITE_DONE);
        }
    }

    template <class Row> void forEachRow(sqlite3_stmt* stmt, Row row)
    {
        int code = sqlite3_step(stmt);
        for (; code == SQLITE_ROW; code = sqlite3_step(stmt)) {
            row(stmt);
        }
        require(code == SQLITE_DONE);
    }

    void check(int code) const { require(code == SQLITE_OK); }
    void require(bool good) const;

private:
    void connect();
    void disconnect();
    void finalize();
    sqlite3_stmt* statement(const std::string& sql);

    const Kind m_kind;
    const AfterOpen m_afterOpen;
    std::string m_path;
    sqlite3* m_db = nullptr;
    std::map<const std::string*, sqlite3_stmt*> m_statements; // by the address of their text
};

} // namespace benchmarks
