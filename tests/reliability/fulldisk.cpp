// A disk that stays full, and no more files to open, by the system's limits and on small disks; then there is room.

#include "harness.h"
#include "support/process.h"

using namespace testsupport;

namespace reliability {

namespace {

/// What the system lets this process have; -1 for as much as it wants. False where the system sets no such limit.
struct Limit {
    const char* name;
    bool (*set)(SmallDisk& disk, std::int64_t room);
};
const Limit fileSize{"a full disk", [](SmallDisk&, auto room) { return limitFileSize(room); }};
const Limit files{"no more files to open", [](SmallDisk&, auto room) { return limitOpenFiles(room); }};
const Limit bytes{"a small disk", [](SmallDisk& disk, auto room) { return disk.limit("size", room); }};
const Limit names{"a disk of few files",
                  [](SmallDisk& disk, auto room) { return disk.limit("nr_inodes", room < 0 ? room : 2); }};

/// 2,000 writes fail. The connections that may be closed are, after so many failures each; never for 0.
void fill(Run& run, Folders& folders, const Store& store, const Limit& limit, int closeEvery)
{
    const std::string name = store.name + ", " + limit.name +
        (closeEvery > 0 ? ", closing every " + std::to_string(closeEvery) : ", closing none");
    run.trying(name, 0);
    SmallDisk small(folders.fresh());
    if (!limit.set(small, -1)) {
        return Run::tell(name + ": left out, since this process may not set it up");
    }
    store.create();
    std::set<int> landed;
    int next = 0;
    const auto add = [&] {
        const std::int64_t lines = failureLines();
        store.add(++next);
        return failureLines() == lines && landed.insert(next).second;
    };
    const int filesBefore = openFiles();
    const sqlite3_int64 memoryBefore = sqlite3_memory_used();
    std::int64_t room = &limit == &files ? filesBefore + 3 : std::ssize(bytesOf(folders.path() / store.file)) + 16'384;
    limit.set(small, room);
    while (&limit == &files && add()) {
        limit.set(small, --room); // until one more may be opened, and not its journal
    }
    const int half = run.part(1000);
    for (int lost = 1; lost <= 2 * half; ++lost) {
        while (add()) { // there is room yet
        }
        run.trying(name);
        if (closeEvery > 0 && lost % closeEvery == 0) {
            DatabaseService::CloseKeptConnections();
        }
        if (lost == half && &limit != &files) {
            Run::tell(name + ": after " + std::to_string(half) + " failed writes " +
                      std::to_string(openFiles() - filesBefore) + " more files open and " +
                      std::to_string((sqlite3_memory_used() - memoryBefore) / 1024) + " KiB more used by SQLite");
        }
    }
    limit.set(small, -1);
    DatabaseService::CloseKeptConnections();
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
        for (const Limit* limit : {&fileSize, &files, &bytes, &names}) {
            for (const int closeEvery : {0, 20}) {
                fill(run, folders, store, *limit, closeEvery);
            }
        }
    }
}

} // namespace reliability
