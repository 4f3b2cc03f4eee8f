#include "stores/rowwalk.h"

#include "platform/paths.h"
#include "platform/text.h"

#include <memory>
#include <sqlite3.h>

namespace dbservice {

RowWalk::RowWalk(const std::filesystem::path& fileName)
{
    SetDatabasePath(platform::toWide(platform::toUtf8(fileName)));
}

bool RowWalk::run(const std::string& query, const OnRow& onRow)
{
    const auto close = [this](sqlite3* open) { CloseDatabase(open); };
    const std::unique_ptr<sqlite3, decltype(close)> connection(GetDbConnection(), close);
    if (connection == nullptr) {
        return false;
    }
    // A step that failed fails once more here, with a line in the log.
    const auto finalize = [this](sqlite3_stmt* prepared) { FinalizeStatment(prepared); };
    const std::unique_ptr<sqlite3_stmt, decltype(finalize)> statement(PrepareSql(connection.get(), query), finalize);
    if (statement == nullptr) {
        return false;
    }
    int code = sqlite3_step(statement.get());
    for (; code == SQLITE_ROW; code = sqlite3_step(statement.get())) {
        onRow(statement.get());
    }
    return code == SQLITE_DONE;
}

std::string_view textAt(sqlite3_stmt* row, int column)
{
    const auto* const text = reinterpret_cast<const char*>(sqlite3_column_text(row, column));
    return text == nullptr ? std::string_view()
                           : std::string_view(text, static_cast<std::size_t>(sqlite3_column_bytes(row, column)));
}

} // namespace dbservice
