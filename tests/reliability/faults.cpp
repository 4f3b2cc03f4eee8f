// Faults of the disk: the n-th call of each kind fails, once and from then on.

#include "harness.h"

using testsupport::FaultyDisk;
using Call = FaultyDisk::Call;

namespace reliability {

namespace {

struct Kind {
    Call call;
    const char* name;
    int code;
};
// Not an unlock: who cannot give a lock back has it until the connection closes, and all others wait.
const Kind kinds[] = {
    {Call::Open, "open", SQLITE_CANTOPEN},
    {Call::Read, "read", SQLITE_IOERR_READ},
    {Call::Write, "write", SQLITE_IOERR_WRITE},
    {Call::Write, "write on a full disk", SQLITE_FULL},
    {Call::Truncate, "truncate", SQLITE_IOERR_TRUNCATE},
    {Call::Flush, "flush", SQLITE_IOERR_FSYNC},
    {Call::Size, "size", SQLITE_IOERR_FSTAT},
    {Call::Lock, "lock", SQLITE_IOERR_LOCK},
    {Call::Reserved, "check of a lock", SQLITE_IOERR_CHECKRESERVEDLOCK},
    {Call::Delete, "delete", SQLITE_IOERR_DELETE},
    {Call::Exists, "look for a file", SQLITE_IOERR_ACCESS},
};

void fail(Run& run, Folders& folders, const Operation& operation, const Reference& reference, const Kind& kind,
          int number, bool lasts)
{
    run.trying(operation.store + ' ' + operation.name + ", " + kind.name + ' ' + std::to_string(number) +
               (lasts ? " and from then on" : ""));
    folders.fresh(folders.filesOf(operation.store));
    Outcome outcome;
    {
        std::atomic<int> seen = 0;
        const FaultyDisk disk([&](const FaultyDisk::Request& request) {
            const bool due = request.call == kind.call && (++seen == number || (lasts && seen > number));
            // The control: a write that fails says that it has succeeded.
            return !due ? SQLITE_OK : run.control ? SQLITE_DONE : kind.code;
        });
        outcome = perform(operation);
    }
    expectUnharmed(run, folders, operation, reference, outcome);
}

} // namespace

void faults(Run& run)
{
    Folders folders;
    for (const Operation& operation : operations()) {
        Reference reference = referenceOf(folders, {operation});
        for (const Kind& kind : kinds) {
            for (int number = 1; number <= reference.calls[kind.call]; ++number) {
                for (const bool lasts : {false, true}) {
                    if (run.takes() && (!run.control || kind.call == Call::Write)) {
                        fail(run, folders, operation, reference, kind, number, lasts);
                    }
                }
            }
        }
    }
}

} // namespace reliability
