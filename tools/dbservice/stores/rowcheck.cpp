#include "stores/rowcheck.h"

#include "stores/database.h"
#include "stores/storefile.h"
#include "terminal/displaytext.h"

#include <algorithm>
#include <array>
#include <sqlite3.h>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace dbservice {

namespace {

using Severity = Finding::Severity;

// --- Cells ----------------------------------------------------------------------------------------------------------

/// The columns in which a NULL takes the row out of lists and counts, as a condition on it is never true.
constexpr std::array<std::string_view, 11> columnsOfConditions{
    "DriveDataTable.name",           "DriveDataTable.parentId",
    "DriveDataTable.mimeType",       "DriveDataTable.recycled",
    "DriveDataTable.needToDisplay",  "DriveDataTable.softDelBatchId",
    "DriveDataTable.moveBatchId",    "DriveDataTable.hardDelBatchId",
    "DriveDataTable.restoreBatchId", "DriveDataTable.directlyRecycled",
    "TransferTask.TaskStatus"};

/// The columns that the library leaves NULL by itself.
constexpr std::array<std::string_view, 5> columnsWithoutValue{
    "DriveDataTable.localAbsolutePath", "DriveDataTable.subFileAndDirectory", "DriveDataTable.operateType",
    "DriveDataTable.device", "UserProperties.Value"};

template <class Names> bool isAmong(const Names& names, std::string_view name)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

enum Fault { Binary, NullWithoutCell, Null, TextForNumber, Fraction, faultCount };

struct Met {
    std::int64_t rows = 0;
    std::string firstKey;
};

struct ColumnCheck {
    const ColumnShape* column; ///< as the library has it
    bool givesCell;            ///< whether a NULL is a cell for the library's readers
    std::array<Met, faultCount> met{};
};

bool hasWholeNumber(const Database::Row& row, int column)
{
    const double value = row.real(column);
    return value == static_cast<double>(row.number(column));
}

/// `faultCount` where all is well.
Fault faultOf(const Database::Row& row, int at, const ColumnCheck& check)
{
    const bool wantsNumber = check.column->type == "INTEGER";
    switch (row.type(at)) {
    case SQLITE_BLOB:
        return Binary;
    case SQLITE_NULL:
        return check.givesCell ? Null : NullWithoutCell;
    case SQLITE_TEXT:
        return wantsNumber ? TextForNumber : faultCount;
    case SQLITE_FLOAT:
        return wantsNumber && !hasWholeNumber(row, at) ? Fraction : faultCount;
    default:
        return faultCount;
    }
}

Finding finding(const std::string& table, const ColumnCheck& check, Fault fault, const Met& met)
{
    const std::string name = table + "." + check.column->name;
    std::string what = check.column->name + ": " + counted(met.rows, "row holds ", "rows hold ");
    Severity severity = Severity::Error;
    switch (fault) {
    case Binary:
        what += "a binary value, which readers pass over: the values behind it are read in each other's place";
        break;
    case NullWithoutCell:
        what += "NULL in a column of another type than INTEGER, TEXT or VARCHAR, which readers pass over: the values "
                "behind it are read in each other's place";
        break;
    case Null:
        severity = check.column->notNull         ? Severity::Error
            : isAmong(columnsOfConditions, name) ? Severity::Warning
                                                 : Severity::Note;
        what += check.column->type == "INTEGER" ? "NULL, which reads as 0" : "NULL, which reads as an empty text";
        what += severity == Severity::Note ? "" : ", and to which no condition of a list or count applies";
        break;
    case TextForNumber:
        severity = Severity::Warning;
        what += "a text where a number belongs, which reads as the digits at its front or as 0";
        break;
    case Fraction:
    case faultCount:
        severity = Severity::Warning;
        what += "a number with a fraction, which reads as a whole one or as 0";
        break;
    }
    return {severity, table, met.firstKey, what};
}

// --- Rows -----------------------------------------------------------------------------------------------------------

/// A condition that no row should meet.
struct RowRule {
    Severity severity;
    std::string where; ///< of the table under the name t
    std::string what;  ///< an expression of SQL that gives the text
};

/// The first rows are told one by one, the others counted.
constexpr std::int64_t toldRows = 10;

void checkRows(Database& database, const std::string& table, const std::string& key, const RowRule& rule,
               Findings& findings)
{
    std::int64_t rows = 0;
    database.run("SELECT " + key + ", " + rule.what + " FROM " + table + " AS t WHERE " + rule.where, {},
                 [&](const Database::Row& row) {
                     if (++rows <= toldRows) {
                         findings.push_back({rule.severity, table, std::string(row.text(0)), std::string(row.text(1))});
                     }
                 });
    if (rows > toldRows) {
        findings.push_back(
            {rule.severity, table, {}, "and " + counted(rows - toldRows, "row", "rows") + " more for the same reason"});
    }
}

/// The id of the folder at the top that has no row: the client's configuration names it.
std::string namedTop(Database& database, const StoreShape& shape)
{
    const TableShape* const table = shape.table("DriveConfTable");
    if (table == nullptr || table->column("rootFileId") == nullptr) {
        return {};
    }
    const std::vector<std::string> ids =
        database.texts("SELECT rootFileId FROM DriveConfTable WHERE rootFileId <> '' LIMIT 1");
    return ids.empty() ? "" : ids.front();
}

std::vector<RowRule> treeRules(const std::string& top)
{
    const std::string isRoot = "IFNULL(t.parentId, '') = ''";
    // Where nobody names the top folder and no row is a root, the folder that has no row is the one at the top.
    const std::string isTop = top.empty() ? "NOT EXISTS (SELECT 1 FROM DriveDataTable WHERE IFNULL(parentId, '') = '')"
                                          : "t.parentId = " + inQuotes(top, '\'');
    const std::string noSuchFolder = "NOT EXISTS (SELECT 1 FROM DriveDataTable AS p WHERE p.fileId = t.";
    const std::string folderType = "'application/vnd.tessix-apps.folder'";
    return {
        {Severity::Error, "t.fileId = ''", "'its id is empty, so that every root is below it'"},
        {Severity::Error,
         isRoot +
             " AND t.recycled = 0 AND EXISTS (SELECT 1 FROM DriveDataTable AS r WHERE IFNULL(r.parentId, '') = '' "
             "AND r.recycled = 0 AND r.rowid < t.rowid)",
         "'a second root beside another: no path can be told from the top'"},
        {Severity::Warning, "t.parentId <> '' AND " + noSuchFolder + "parentId) AND NOT (" + isTop + ")",
         "'its folder ' || t.parentId || ' has no row: no path leads to it'"},
        {Severity::Warning,
         "EXISTS (SELECT 1 FROM DriveDataTable AS p WHERE p.fileId = t.parentId AND IFNULL(p.mimeType, '') <> " +
             folderType + ")",
         "'it is below ' || t.parentId || ', which is a file: no list shows it'"},
        {Severity::Warning,
         "t.moveBatchId <> 0 AND t.moveParentId <> '' AND " + noSuchFolder +
             "moveParentId) AND "
             "t.moveParentId <> " +
             inQuotes(top, '\''),
         "'it waits to go to the folder ' || t.moveParentId || ', which has no row'"},
    };
}

/// A marker counts by its batch id alone: what it says beside that is left over, or nobody acts on it.
std::vector<RowRule> markerRules()
{
    std::vector<RowRule> rules;
    for (const auto& [flag, batch, what] : {std::array{"softDelete", "softDelBatchId", "a move to the bin"},
                                            std::array{"hardDelete", "hardDelBatchId", "a final deletion"},
                                            std::array{"localRestore", "restoreBatchId", "a return from the bin"}}) {
        rules.push_back({Severity::Warning, std::string("t.") + flag + " <> 0 AND IFNULL(t." + batch + ", 0) = 0",
                         std::string("'") + flag + " marks " + what + ", but " + batch +
                             " is 0: it does not count as pending and is never carried out'"});
    }
    for (const auto& [value, batch, what] : {std::array{"renameName", "renameBatchId", "a new name"},
                                             std::array{"moveParentId", "moveBatchId", "a new folder"}}) {
        rules.push_back({Severity::Note, std::string("t.") + value + " <> '' AND IFNULL(t." + batch + ", 0) = 0",
                         std::string("'") + value + " holds " + what + ", but " + batch +
                             " is 0: left over from something done, or never carried out'"});
        rules.push_back(
            {Severity::Warning, std::string("t.") + batch + " <> 0 AND IFNULL(t." + value + ", '') = ''",
             std::string("'") + batch + " marks a pending change, but " + value + " does not tell " + what + "'"});
    }
    return rules;
}

/// Rows that are their own ancestors, one for each circle.
void checkCircles(Database& database, Findings& findings)
{
    struct Node {
        std::string parent;
        std::size_t walk = 0; ///< the number of the walk that came by, 0 for none
    };
    std::unordered_map<std::string, Node> nodes;
    database.run("SELECT fileId, parentId FROM DriveDataTable WHERE parentId <> ''", {},
                 [&](const Database::Row& row) { nodes[std::string(row.text(0))].parent = row.text(1); });
    std::size_t walk = 0;
    for (auto& start : nodes) {
        ++walk;
        auto* at = &start;
        while (at->second.walk == 0) {
            at->second.walk = walk;
            const auto next = nodes.find(at->second.parent);
            if (next == nodes.end()) {
                break;
            }
            at = &*next;
            if (at->second.walk == walk) {
                findings.push_back({Severity::Error, "DriveDataTable", at->first,
                                    "it is below itself: no path leads to it, and readers of what is below it never "
                                    "come to an end"});
            }
        }
    }
}

} // namespace

void checkCells(Database& database, const TableShape& table, const TableShape& library, Findings& findings)
{
    std::vector<ColumnCheck> checks;
    std::string columns;
    std::string key = "rowid";
    for (const ColumnShape& column : library.columns) {
        const ColumnShape* const there = table.column(column.name);
        if (there != nullptr) {
            checks.push_back({&column, there->type == "INTEGER" || there->type == "TEXT" || there->type == "VARCHAR"});
            columns += ", " + inQuotes(there->name, '"');
            key = column.key == 1 ? inQuotes(there->name, '"') : key;
        }
    }
    database.run("SELECT " + key + columns + " FROM " + inQuotes(table.name, '"') + " NOT INDEXED", {},
                 [&](const Database::Row& row) {
                     for (std::size_t i = 0; i < checks.size(); ++i) {
                         const Fault fault = faultOf(row, static_cast<int>(i) + 1, checks[i]);
                         if (fault != faultCount && checks[i].met[fault].rows++ == 0) {
                             checks[i].met[fault].firstKey = row.text(0);
                         }
                     }
                 });
    for (const ColumnCheck& check : checks) {
        for (int fault = 0; fault < faultCount; ++fault) {
            const Met& met = check.met[static_cast<std::size_t>(fault)];
            const bool mayBe = fault == Null && isAmong(columnsWithoutValue, table.name + "." + check.column->name);
            if (met.rows > 0 && !mayBe) {
                findings.push_back(finding(library.name, check, static_cast<Fault>(fault), met));
            }
        }
    }
}

void checkDriveRows(Database& database, const StoreShape& shape, Findings& findings)
{
    std::vector<RowRule> rules = treeRules(namedTop(database, shape));
    const std::vector<RowRule> markers = markerRules();
    rules.insert(rules.end(), markers.begin(), markers.end());
    for (const RowRule& rule : rules) {
        checkRows(database, "DriveDataTable", "t.fileId", rule, findings);
    }
    checkCircles(database, findings);
}

void checkGalleryRows(Database& database, Findings& findings)
{
    checkRows(database, "GalleryFile", "t.UniqueId",
              {Severity::Note, "t.AlbumId <> '' AND NOT EXISTS (SELECT 1 FROM Album AS a WHERE a.AlbumId = t.AlbumId)",
               "'its album ' || t.AlbumId || ' has no row'"},
              findings);
}

} // namespace dbservice
