#include "command.h"
#include "drive/drivefields.h"
#include "platform/paths.h"
#include "scan/sourcefolder.h"
#include "scan/treefill.h"
#include "scan/treesync.h"
#include "stores/session.h"
#include "terminal/displaytext.h"
#include "terminal/failure.h"
#include "terminal/recordfields.h"
#include "terminal/table.h"

#include <chrono>
#include <cmath>
#include <cstdint>
#include <iostream>
#include <string>
#include <utility>
#include <vector>

namespace dbservice {

namespace {

/// What each step took, in whole parts of a second, and at last what is left of the total, so that it adds up.
std::vector<std::pair<std::string, double>> stepsOf(const ScanRecord& record, double total, int parts)
{
    std::vector<std::pair<std::string, double>> steps;
    double rest = std::round(total * parts);
    for (std::size_t i = 0; i < ScanRecord::stepNames.size(); ++i) {
        const double step = std::floor(record.seconds[i] * parts);
        steps.emplace_back(ScanRecord::stepNames[i], step / parts);
        rest -= step;
    }
    steps.emplace_back("other", rest / parts);
    return steps;
}

void printJson(const SourceFolder& source, const ScanRecord& record, double total)
{
    Json json{
        {"source", platform::toUtf8(source.absolute({}))},
        {"folders", record.folders},
        {"files", record.files},
        {"added", record.added},
        {"changed", record.changed},
        {"unchanged", record.unchanged},
        {"removed", record.removed},
        {"leftAlone", record.leftAlone},
        {"rows", record.rows},
        {"odd", source.odd()},
        {"lost", source.lost()},
    };
    for (const auto& [step, seconds] : stepsOf(record, total, 1000)) {
        json["seconds"][step] = seconds;
    }
    json["seconds"]["total"] = toMilliseconds(total);
    std::cout << toLine(json) << '\n';
}

void printTable(const SourceFolder& source, const ScanRecord& record, double total)
{
    std::cout << "Scanned " << printable(platform::toUtf8(source.absolute({}))) << ": "
              << counted(record.folders, "folder", "folders") << ", " << counted(record.files, "file", "files") << '\n';
    const int width = Session::outputWidth();
    Table rows({{"Rows"}, {"", Table::Align::Right}});
    rows.add({"added", grouped(record.added)});
    rows.add({"changed", grouped(record.changed)});
    rows.add({"removed", grouped(record.removed)});
    rows.add({"unchanged", grouped(record.unchanged)});
    if (record.leftAlone > 0) {
        rows.add({"left alone", grouped(record.leftAlone)});
    }
    rows.add({"in the store", grouped(record.rows)});
    rows.print(std::cout, width);

    Table steps({{"Step"}, {"Seconds", Table::Align::Right}});
    for (const auto& [step, seconds] : stepsOf(record, total, 100)) {
        steps.add({step, twoDecimals(seconds)});
    }
    steps.add({"all", twoDecimals(total)});
    steps.print(std::cout, width);
}

/// Throws when at the end the store does not hold the rows that it should.
ScanRecord bringUpToDate(Session& session, SourceFolder& source)
{
    DatabaseService::DriverDBProvider& drive = session.writeDrive();
    const std::int64_t rowsBefore = drive.CountDriverData();
    session.stopIfFailed("read the store");
    ScanRecord record;
    if (rowsBefore == 0) {
        TreeFill(session, drive, source, record).run();
    } else {
        TreeSync(session, drive, source, record).run();
    }
    session.reporter().endProgress();

    record.rows = drive.CountDriverData();
    session.stopIfFailed("read the store");
    const std::int64_t expected = rowsBefore + record.added - record.removed;
    if (record.rows != expected) {
        throw Failure("cannot confirm the scan: the store should hold " + counted(expected, "row", "rows") +
                      " now and holds " + grouped(record.rows) + "; did another program write to it?");
    }
    return record;
}

int scan(Session& session, const std::string& folder)
{
    const auto start = std::chrono::steady_clock::now();
    SourceFolder source(pathFromArgument(folder), session.storeFolder(), session.reporter());
    session.makeStoreFolder();
    const ScanRecord record = bringUpToDate(session, source);
    const double total = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    if (session.json()) {
        printJson(source, record, total);
    } else {
        printTable(source, record, total);
    }
    if (source.odd() > 0) {
        session.reporter().warning(counted(source.odd(), "odd entry was", "odd entries were") + " recorded");
    }
    if (source.lost() > 0) {
        session.reporter().error(
            "cannot record everything: " + counted(source.lost(), "entry or folder was", "entries or folders were") +
            " lost, see the warnings above");
        return 1;
    }
    return 0;
}

} // namespace

Command scanCommand()
{
    return {
        .name = "scan",
        .group = group::stores,
        .summary = "Record a real folder as the drive tree, or bring the tree up to date with it",
        .arguments = {argument<std::string>("SOURCE", "The folder to record", {.required = true})},
        .details =
            "Makes the store where it is missing. The first scan fills an empty store; later ones of the same SOURCE\n"
            "write what was added, changed or removed since. A store that holds anything else is refused.\n"
            "Links are recorded and not followed. Rows in the bin are left alone. So are rows with a pending operation "
            "that\n"
            "are no longer on disk, such as folders that `mkdir` made; those on disk keep what is pending, and a row "
            "that\n"
            "`rename` has given another name keeps that.\n"
            "Warnings tell of links that lead nowhere, to themselves or to a folder above them, and of names that are\n"
            "not UTF-8: these are recorded, and the exit code stays 0. Folders that cannot be read and files that "
            "vanish\n"
            "during the walk are lost: the exit code is 1.\n"
            "Times are stored in seconds since 1970 UTC, contentVersion is the modification time in nanoseconds.\n"
            "Steps: walk the folder, read the store, mark, write and sweep rows, create the indexes; other is what "
            "remains,\n"
            "such as opening the store and checking its order of names.",
        .example = "dbservice scan ~/Pictures",
        .run = scan,
    };
}

} // namespace dbservice
