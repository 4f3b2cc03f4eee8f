#include "stores/nameindex.h"

#include "databaseservice/driverdbprovider.h"
#include "platform/namecompare.h"
#include "stores/database.h"
#include "stores/nameindexmark.h"
#include "stores/rowwalk.h"

#include <cstdint>
#include <optional>
#include <sqlite3.h>
#include <string>
#include <string_view>

namespace dbservice {

namespace {

constexpr const char* stored = "SELECT COUNT(*) FROM pragma_index_xinfo('nameIndex') "
                               "WHERE seqno = 0 AND name = 'name' AND coll = 'NameCompare' AND \"desc\" = 0";

// The rows come in the order of the index, and behind them how many the table has. In one statement, since another
// program may be writing.
constexpr const char* inOrder = "SELECT name, rowid FROM DriveDataTable INDEXED BY nameIndex "
                                "UNION ALL SELECT NULL, COUNT(*) FROM DriveDataTable NOT INDEXED";

/// Nothing on failure.
std::optional<std::int64_t> numberOf(const char* query)
{
    std::int64_t number = 0;
    const bool whole = RowWalk().run(query, [&](sqlite3_stmt* row) { number = sqlite3_column_int64(row, 0); });
    return whole ? std::optional(number) : std::nullopt;
}

/// Takes the rows of `inOrder`, and tells whether the index has all of them and each name is in its place behind the
/// one before it in the order of this build. Equal names stand in the order of their row numbers.
class OrderCheck {
public:
    void add(bool isText, std::string_view name, std::int64_t row)
    {
        ++m_rows;
        m_number = row;
        if (isText && m_comparable) {
            const int order = platform::compareNames(m_before, name);
            m_agrees = m_agrees && (order < 0 || (order == 0 && m_beforeRow < row));
        }
        m_comparable = isText; // the order of what is no text is the same in every build
        if (isText) {
            m_before = name;
            m_beforeRow = row;
        }
    }

    NameIndex result() const { return m_agrees && m_rows == m_number ? NameIndex::Agrees : NameIndex::Disagrees; }

private:
    std::int64_t m_rows = -1; // the last one is the table's number
    std::int64_t m_number = 0;
    bool m_agrees = true;
    std::string m_before;
    std::int64_t m_beforeRow = 0;
    bool m_comparable = false;
};

} // namespace

NameIndex examineNameIndex()
{
    if (numberOf(stored) == 0) {
        return NameIndex::Absent;
    }
    OrderCheck check;
    const bool whole = RowWalk().run(inOrder, [&](sqlite3_stmt* row) {
        check.add(sqlite3_column_type(row, 0) == SQLITE_TEXT, textAt(row, 0), sqlite3_column_int64(row, 1));
    });
    return whole ? check.result() : NameIndex::Disagrees;
}

NameIndex examineNameIndex(Database& database)
{
    if (database.number(stored) == 0) {
        return NameIndex::Absent;
    }
    OrderCheck check;
    database.run(inOrder, {},
                 [&](const Database::Row& row) { check.add(row.type(0) == SQLITE_TEXT, row.text(0), row.number(1)); });
    return check.result();
}

NameIndex examineNameIndexUnlessMarked(const std::filesystem::path& file)
{
    const NameIndexMark mark(file);
    const std::optional<NameIndexMark::State> state = mark.state(); // as it was before the look
    if (state && mark.isFor(*state)) {
        return NameIndex::Agrees;
    }
    const NameIndex found = examineNameIndex();
    if (state && found == NameIndex::Agrees) {
        mark.set(*state);
    }
    return found;
}

void rebuildNameIndex(DatabaseService::DriverDBProvider& drive)
{
    drive.ExecuteSQL("REINDEX nameIndex");
}

} // namespace dbservice
