#include "stores/nameindex.h"

#include "databaseservice/driverdbprovider.h"
#include "platform/namecompare.h"
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

/// Whether the index has all rows, and each name is in its place behind the one before it in the order of this build.
/// Equal names stand in the order of their row numbers.
bool isInOrder()
{
    std::int64_t rows = -1; // the last one is the table's number
    std::int64_t number = 0;
    bool agrees = true;
    std::string before;
    std::int64_t beforeRow = 0;
    bool comparable = false;
    const bool whole = RowWalk().run(inOrder, [&](sqlite3_stmt* row) {
        ++rows;
        number = sqlite3_column_int64(row, 1);
        if (sqlite3_column_type(row, 0) != SQLITE_TEXT) {
            comparable = false; // the order of what is no text is the same in every build
            return;
        }
        const std::string_view name = textAt(row, 0);
        if (comparable) {
            const int order = platform::compareNames(before, name);
            agrees = agrees && (order < 0 || (order == 0 && beforeRow < number));
        }
        before = name;
        beforeRow = number;
        comparable = true;
    });
    return whole && agrees && rows == number;
}

} // namespace

NameIndex examineNameIndex()
{
    if (numberOf(stored) == 0) {
        return NameIndex::Absent;
    }
    return isInOrder() ? NameIndex::Agrees : NameIndex::Disagrees;
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
