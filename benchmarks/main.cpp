#include "driveworkload.h"
#include "harness.h"
#include "scratchfolder.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <fmt/format.h>
#include <sqlite3.h>
#include <stdexcept>

namespace {

using namespace benchmarks;

struct Options {
    std::size_t rows = 100'000;
    int rounds = 0;
    std::string operation;
    std::string side;
};

const std::vector<std::string> sides{"library", "expert", "kept-expert"};

// Twice what two stores take; there are never more at a time.
std::uintmax_t roomFor(std::size_t rows)
{
    return rows * std::uintmax_t{2048};
}

const Operation& named(const std::vector<Operation>& operations, const std::string& name)
{
    const auto found = std::find_if(operations.begin(), operations.end(),
                                    [&](const Operation& operation) { return operation.name == name; });
    if (found == operations.end()) {
        throw std::invalid_argument("no operation is called " + name);
    }
    return *found;
}

void runOneSide(const Options& options)
{
    const ScratchFolder folder(roomFor(options.rows));
    DriveWorkload workload(options.rows, folder.path());
    const std::vector<Operation> operations = workload.operations();
    const auto side = static_cast<std::size_t>(std::find(sides.begin(), sides.end(), options.side) - sides.begin());
    fmt::print("{}\n", runOnce(named(operations, options.operation).contenders[side]));
}

void compareStatements()
{
    constexpr std::size_t rows = 100;
    const ScratchFolder folder(roomFor(rows));
    DriveWorkload workload(rows, folder.path());
    for (const Operation& operation : workload.operations()) {
        requireSameStatements(operation);
    }
}

void compare(const Options& options)
{
    compareStatements();
    const ScratchFolder folder(roomFor(options.rows));
    DriveWorkload workload(options.rows, folder.path());
    // A round over a large store is long enough to be steady.
    const int rounds = options.rounds > 0 ? options.rounds : options.rows > 500'000 ? 3 : 7;
    fmt::print("{} records of 53 columns, one folder of {}; {} rounds; SQLite {}; stores in {}{}\n", options.rows,
               workload.largeFolderSize(), rounds, sqlite3_libversion(), folder.path().parent_path().string(),
               folder.inMemory() ? "" : "; no memory file system with enough room: expect noise");

    std::vector<Result> results;
    for (const Operation& operation : workload.operations()) {
        if (options.operation.empty() || options.operation == operation.name) {
            fmt::print(stderr, "{} ...\n", operation.title);
            results.push_back(measure(operation, rounds));
        }
    }
    if (results.empty()) {
        throw std::invalid_argument("no operation is called " + options.operation);
    }
    printComparison(results, 1);
    printComparison(results, 2);
}

int run(int argc, char** argv)
{
    Options options;
    CLI::App app{"Measures the library beside direct use of SQLite's C interface, in turn in one process.\n"
                 "The exit code tells whether both did the same work, not how fast."};
    app.add_option("--rows", options.rows, "Records in the drive")->check(CLI::Range(100, 100'000'000));
    app.add_option("--rounds", options.rounds, "Rounds to take the medians of (7; 3 for large stores)")
        ->check(CLI::Range(1, 1000));
    CLI::Option* operation = app.add_option("--operation", options.operation,
                                            "Only this one: insert, insert-bare, read-all, children, by-id or update");
    app.add_option("--side", options.side, "Run one side of the operation once, for a profiler, and print its rows")
        ->check(CLI::IsMember(sides))
        ->needs(operation);
    CLI11_PARSE(app, argc, argv);

    options.side.empty() ? compare(options) : runOneSide(options);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    try {
        return run(argc, argv);
    } catch (const std::exception& error) {
        std::fputs("databaseservice_benchmark: ", stderr);
        std::fputs(error.what(), stderr);
        std::fputs("\n", stderr);
        return 1;
    }
}
