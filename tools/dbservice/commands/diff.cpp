#include "command.h"
#include "platform/paths.h"
#include "stores/cellvalue.h"
#include "stores/databasefiles.h"
#include "stores/session.h"
#include "stores/storediff.h"
#include "terminal/displaytext.h"
#include "terminal/failure.h"
#include "terminal/table.h"

#include <algorithm>
#include <iostream>
#include <sqlite3.h>

namespace fs = std::filesystem;

namespace dbservice {

namespace {

struct DiffOptions {
    std::string before;
    std::string after;
    bool summary = false;
};

std::string joined(const std::vector<std::string>& names)
{
    std::string all;
    for (const std::string& name : names) {
        all += (all.empty() ? "" : ", ") + name;
    }
    return all;
}

/// Whether the cell says anything.
bool isSet(const Database::Row& row, int column)
{
    return !row.isNull(column) && !row.text(column).empty() && row.text(column) != "0";
}

/// Whether people know a row by this column.
bool isName(const std::string& column)
{
    return column == "name" || column == "fileName" || column == "FileName" || column == "Title";
}

/// Prints what differs as it is found, for a person with the table's name above its rows.
class DiffPrinter {
public:
    DiffPrinter(bool json, bool summary) : m_json(json), m_summary(summary) { }

    /// The store's file from here on, where there are several.
    void setFile(const std::string& file)
    {
        m_file = file;
        m_table.clear();
    }

    void row(const TableDiff& diff, const RowDiff& row)
    {
        if (m_summary) {
            return;
        }
        if (m_json) {
            std::cout << toLine(jsonOf(diff, row)) << '\n';
            return;
        }
        if (m_table != diff.table) {
            m_table = diff.table;
            const std::string head = (m_file.empty() ? "" : m_file + " ") + diff.table;
            std::cout << printable(head + ", by " + joined(diff.key)) << '\n';
        }
        const int width = Session::outputWidth();
        const std::string line = printable(lineOf(diff, row));
        std::cout << (width > 0 ? fitted(line, width) : line) << '\n';
    }

    void add(const TableDiff& diff)
    {
        m_differs = m_differs || !diff.isThereBefore || !diff.isThereAfter ||
            diff.came + diff.went + diff.changed > 0 || !diff.columnsCame.empty() || !diff.columnsWent.empty();
        if (m_json) {
            Json json = place(diff);
            json["before"] = diff.isThereBefore;
            json["after"] = diff.isThereAfter;
            json["key"] = diff.key;
            json["columnsCame"] = diff.columnsCame;
            json["columnsWent"] = diff.columnsWent;
            json["came"] = diff.came;
            json["went"] = diff.went;
            json["changed"] = diff.changed;
            json["same"] = diff.same;
            std::cout << toLine(json) << '\n';
            return;
        }
        std::string note = !diff.isThereBefore ? "the table came" : !diff.isThereAfter ? "the table went" : "";
        const auto tell = [&note](const char* what, const std::vector<std::string>& columns) {
            note += columns.empty() ? "" : (note.empty() ? "" : "; ") + (what + joined(columns));
        };
        tell("columns came: ", diff.columnsCame);
        tell("columns went: ", diff.columnsWent);
        m_totals.add({(m_file.empty() ? "" : m_file + " ") + diff.table, grouped(diff.came), grouped(diff.went),
                      grouped(diff.changed), grouped(diff.same), note});
    }

    void end() const
    {
        if (!m_json) {
            m_totals.print(std::cout, Session::outputWidth());
            std::cout << (m_differs ? "" : "No differences\n");
        }
    }

private:
    Json place(const TableDiff& diff) const
    {
        Json json = Json::object();
        if (!m_file.empty()) {
            json["file"] = m_file;
        }
        json["table"] = diff.table;
        return json;
    }

    Json jsonOf(const TableDiff& diff, const RowDiff& row) const
    {
        const Database::Row& known = row.before != nullptr ? *row.before : *row.after;
        Json json = place(diff);
        json["change"] = row.before == nullptr ? "came" : row.after == nullptr ? "went" : "changed";
        for (std::size_t i = 0; i < diff.key.size(); ++i) {
            json["key"][diff.key[i]] = cellJson(known, static_cast<int>(i));
        }
        if (row.before != nullptr && row.after != nullptr) {
            for (const int i : row.changed) {
                json["columns"][diff.columns[static_cast<std::size_t>(i)]] = {{"old", cellJson(*row.before, i)},
                                                                              {"new", cellJson(*row.after, i)}};
            }
        } else {
            for (int i = 0; i < known.size(); ++i) {
                json["row"][diff.columns[static_cast<std::size_t>(i)]] = cellJson(known, i);
            }
        }
        return json;
    }

    /// A row that came or went shows what is set in it, another one by which name it goes.
    static std::string lineOf(const TableDiff& diff, const RowDiff& row)
    {
        const bool changed = row.before != nullptr && row.after != nullptr;
        const Database::Row& known = row.before != nullptr ? *row.before : *row.after;
        std::string line = changed ? "  ~" : row.before == nullptr ? "  +" : "  -";
        for (int i = 0; i < known.size(); ++i) {
            const bool isKey = static_cast<std::size_t>(i) < diff.key.size();
            const std::string& column = diff.columns[static_cast<std::size_t>(i)];
            if (isKey || (isSet(known, i) && (!changed || isName(column)))) {
                line += " " + column + "=" + cellLiteral(known, i);
            }
        }
        for (std::size_t i = 0; i < row.changed.size(); ++i) {
            const int column = row.changed[i];
            line += (i == 0 ? ": " : ", ") + diff.columns[static_cast<std::size_t>(column)] + " " +
                cellLiteral(*row.before, column) + " -> " + cellLiteral(*row.after, column);
        }
        return line;
    }

    bool m_json;
    bool m_summary;
    std::string m_file;
    std::string m_table;
    bool m_differs = false;
    Table m_totals{{{"Table"},
                    {"Came", Table::Align::Right},
                    {"Went", Table::Align::Right},
                    {"Changed", Table::Align::Right},
                    {"Same", Table::Align::Right},
                    {""}}};
};

int diff(Session& session, const DiffOptions& options)
{
    const fs::path before = pathFromArgument(options.before);
    const fs::path after = pathFromArgument(options.after);
    DiffPrinter printer(session.json(), options.summary);
    const auto compare = [&](const fs::path& left, const fs::path& right) {
        const auto tell = [&](const TableDiff& table, const RowDiff& row) { printer.row(table, row); };
        for (const TableDiff& table : compareStores(session.openToRead(left), session.openToRead(right), tell)) {
            printer.add(table);
        }
    };
    std::error_code ignored;
    if (!fs::is_directory(before, ignored) || !fs::is_directory(after, ignored)) {
        compare(before, after);
    } else {
        const std::vector<fs::path> left = databaseFilesIn(before);
        const std::vector<fs::path> right = databaseFilesIn(after);
        std::vector<fs::path> both;
        std::set_intersection(left.begin(), left.end(), right.begin(), right.end(), std::back_inserter(both));
        if (both.empty()) {
            throw Failure("cannot compare " + options.before + " and " + options.after +
                          ": the folders hold no stores of the same name");
        }
        std::vector<fs::path> alone;
        std::set_symmetric_difference(left.begin(), left.end(), right.begin(), right.end(), std::back_inserter(alone));
        for (const fs::path& name : alone) {
            const bool went = std::find(left.begin(), left.end(), name) != left.end();
            session.reporter().warning("only " + (went ? options.before : options.after) + " holds " +
                                       platform::toUtf8(name));
        }
        for (const fs::path& name : both) {
            printer.setFile(platform::toUtf8(name));
            compare(before / name, after / name);
        }
    }
    printer.end();
    return 0;
}

} // namespace

Command diffCommand()
{
    return {
        .name = "diff",
        .group = group::stores,
        .summary = "Compare two copies of a store: rows that came, went and changed",
        .arguments = {argument<&DiffOptions::before>("BEFORE", "The older copy: a store's file, or a folder of stores",
                                                     {.required = true}),
                      argument<&DiffOptions::after>("AFTER", "The newer one", {.required = true}),
                      argument<&DiffOptions::summary>("--summary", "Only the numbers of each table")},
        .details = "Rows are told apart by the primary key of their table, else by a unique index, else by their "
                   "number.\n+ came, - went, ~ changed. The exit code is 0 whether the copies differ or not.\n"
                   "`dbservice copy-out` makes a copy while the client works. With --json each line is a row that\n"
                   "differs, with old and new values, and at the end a line for each table.",
        .example = "dbservice diff monday/DriveModuleData.dat DriveModuleData.dat",
        .run = diff,
    };
}

} // namespace dbservice
