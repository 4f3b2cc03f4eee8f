// The tool is killed while it works: at the n-th change of a file, and from outside at any time. Then it is run again.

#include "toolharm.h"

#include "legacysample/legacysample.h"
#include "support/sqlitefile.h"
#include "support/storestate.h"

#include <regex>
#include <set>
#include <thread>

using namespace testsupport;
using Clock = std::chrono::steady_clock;

namespace toolharm {

namespace {

/// What `given` holds stays as it is. What comes of it is in `made`.
struct Job {
    std::string name;
    std::string line;
    void (*setUp)(const Bench& bench);
    bool once = false; ///< what is made may not be there before
};

void makeTree(const Bench& bench)
{
    for (int i = 0; i < 60; ++i) {
        writeFile(bench.at("given/" + std::to_string(i % 7) + "/picture" + std::to_string(i) + ".jpg"),
                  std::string(static_cast<std::size_t>(i), 'x'));
    }
}

void makeStores(const Bench& bench, const std::string& folder)
{
    makeTree(bench);
    bench.make("--folder @/made init");
    bench.make("--folder @/made scan @/given");
    std::filesystem::rename(bench.at("made"), bench.at("stores"));
    std::filesystem::remove_all(bench.at("given"));
    std::filesystem::rename(bench.at("stores"), bench.at(folder));
}

const Job jobs[]{
    {"scan", "--folder @/made scan @/given", makeTree},
    {"second scan", "--folder @/made scan @/given",
     [](const Bench& bench) {
         makeTree(bench);
         bench.make("--folder @/made scan @/given");
         std::filesystem::remove_all(bench.at("given/3"));
         writeFile(bench.at("given/new/file"), "x");
     }},
    {"import", "--folder @/made gallery import @/given --gallery g.dat", makeTree},
    {"migration", "--folder @/made migrate @/given/legacy.dat --gallery g.dat",
     [](const Bench& bench) {
         writeFile(bench.at("given/legacy.dat"), "");
         legacysample::write(bench.at("given/legacy.dat"), 60);
     }},
    {"repair", "check --repair @/made/DriveModuleData.dat",
     [](const Bench& bench) {
         makeStores(bench, "made");
         SqliteFile file(bench.at("made/DriveModuleData.dat"), SqliteFile::Collation::NameCompare);
         file.exec("DROP INDEX nameIndex; DROP INDEX sizeIndex; CREATE INDEX sizeIndex ON DriveDataTable(kind)");
     }},
    {"recovery", "recover @/given/DriveModuleData.dat @/made/DriveModuleData.dat",
     [](const Bench& bench) {
         makeStores(bench, "given");
         writeFile(bench.at("made/beside"), "");
         const std::string bytes = bytesOf(bench.at("given/DriveModuleData.dat"));
         const std::size_t middle = bytes.size() / 8192 * 4096;
         writeBytes(bench.at("given/DriveModuleData.dat"), std::string(bytes).replace(middle, 4096, 4096, '\0'));
     },
     true},
    {"copy", "--folder @/given copy-out @/made", [](const Bench& bench) { makeStores(bench, "given"); }, true},
};

/// All rows. Times of the run, and what is made of them, are left out.
State rowsIn(const Bench& bench)
{
    static const std::regex time("[0-9]{10,}");
    State rows;
    for (const auto& [key, cells] : stateOf(bench.at("made"))) {
        rows[std::regex_replace(key, time, "")] += std::regex_replace(cells, time, "");
    }
    rows.erase("main.dat 'UserProperties''LegacyMigration'"); // counts what that run has written
    return rows;
}

/// What the drive store and each copy of it hold, whose indexes may be damaged.
std::set<std::string> plainRows(const Bench& bench)
{
    std::set<std::string> rows;
    for (const auto& [name, bytes] : bench.files("made")) {
        const bool isStore = name.find("DriveModuleData.dat") != std::string::npos;
        if (isStore && name.find(".partial") == std::string::npos && !name.ends_with("-journal")) {
            rows.insert(SqliteFile(bench.at("made/" + name), SqliteFile::Collation::NameCompare)
                            .text("SELECT * FROM DriveDataTable NOT INDEXED"));
        }
    }
    return rows;
}

void killOne(Run& run, const Job& job)
{
    const Bench bench;
    bench.lay({});
    job.setUp(bench);
    const Files start = bench.files();
    const bool isRepair = job.name == "repair";
    const std::set<std::string> plain = isRepair ? plainRows(bench) : std::set<std::string>();
    bench.lay(start);
    const Words words = bench.words(job.line);
    const Clock::time_point begin = Clock::now();
    const Ran whole = bench.run(words, 0);
    const Clock::duration duration = Clock::now() - begin;
    const State rows = rowsIn(bench);
    const std::int64_t changes = std::stoll(whole.out);
    int inTheMiddle = 0;
    for (int kill = 0; kill < run.part(60); ++kill) {
        const std::int64_t atChange = kill % 3 == 2 ? 0 : 1 + static_cast<std::int64_t>(run.random()) % changes;
        run.trying(job.name + " killed at change " + std::to_string(atChange));
        bench.lay(start);
        const Files before = bench.files("given");
        if (atChange > 0) {
            inTheMiddle += bench.run(words, atChange).code != whole.code;
        } else {
            RunningProgram process(Bench::program(words, INT64_MAX));
            std::this_thread::sleep_for(duration * static_cast<int>(run.random() % 1000) / 1000);
            process.kill();
            inTheMiddle += process.wait() != whole.code;
        }
        run.expect(bench.files("given") == before, "what it reads has changed");
        try {
            run.expect(!isRepair || plainRows(bench) == plain, "the store or a copy of it has other rows");
            const bool isThere = job.once && exists(bench.at("made/DriveModuleData.dat"));
            if (!isThere && !run.control) { // the control: what has been killed is not run again
                const Ran again = bench.run(words);
                const bool isDone = again.out.starts_with("The store has been migrated to before"); // loss and all
                run.expect(again.code == (isDone ? 0 : whole.code), "run again it ends otherwise: " + again.err);
            }
            std::string others;
            for (const auto& [row, cells] : differences(rowsIn(bench), rows)) {
                others += '\n' + row + ' ' + cells;
            }
            run.expect(others.empty(), "run again it comes to other rows:" + others.substr(0, 400));
            run.expect(bench.files("given") == before, "what it reads has changed when it is run again");
        } catch (const std::exception& error) {
            run.expect(false, error.what());
        }
    }
    Run::tell(job.name + ": " + std::to_string(changes) + " changes, killed in the middle " +
              std::to_string(inTheMiddle) + " times");
}

} // namespace

void kills(Run& run)
{
    for (const Job& job : jobs) {
        killOne(run, job);
    }
}

} // namespace toolharm
