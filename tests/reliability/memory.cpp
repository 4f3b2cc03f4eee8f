// Memory that runs out, at each allocation of C++ and of SQLite in turn.

#include "harness.h"
#include "support/limitedmemory.h"

using namespace testsupport;

namespace reliability {

void memory(Run& run)
{
    constexpr int enough = 1 << 30;
    Folders folders;
    int unlisted = 0;
    int stuck = 0;
    for (const Operation& operation : operations()) {
        if (operation.onOtherThread) {
            continue; // the shortage is this thread's
        }
        Reference reference = referenceOf(folders, {operation});
        const auto performWith = [&](int allocations, Shortage shortage) {
            folders.fresh(folders.filesOf(operation.store));
            // A commit that fails for want of memory keeps its lock, and the next transaction of the same call would
            // wait for it without end; after so many tries it is told that it cannot have it.
            int patience = reference.calls[FaultyDisk::Call::Lock] + 20;
            const FaultyDisk disk([&](const FaultyDisk::Request& request) {
                patience -= request.call == FaultyDisk::Call::Lock;
                stuck += patience == 0;
                return patience <= 0 && request.call == FaultyDisk::Call::Lock ? SQLITE_IOERR_LOCK : SQLITE_OK;
            });
            setAllocationsLeft(allocations, shortage);
            const Outcome outcome = perform(operation);
            const int left = allocationsLeft();
            setAllocationsLeft(-1);
            return std::pair(outcome, left);
        };
        const int needed = enough - performWith(enough, Shortage::Lasting).second;
        DatabaseService::CloseKeptConnections();
        for (int number = 0; number < 2 * needed; ++number) {
            if (!run.takes(0.05)) {
                continue;
            }
            const Shortage shortage = number % 2 == 0 ? Shortage::Lasting : Shortage::Passing;
            run.trying(operation.store + ' ' + operation.name + ", allocation " + std::to_string(number / 2) +
                       (shortage == Shortage::Lasting ? " and from then on" : ""));
            Outcome outcome = performWith(number / 2, shortage).first;
            if (run.control) { // what told of the failure gets lost
                outcome.failureLines = 0;
                outcome.threw = false;
            }
            unlisted += expectUnharmed(run, folders, operation, reference, outcome,
                                       {.unlisted = true, .untold = shortage == Shortage::Lasting});
        }
    }
    Run::tell(std::to_string(unlisted) + " connections stayed open without memory for the entry that lists them, and " +
              std::to_string(stuck) + " calls would have waited for a lock of their own");
}

} // namespace reliability
