#include "driveworkload.h"
#include "harness.h"
#include "listworkload.h"
#include "migrationworkload.h"
#include "moduleworkload.h"
#include "scratchfolder.h"
#include "storeworkload.h"
#include "tellingerrors.h"
#include "transferworkload.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <fmt/format.h>
#include <sqlite3.h>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using namespace benchmarks;

struct Options {
    std::size_t rows = 100'000;
    int rounds = 0;
    std::string operation;
    std::string side;
};

const std::vector<std::string> sides{"library", "expert", "kept-expert"};

// Twice what three stores take; there are never more at a time.
std::uintmax_t roomFor(std::size_t rows)
{
    return rows * std::uintmax_t{3072};
}

// Gives false when the workload has no such operation.
template <class Workload> bool runOneSide(const Options& options)
{
    const ScratchFolder folder(roomFor(options.rows));
    Workload workload(options.rows, folder.path());
    const std::vector<Operation> operations = workload.operations();
    const auto operation = std::find_if(operations.begin(), operations.end(),
                                        [&](const Operation& each) { return each.name == options.operation; });
    if (operation == operations.end()) {
        return false;
    }
    const auto side = static_cast<std::size_t>(std::find(sides.begin(), sides.end(), options.side) - sides.begin());
    if (side >= operation->contenders.size()) {
        throw std::invalid_argument(options.operation + " has no side " + options.side);
    }
    fmt::print("{}\n", runOnce(operation->contenders[side]));
    return true;
}

template <class Workload> void compareStatements()
{
    constexpr std::size_t rows = 100;
    const ScratchFolder folder(roomFor(rows));
    Workload workload(rows, folder.path());
    for (const Operation& operation : workload.operations()) {
        requireSameStatements(operation);
    }
}

template <class Workload>
std::vector<Result> measureAll(const Options& options, const std::filesystem::path& folder, int rounds)
{
    Workload workload(options.rows, folder);
    std::vector<Result> results;
    for (const Operation& operation : workload.operations()) {
        if (options.operation.empty() || options.operation == operation.name) {
            fmt::print(stderr, "{} ...\n", operation.title);
            results.push_back(measure(operation, rounds));
        }
    }
    return results;
}

void compare(const Options& options)
{
    compareStatements<DriveWorkload>();
    compareStatements<ListWorkload>();
    compareStatements<StoreWorkload>();
    compareStatements<TransferWorkload>();
    const ScratchFolder folder(roomFor(options.rows));
    // A round over a large store is long enough to be steady.
    const int rounds = options.rounds > 0 ? options.rounds : options.rows > 500'000 ? 3 : 7;
    fmt::print("{} records of 53 columns, one folder of {}; {} rounds; SQLite {}; stores in {}{}\n", options.rows,
               largeFolderSize(options.rows), rounds, sqlite3_libversion(), folder.path().parent_path().string(),
               folder.inMemory() ? "" : "; no memory file system with enough room: expect noise");

    const std::vector<Result> drive = measureAll<DriveWorkload>(options, folder.path(), rounds);
    const std::vector<Result> lists = measureAll<ListWorkload>(options, folder.path(), rounds);
    const std::vector<Result> stores = measureAll<StoreWorkload>(options, folder.path(), rounds);
    const std::vector<Result> transfers = measureAll<TransferWorkload>(options, folder.path(), rounds);
    const std::vector<Result> modules = measureAll<ModuleWorkload>(options, folder.path(), rounds);
    const std::vector<Result> migrations = measureAll<MigrationWorkload>(options, folder.path(), rounds);
    if (drive.empty() && lists.empty() && stores.empty() && transfers.empty() && modules.empty() &&
        migrations.empty()) {
        throw std::invalid_argument("no operation is called " + options.operation);
    }
    printComparison(drive, 1);
    printComparison(drive, 2);
    printComparison(lists, 1);
    printComparison(stores, 1);
    printComparison(transfers, 1);
    printComparison(modules, 1);
    printComparison(migrations, 1);
    printComparison(migrations, 2);
    if (options.operation.empty()) {
        const ModuleWorkload::Posting posting = ModuleWorkload(options.rows, folder.path()).measurePosting();
        fmt::print("\na call that posts, {} times: median {:.1f} us, 99th percentile {:.1f} us\n", posting.calls,
                   posting.median * 1e6, posting.percentile99 * 1e6);
    }
}

// A workload makes up its records first, which takes long under a profiler: so only the one that may have the
// operation.
bool runOneSideOfAny(const Options& options)
{
    const std::string kind = options.operation.substr(0, options.operation.find('-'));
    if (kind == "gallery" || kind == "changes" || kind == "log" || kind == "start") {
        return runOneSide<StoreWorkload>(options);
    }
    if (kind == "completed" || kind == "download" || kind == "upload" || kind == "task") {
        return runOneSide<TransferWorkload>(options);
    }
    if (kind == "messages" || kind == "posted") {
        return runOneSide<ModuleWorkload>(options);
    }
    if (kind == "migrate") {
        return runOneSide<MigrationWorkload>(options);
    }
    return runOneSide<DriveWorkload>(options) || runOneSide<ListWorkload>(options);
}

void runForProfiler(const Options& options)
{
    if (!runOneSideOfAny(options)) {
        throw std::invalid_argument("no operation is called " + options.operation);
    }
}

int run(int argc, char** argv)
{
    Options options;
    CLI::App app{"Measures the library beside direct use of SQLite's C interface, in turn in one process.\n"
                 "The exit code tells whether both did the same work, not how fast."};
    app.add_option("--rows", options.rows, "Records in the drive")->check(CLI::Range(100, 100'000'000));
    app.add_option("--rounds", options.rounds, "Rounds to take the medians of (7; 3 for large stores)")
        ->check(CLI::Range(1, 1000));
    CLI::Option* operation =
        app.add_option("--operation", options.operation,
                       "Only this one: insert, insert-bare, read-all, children, by-id, update, page-name, "
                       "page-size, counts, class, gallery-insert, gallery-read-all, "
                       "gallery-by-id, changes-insert, changes-read-all, changes-insert-each, "
                       "log-insert, log-check, start, completed-..., download-..., upload-... or task-..., each "
                       "with insert, update or read-all, messages, posted-updates or migrate");
    app.add_option("--side", options.side, "Run one side of the operation once, for a profiler, and print its rows")
        ->check(CLI::IsMember(sides))
        ->needs(operation);
    CLI11_PARSE(app, argc, argv);

    options.side.empty() ? compare(options) : runForProfiler(options);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    return benchmarks::tellingErrors("databaseservice_benchmark", [&] { return run(argc, argv); });
}
