#include "command.h"
#include "stores/cellvalue.h"
#include "stores/queryguard.h"
#include "stores/session.h"
#include "terminal/displaytext.h"
#include "terminal/failure.h"
#include "terminal/table.h"

#include <chrono>
#include <cmath>
#include <iostream>
#include <set>
#include <sqlite3.h>

namespace dbservice {

namespace {

struct QueryOptions {
    std::string statement;
    std::string file;
    unsigned count = 10'000;
    double seconds = 10;
    bool csv = false;
};

/// The columns' names, each of them once.
std::vector<std::string> namesOf(const Database::Row& row)
{
    std::vector<std::string> names;
    std::set<std::string> taken;
    for (int i = 0; i < row.size(); ++i) {
        std::string name = row.name(i);
        for (int number = 2; !taken.insert(name).second; ++number) {
            name = row.name(i) + ":" + std::to_string(number);
        }
        names.push_back(name);
    }
    return names;
}

std::string csvField(const std::string& text)
{
    if (!text.empty() && text.find_first_of(",\"\r\n") == std::string::npos) {
        return text;
    }
    std::string quoted = "\"";
    for (const char letter : text) {
        quoted.append(letter == '"' ? 2 : 1, letter);
    }
    return quoted + '"';
}

void printCsv(const std::vector<std::string>& fields)
{
    for (std::size_t i = 0; i < fields.size(); ++i) {
        std::cout << (i == 0 ? "" : ",") << fields[i];
    }
    std::cout << "\r\n";
}

/// Prints rows as they come, a table at its end.
class Results {
public:
    Results(const Database::Row& row, bool json, bool csv) : m_names(namesOf(row)), m_json(json), m_csv(csv)
    {
        std::vector<Table::Column> columns;
        for (const std::string& name : m_names) {
            columns.push_back({inCell(name)});
        }
        m_table.emplace(std::move(columns));
        if (m_csv) {
            std::vector<std::string> fields;
            for (const std::string& name : m_names) {
                fields.push_back(csvField(name));
            }
            printCsv(fields);
        }
    }

    void add(const Database::Row& row)
    {
        Json json = Json::object();
        std::vector<std::string> cells;
        for (int i = 0; i < row.size(); ++i) {
            if (m_json) {
                json[m_names[static_cast<std::size_t>(i)]] = cellJson(row, i);
            } else if (m_csv) {
                cells.push_back(row.isNull(i) ? "" : csvField(cellText(row, i)));
            } else {
                cells.push_back(cellText(row, i));
            }
        }
        if (m_json) {
            std::cout << toLine(json) << '\n';
        } else if (m_csv) {
            printCsv(cells);
        } else {
            m_table->add(std::move(cells));
        }
    }

    void end() const
    {
        if (!m_json && !m_csv) {
            m_table->print(std::cout, Session::outputWidth());
        }
    }

private:
    std::vector<std::string> m_names;
    std::optional<Table> m_table;
    bool m_json;
    bool m_csv;
};

[[noreturn]] void fail(const Database& database, const QueryGuard& guard, double seconds)
{
    const std::string what = "cannot run the statement on " + database.called() + ": ";
    if (guard.ranOutOfTime()) {
        throw Failure(what + "it took longer than " + twoDecimals(seconds) +
                      " seconds; --seconds gives it more, and a condition on an indexed column makes it faster");
    }
    if (!guard.refusal().empty()) {
        throw Failure(what + guard.refusal() + "; one SELECT, EXPLAIN or PRAGMA that only reads is run", wrongUsage);
    }
    const std::string reason = sqlite3_errmsg(database.handle());
    const bool unknown = reason.starts_with("no such ");
    throw Failure(what + reason + (unknown ? "; `SELECT sql FROM sqlite_master` tells what there is" : ""));
}

int query(Session& session, const QueryOptions& options)
{
    if (options.csv && session.json()) {
        throw Failure("cannot print the rows as CSV and as JSON at once", wrongUsage);
    }
    Database& database =
        options.file.empty() ? session.driveAsItIs() : session.openToRead(pathFromArgument(options.file));
    QueryGuard guard(database.handle(), std::chrono::milliseconds(std::llround(options.seconds * 1000)));
    const Statement::Handle statement = guard.prepare(options.statement);
    if (statement == nullptr) {
        fail(database, guard, options.seconds);
    }
    const Database::Row row(statement.get());
    Results results(row, session.json(), options.csv);
    unsigned shown = 0;
    int code = sqlite3_step(statement.get());
    for (; code == SQLITE_ROW && shown < options.count; code = sqlite3_step(statement.get())) {
        results.add(row);
        ++shown;
    }
    if (code == SQLITE_ROW) {
        session.reporter().note("there are more rows; --count shows more than " + grouped(options.count));
    } else if (code != SQLITE_DONE) {
        fail(database, guard, options.seconds);
    }
    results.end();
    return 0;
}

} // namespace

Command queryCommand()
{
    constexpr double longest = 86'400;
    return {
        .name = "query",
        .group = group::stores,
        .summary = "Ask a store's file anything, with one statement that reads",
        .arguments =
            {argument<&QueryOptions::statement>("SQL", "The statement, in quotes of the shell's", {.required = true}),
             argument<&QueryOptions::file>("--file", "The file; without it the drive store's", {.type = "FILE"}),
             argument<&QueryOptions::csv>("--csv", "Print CSV: a NULL is empty, an empty text is \"\""),
             argument<&QueryOptions::count>("--count", "How many rows to show at most", {.showsDefault = true}),
             argument<&QueryOptions::seconds>("--seconds", "How long the statement may take",
                                              {.showsDefault = true, .range = Range{0, longest}})},
        .details = "Nothing is written: a statement that does more than read is refused, and so is a second one.\n"
                   "The order of names is there as NameCompare. docs/stores.md tells what the columns mean.\n"
                   "With --json each line is a row with the columns' names as keys; blobs are X'0A' everywhere.",
        .example = "dbservice query \"SELECT name, size FROM DriveDataTable ORDER BY size DESC LIMIT 20\"",
        .run = query,
    };
}

} // namespace dbservice
