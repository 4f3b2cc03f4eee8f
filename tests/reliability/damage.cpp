// Files that are damaged or made up to do harm, under every operation.

#include "harness.h"
#include "support/damagedfile.h"

using namespace testsupport;

namespace reliability {

void damage(Run& run)
{
    Folders folders;
    int told = 0;
    for (int left = run.part(10'000); left > 0; --left) {
        const Operation& operation = operations()[run.random() % operations().size()];
        Files files = folders.filesOf(operation.store);
        if (files.empty()) {
            continue; // starts with nothing
        }
        const std::string name = files.begin()->first;
        const auto way = static_cast<std::size_t>(run.random());
        run.trying(operation.store + ' ' + operation.name + " on damage " + std::to_string(way % waysToDamage()));
        files["untouched"] = "to be left alone";
        folders.fresh(files);
        const FaultyDisk disk; // knows the open files
        damageFile(folders.path() / name, way % waysToDamage(), run.random);
        const std::int64_t lines = failureLines();
        perform(operation);
        told += failureLines() > lines;
        if (run.control) { // a store's file is not the only one that is written to
            writeBytes(folders.path() / "untouched", "");
        }
        DatabaseService::CloseKeptConnections(DatabaseService::OpenTransactions::RollBack);
        run.expect(FaultyDisk::openDatabases() == 0, "a file stays open");
        run.expect(bytesOf(folders.path() / "untouched") == files["untouched"], "another file was written to");
        for (const auto& [there, bytes] : contents(folders.path())) {
            run.expect(files.contains(there) || there.starts_with(name + '-'), "there is a file " + there);
        }
    }
    Run::tell(std::to_string(told) + " operations told of it");
}

} // namespace reliability
