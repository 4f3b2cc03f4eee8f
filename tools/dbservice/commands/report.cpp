#include "command.h"
#include "commands/commands.h"
#include "databaseservice/version.h"
#include "drive/drivetree.h"
#include "drive/pendinglist.h"
#include "platform/paths.h"
#include "platform/text.h"
#include "report/reportpage.h"
#include "stores/session.h"
#include "stores/storecheck.h"
#include "stores/storelook.h"
#include "terminal/displaytext.h"
#include "terminal/failure.h"
#include "terminal/json.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <fstream>
#include <iostream>

namespace fs = std::filesystem;

namespace dbservice {

namespace {

struct ReportOptions {
    std::string file;
    bool force = false;
};

std::int64_t now()
{
    return std::chrono::duration_cast<std::chrono::seconds>(std::chrono::system_clock::now().time_since_epoch())
        .count();
}

/// With the bytes of each table and its indexes, where this SQLite counts pages.
std::vector<Report::Table> tablesOf(Database& database, const StoreLook& look)
{
    const bool countsPages = database.number("SELECT COUNT(*) FROM pragma_module_list WHERE name = 'dbstat'") > 0;
    std::vector<Report::Table> tables;
    for (const auto& [name, rows] : look.rows) {
        Report::Table& table = tables.emplace_back(Report::Table{name, rows, {}});
        if (countsPages) {
            table.bytes = database.number("SELECT SUM(pgsize) FROM dbstat WHERE aggregate = 1 AND name IN "
                                          "(SELECT name FROM sqlite_master WHERE tbl_name = ?)",
                                          {name});
        }
    }
    return tables;
}

std::vector<Report::Transfers> readTransfers(Database& database)
{
    struct Columns {
        const char* table;
        const char* status;
        const char* size;
    };
    constexpr std::array known{
        Columns{"UploadTaskTable", "taskStatus", "totalLength"}, Columns{"DownloadTaskTable", "''", "totalLength"},
        Columns{"CompletedTaskTable", "''", "totalLength"}, Columns{"TransferTask", "TaskStatus", "0"}};
    const std::vector<std::string> present = database.tables();
    std::vector<Report::Transfers> transfers;
    for (const auto& [table, status, size] : known) {
        if (std::ranges::find(present, table) != present.end()) {
            database.run(std::string("SELECT ") + status + ", COUNT(*), SUM(" + size + ") FROM " + table +
                             " GROUP BY 1 ORDER BY 1",
                         {}, [&, name = table](const Database::Row& row) {
                             transfers.push_back({name, std::string(row.text(0)), row.number(1), row.number(2)});
                         });
        }
    }
    return transfers;
}

std::vector<Report::Operation> readPending(DatabaseService::DriverDBProvider& drive)
{
    const std::vector<PendingOperation> operations = pendingOperations(drive);
    std::vector<DatabaseService::DriveDataTable> rows;
    rows.reserve(operations.size());
    for (const PendingOperation& operation : operations) {
        rows.push_back(operation.row);
    }
    const std::vector<std::string> paths = DriveTree(drive).pathsOf(rows);
    std::vector<Report::Operation> pending;
    for (std::size_t i = 0; i < operations.size(); ++i) {
        pending.push_back({paths[i], operations[i].marker});
    }
    return pending;
}

/// As far as the file can be read; why it cannot is among its findings.
void add(Report& report, Session& session, const fs::path& file)
{
    const StoreLook look = lookAtStore(session, file);
    const std::string name = platform::toUtf8(file.filename());
    const Findings& findings = report.checked.emplace_back(Report::Checked{name, checkStore(session, file)}).findings;
    const bool isSound = std::ranges::none_of(
        findings, [](const Finding& finding) { return finding.severity == Finding::Severity::Error; });
    const std::string kind = look.kind == nullptr ? "" : look.kind->word;
    Report::Store& store = report.stores.emplace_back();
    store.file = name;
    store.kind = look.kind == nullptr ? "not a store" : look.kind->meaning;
    store.bytes = static_cast<std::int64_t>(look.size);
    store.trouble = whatStopped(file, [&] {
        Database& database = session.openToRead(file);
        store.tables = tablesOf(database, look);
        if (kind == "drive") {
            report.drive = readDriveMap(database, report.time);
        } else if (kind == "transfers") {
            report.transfers = readTransfers(database);
        }
    });
    if (name == driveFileName) {
        report.pending.reset();
        if (isSound) {
            report.pending = readPending(session.readDrive());
        }
    }
}

int report(Session& session, const ReportOptions& options)
{
    const fs::path file = pathFromArgument(options.file);
    std::error_code error;
    if (!options.force && fs::exists(fs::symlink_status(file, error))) {
        throw Failure("cannot write " + options.file + ": it is there already; --force replaces it");
    }
    Report report;
    report.folder = platform::toUtf8(session.storeFolder());
    report.time = now();
    report.versions = "dbservice " + DatabaseService::LibraryVersion();
    report.pending.emplace();
    for (const fs::path& store : storesMeant(session, {})) {
        add(report, session, store);
    }
    fs::path unfinished = file;
    unfinished += ".part";
    std::ofstream out(unfinished, std::ios::binary);
    writePage(report, out);
    out.close();
    if (!out) {
        fs::remove(unfinished, error);
        throw Failure("cannot write " + options.file);
    }
    fs::rename(unfinished, file, error);
    if (error) {
        throw Failure("cannot write " + options.file + ": " + error.message());
    }
    if (session.json()) {
        std::cout << toLine(Json{{"file", platform::toUtf8(fs::absolute(file))}}) << '\n';
    } else {
        std::cout << printable(platform::toUtf8(fs::absolute(file))) << '\n';
    }
    return 0;
}

} // namespace

Command reportCommand()
{
    return {
        .name = "report",
        .group = group::stores,
        .summary = "Write a page about the stores for a browser: sizes, kinds, what waits, what is wrong",
        .arguments = {argument<&ReportOptions::file>("OUT", "The page, such as report.html",
                                                     {.required = true, .type = "OUT.html"}),
                      argument<&ReportOptions::force>("--force", "Replace a file of this name")},
        .details = "The page is one file that needs no network. It shows names and paths as they are stored.\n"
                   "Nothing in the stores changes.",
        .example = "dbservice report report.html",
        .run = report,
    };
}

} // namespace dbservice
