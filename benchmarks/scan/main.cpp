#include "clientservices/globalparamwrapper.h"
#include "databaseservice/driverdbprovider.h"
#include "databaseservice/gallerydbprovider.h"
#include "plainprogram.h"
#include "scratchfolder.h"
#include "tellingerrors.h"
#include "usage.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fmt/format.h>
#include <functional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace fs = std::filesystem;

namespace {

using namespace benchmarks;

struct Options {
    std::string folder = "/usr";
    int rounds = 5;
    fs::path stores = fs::temp_directory_path();
    bool strict = false;
    std::string plain;
    std::string store;
};

const std::vector<std::string> plainJobs{"fill", "walk-and-read", "count", "count-below-root", "fill-gallery"};

struct Limits {
    double time;
    double written = 0; ///< 0 where next to nothing is
    double memory = 0;  ///< in megabytes, 0 where none matters
};

constexpr double maximumMemory = 64;

class Job {
public:
    Job(std::string title, std::vector<std::string> tool, std::vector<std::string> plain, Limits limits)
        : m_title(std::move(title)),
          m_tool(std::move(tool)),
          m_plain(std::move(plain)),
          m_limits(limits)
    {
    }

    /// Which side goes first changes from round to round.
    void runRound(bool toolFirst)
    {
        const Usage first = usageOf(toolFirst ? m_tool : m_plain);
        const Usage second = usageOf(toolFirst ? m_plain : m_tool);
        m_rounds.push_back(toolFirst ? std::pair(first, second) : std::pair(second, first));
    }

    /// Whether all limits are met, that of the time in one round at least: others may keep the processors busy.
    bool print() const
    {
        const auto seconds = [](const Usage& usage) { return usage.processorSeconds; };
        const auto written = [](const Usage& usage) { return static_cast<double>(usage.written) / 1e6; };
        const auto memory = [](const Usage& usage) { return static_cast<double>(usage.memory) / 1e6; };
        const auto own = [this](auto value) { return median(value, [](double tool, double) { return tool; }); };
        const auto other = [this](auto value) { return median(value, [](double, double plain) { return plain; }); };
        const auto ratio = [this](auto value) { return median(value, std::divides<>()); };
        const auto verdict = [](double value, double limit) {
            return fmt::format("{:.2f} {}", limit, value <= limit ? "met" : "missed");
        };
        fmt::print("{:<24}{:>8.3f}  {:<12}{:>7.3f} /{:>7.3f} s", m_title, ratio(seconds),
                   verdict(ratio(seconds), m_limits.time), own(seconds), other(seconds));
        fmt::print("{:>8.1f} /{:>6.1f} MB  {:<10}", own(memory), other(memory),
                   m_limits.memory > 0 ? verdict(own(memory), m_limits.memory) : "");
        if (m_limits.written > 0 && other(written) > 0) {
            fmt::print("{:>8.3f}  {:<12}{:>7.1f} /{:>6.1f} MB", ratio(written),
                       verdict(ratio(written), m_limits.written), own(written), other(written));
        }
        fmt::print("\n");
        const bool quickOnce = std::any_of(m_rounds.begin(), m_rounds.end(), [&](const auto& round) {
            return seconds(round.first) <= m_limits.time * seconds(round.second);
        });
        return quickOnce && (m_limits.memory == 0 || own(memory) <= m_limits.memory) &&
            (m_limits.written == 0 || own(written) <= m_limits.written * other(written));
    }

private:
    template <class Value, class Combine> double median(Value value, Combine combine) const
    {
        std::vector<double> all;
        for (const auto& [tool, plain] : m_rounds) {
            all.push_back(combine(value(tool), value(plain)));
        }
        std::sort(all.begin(), all.end());
        return all[all.size() / 2];
    }
    std::string m_title;
    std::vector<std::string> m_tool;
    std::vector<std::string> m_plain;
    Limits m_limits;
    std::vector<std::pair<Usage, Usage>> m_rounds;
};

constexpr const char* driveFile = "DriveModuleData.dat";
constexpr const char* galleryFile = "gallery.dat";

/// Empty stores for the plain program, with all tables and indexes.
void layDown(const fs::path& folder)
{
    fs::create_directory(folder);
    GlobalParamWrapper::GetInstance()->SetUserDataBaseFolder(folder.generic_wstring());
    DatabaseService::DriverDBProvider().InitDatabase();
    DatabaseService::GalleryDBProvider::InitGalleryDatabase(fs::path(galleryFile).generic_wstring());
}

/// Whether all limits are met.
bool compare(const Options& options, const std::string& self)
{
    const ScratchFolder scratch(options.stores);
    const std::string folder = fs::canonical(options.folder).string();
    const fs::path store = scratch.path() / "store";
    const fs::path plainStore = scratch.path() / "plain";
    const auto tool = [&](std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {DBSERVICE_PROGRAM, "--quiet", "--folder", store.string()});
        return arguments;
    };
    const auto plain = [&](const std::string& job, const fs::path& file) {
        return std::vector<std::string>{self, "--plain", job, "--store", file.string(), folder};
    };

    std::vector<Job> jobs;
    jobs.emplace_back("first scan", tool({"scan", folder}), plain("fill", plainStore / driveFile),
                      Limits{1.0, 1.5, maximumMemory});
    // What only reads gets the same store on both sides.
    jobs.emplace_back("scan without changes", tool({"scan", folder}), plain("walk-and-read", store / driveFile),
                      Limits{1.5, 0, maximumMemory});
    jobs.emplace_back("count", tool({"count"}), plain("count", store / driveFile), Limits{1.2});
    jobs.emplace_back("stat /", tool({"stat", "/"}), plain("count-below-root", store / driveFile), Limits{1.2});
    jobs.emplace_back("gallery import", tool({"gallery", "import", "--gallery", galleryFile, folder}),
                      plain("fill-gallery", plainStore / galleryFile), Limits{1.0, 1.5, maximumMemory});
    for (int round = 0; round < options.rounds; ++round) {
        fmt::print(stderr, "round {} ...\n", round + 1);
        fs::remove_all(store);
        fs::remove_all(plainStore);
        layDown(plainStore);
        for (Job& job : jobs) {
            job.runRound(round % 2 == 0);
        }
        requireSameRows(store / driveFile, plainStore / driveFile, "DriveDataTable");
        requireSameRows(store / galleryFile, plainStore / galleryFile, "GalleryFile");
        requireSameRows(store / galleryFile, plainStore / galleryFile, "Album");
    }
    fmt::print("{}; {} rounds; stores in {}\n", folder, options.rounds, scratch.path().parent_path().string());
    fmt::print("{:<24}{:>8}  {:<12}{:<18}{:<18}{:<12}{:>8}\n", "dbservice / plain", "time", "limit", "", "  memory",
               "limit", "written");
    const auto missed = std::count_if(jobs.begin(), jobs.end(), [](const Job& job) { return !job.print(); });
    return missed == 0;
}

void runPlain(const Options& options)
{
    const PlainProgram program(options.store);
    if (options.plain == "fill") {
        program.fill(options.folder);
    } else if (options.plain == "walk-and-read") {
        program.walkAndRead(options.folder);
    } else if (options.plain == "count") {
        program.count();
    } else if (options.plain == "fill-gallery") {
        program.fillGallery(options.folder);
    } else {
        program.countBelowRoot();
    }
}

int run(int argc, char** argv)
{
    Options options;
    CLI::App app{
        "Measures `dbservice` on a real folder beside a plain program that does the same, in turn. The time is "
        "the\nprocessor's. The exit code tells whether both did the same work."};
    app.add_option("FOLDER", options.folder, "What to scan (/usr); it should not change meanwhile");
    app.add_option("--stores", options.stores, "Where the stores lie meanwhile; on a disk, or no bytes are told");
    app.add_option("--rounds", options.rounds, "Rounds to take the medians of")->check(CLI::Range(1, 100));
    CLI::Option* const store = app.add_option("--store", options.store, "The plain program's file");
    app.add_flag("--strict", options.strict, "Fail when a limit is missed");
    app.add_option("--plain", options.plain, "Be the plain program, for one job")
        ->check(CLI::IsMember(plainJobs))
        ->needs(store);
    CLI11_PARSE(app, argc, argv);
    if (options.plain.empty()) {
        const bool met = compare(options, fs::canonical("/proc/self/exe").string());
        return met || !options.strict ? 0 : 1;
    }
    runPlain(options);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    return benchmarks::tellingErrors("scan_benchmark", [&] { return run(argc, argv); });
}
