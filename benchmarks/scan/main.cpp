#include "clientservices/globalparamwrapper.h"
#include "databaseservice/driverdbprovider.h"
#include "databaseservice/gallerydbprovider.h"
#include "plainprogram.h"
#include "scratchfolder.h"
#include "usage.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fmt/format.h>
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

    void print() const
    {
        const double time = median([](const Usage& usage) { return usage.processorSeconds; });
        const double written = median([](const Usage& usage) { return static_cast<double>(usage.written); });
        const auto tool = [this](auto value) { return median(value, [](double own, double) { return own; }); };
        const auto plain = [this](auto value) { return median(value, [](double, double other) { return other; }); };
        constexpr auto secondsOf = [](const Usage& usage) { return usage.processorSeconds; };
        constexpr auto bytesOf = [](const Usage& usage) { return static_cast<double>(usage.written) / 1e6; };
        constexpr auto memoryOf = [](const Usage& usage) { return static_cast<double>(usage.memory) / 1e6; };
        fmt::print("{:<32}{:>8.3f}  {:<12}{:>9.3f} s{:>9.3f} s", m_title, time, verdict(time, m_limits.time),
                   tool(secondsOf), plain(secondsOf));
        if (m_limits.written > 0) {
            fmt::print("{:>10.3f}  {:<12}{:>8.1f} MB{:>8.1f} MB", written, verdict(written, m_limits.written),
                       tool(bytesOf), plain(bytesOf));
        }
        const double memory = tool(memoryOf);
        fmt::print("{}memory {:.1f} / {:.1f} MB{}\n", m_limits.written > 0 ? "  " : "    ", memory, plain(memoryOf),
                   m_limits.memory > 0 ? fmt::format(", {}", verdict(memory, m_limits.memory)) : "");
    }

private:
    static std::string verdict(double value, double limit)
    {
        return fmt::format("{:.2f} {}", limit, value <= limit ? "met" : "missed");
    }

    template <class Value, class Combine> double median(Value value, Combine combine) const
    {
        std::vector<double> all;
        for (const auto& [tool, plain] : m_rounds) {
            all.push_back(combine(value(tool), value(plain)));
        }
        std::sort(all.begin(), all.end());
        return all[all.size() / 2];
    }
    template <class Value> double median(Value value) const
    {
        return median(value, [](double own, double other) { return own / other; });
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

void compare(const Options& options, const std::string& self)
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
    fmt::print("{:<32}{:>8}  {:<12}{:>11}{:>11}{:>10}  {:<12}{:>11}{:>11}\n", "dbservice / plain program", "time",
               "limit", "dbservice", "plain", "written", "limit", "dbservice", "plain");
    for (const Job& job : jobs) {
        job.print();
    }
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
        "the\nprocessor's. The exit code tells whether both did the same work, not how fast."};
    app.add_option("FOLDER", options.folder, "What to scan (/usr); it should not change meanwhile");
    app.add_option("--stores", options.stores, "Where the stores lie meanwhile; on a disk, or no bytes are told");
    app.add_option("--rounds", options.rounds, "Rounds to take the medians of")->check(CLI::Range(1, 100));
    CLI::Option* const store = app.add_option("--store", options.store, "The plain program's file");
    app.add_option("--plain", options.plain, "Be the plain program, for one job")
        ->check(CLI::IsMember(plainJobs))
        ->needs(store);
    CLI11_PARSE(app, argc, argv);
    options.plain.empty() ? compare(options, fs::canonical("/proc/self/exe").string()) : runPlain(options);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    try {
        return run(argc, argv);
    } catch (const std::exception& error) {
        std::fputs("scan_benchmark: ", stderr);
        std::fputs(error.what(), stderr);
        std::fputs("\n", stderr);
        return 1;
    }
}
