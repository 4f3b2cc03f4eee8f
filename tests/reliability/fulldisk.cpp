// A disk that stays full, and a process that may open no more files, by the system's own limits; then there is room.

#include "databaseservice/keptconnections.h"
#include "harness.h"
#include "support/process.h"

using DatabaseService::CloseKeptConnections;
using namespace testsupport;

namespace reliability {

namespace {

/// 2,000 writes fail. The connections that may be closed are, after so many failures each; never for 0.
void fill(Run& run, Folders& folders, const Store& store, bool limitsFiles, int closeEvery)
{
    const std::string name = store.name + (limitsFiles ? ", no more files to open" : ", a full disk") +
        (closeEvery > 0 ? ", closing every " + std::to_string(closeEvery) : ", closing none");
    run.trying(name, 0);
    folders.fresh();
    store.create();
    std::set<int> landed;
    int next = 0;
    const auto add = [&] {
        const std::int64_t lines = failureLines();
        store.add(++next);
        if (failureLines() == lines) {
            landed.insert(next);
        }
        return failureLines() == lines;
    };
    const int filesBefore = openFiles();
    const sqlite3_int64 memoryBefore = sqlite3_memory_used();
    std::int64_t room = limitsFiles
        ? filesBefore + 3
        : static_cast<std::int64_t>(std::filesystem::file_size(folders.path() / store.file));
    const auto limit = limitsFiles ? limitOpenFiles : limitFileSize;
    if (!limit(room)) {
        return Run::tell(name + ": this system has no such limit");
    }
    while (limitsFiles && add()) {
        limit(--room); // until one more may be opened, and not its journal
    }
    const int half = run.part(1000);
    for (int lost = 0; lost < 2 * half;) {
        if (add()) {
            continue;
        }
        run.trying(name);
        ++lost;
        if (closeEvery > 0 && lost % closeEvery == 0) {
            CloseKeptConnections();
        }
        if (lost == half && !limitsFiles) {
            Run::tell(name + ": after " + std::to_string(half) + " failed writes " +
                      std::to_string(openFiles() - filesBefore) + " more files open and " +
                      std::to_string((sqlite3_memory_used() - memoryBefore) / 1024) + " KiB more used by SQLite");
        }
    }
    limit(-1);
    CloseKeptConnections();
    run.expect(openFiles() == filesBefore && DatabaseService::ListKeptConnections().empty(), "something stays open");
    run.expect(add(), "there is room again, and a write fails");
    if (run.control) {
        landed.erase(landed.begin()); // an acknowledgement is lost
    }
    run.expect(soundState(run, folders.path()) && numbersIn(folders, store) == landed,
               "rows are not those that landed");
}

} // namespace

void fullDisk(Run& run)
{
    Folders folders;
    for (const Store& store : stores()) {
        for (const bool limitsFiles : {false, true}) {
            for (const int closeEvery : {0, 20}) {
                fill(run, folders, store, limitsFiles, closeEvery);
            }
        }
    }
}

} // namespace reliability
