#include "drive/hiddenrows.h"

#include "stores/cellvalue.h"
#include "stores/session.h"

#include <array>

namespace dbservice {

namespace {

/// What a row has to fulfil to be in the list of its folder; these are the library's own conditions. A NULL does not.
struct Condition {
    const char* column;
    const char* condition;
    const char* otherwise;
};

constexpr std::array conditions{
    Condition{"recycled", "recycled = 0", "is in the bin"},
    Condition{"directlyRecycled", "directlyRecycled = 0", "was put into the bin itself"},
    Condition{"softDelBatchId", "softDelBatchId = 0", "waits for the bin"},
    Condition{"moveBatchId", "moveBatchId = 0", "waits to move to another folder"},
    Condition{"needToDisplay", "needToDisplay = 0 OR needToDisplay = 1", "is not to be displayed"},
    Condition{"mimeType", "mimeType IS NOT NULL", "is neither a file nor a folder"},
};

} // namespace

HiddenRows hiddenRows(Session& session, const std::vector<std::string>& ids)
{
    std::string columns;
    for (const auto& [column, condition, otherwise] : conditions) {
        columns += std::string(", (") + condition + ") IS TRUE, " + column;
    }
    HiddenRows found;
    Database& database = session.driveAsItIs();
    for (const std::string& id : ids) {
        database.run("SELECT fileId" + columns + " FROM DriveDataTable WHERE fileId = ?", {id},
                     [&](const Database::Row& row) {
                         for (std::size_t i = 0; i < conditions.size(); ++i) {
                             const int fulfilled = 1 + 2 * static_cast<int>(i);
                             if (row.number(fulfilled) == 0) {
                                 const auto& [column, condition, otherwise] = conditions[i];
                                 found[id].push_back(std::string(otherwise) + " (" + column + " = " +
                                                     cellLiteral(row, fulfilled + 1) + ")");
                             }
                         }
                     });
    }
    return found;
}

} // namespace dbservice
