#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace dbservice {

/// The names of a file's tables, as they were made one after the other, without SQLite's own.
inline constexpr const char* namesOfTables =
    "SELECT name FROM sqlite_master WHERE type = 'table' AND name NOT LIKE 'sqlite!_%' ESCAPE '!' ORDER BY rowid";

/// A connection of the tool's own to one SQLite file, for what the library has no function for. It knows the order of
/// names. Locks are waited for as everywhere in the tool (`StoreWatch`).
///
/// Failure: a `Failure` "cannot VERB FILE: ..." with SQLite's reason.
class Database {
public:
    enum class Access {
        Read,  ///< the file has to be there; nothing beside it is laid down unless it has a journal
        Write, ///< the file has to be there
        Create ///< the file may not be there
    };

    /// Good until the next row.
    class Row {
    public:
        explicit Row(sqlite3_stmt* statement) : m_statement(statement) { }

        int size() const;
        std::string name(int column) const;
        /// One of SQLITE_INTEGER, SQLITE_FLOAT, SQLITE_TEXT, SQLITE_BLOB and SQLITE_NULL.
        int type(int column) const;
        bool isNull(int column) const;
        std::int64_t number(int column) const;
        double real(int column) const;
        /// The bytes of a text or a blob; of a number as SQLite writes it, and of NULL none.
        std::string_view text(int column) const;

    private:
        sqlite3_stmt* m_statement;
    };

    using Value = std::variant<std::monostate, std::int64_t, double, std::string>;
    using OnRow = std::function<void(const Row&)>;

    /// `called` is what the person knows the file as, where that is not its name.
    explicit Database(const std::filesystem::path& file, Access access = Access::Read, const std::string& called = {});

    sqlite3* handle() const { return m_db.get(); }
    /// The file as the person knows it.
    const std::string& called() const { return m_called; }

    /// Runs one statement, with the values for its question marks.
    void run(std::string_view statement, const std::vector<Value>& values = {}, const OnRow& onRow = {});
    /// The first cell of the first row, 0 without one.
    std::int64_t number(std::string_view statement, const std::vector<Value>& values = {});
    /// The first cells of all rows.
    std::vector<std::string> texts(std::string_view statement, const std::vector<Value>& values = {});

    std::vector<std::string> tables();                          ///< `namesOfTables`
    std::vector<std::string> columns(const std::string& table); ///< without those that SQLite computes

    /// Columns in quotes, as a statement selects them; `*` where there are none.
    static std::string list(const std::vector<std::string>& columns);

    /// Throws the `Failure` with what SQLite said last.
    [[noreturn]] void fail(const char* verb) const;

private:
    struct Close {
        void operator()(sqlite3* db) const;
    };
    std::string m_called;
    std::unique_ptr<sqlite3, Close> m_db;
};

} // namespace dbservice
