// The loss of power: what was not flushed is there, is not there or is torn, folder entries included. And a fault while
// a journal that was left behind is played back.

#include "harness.h"
#include "support/lostpower.h"

#include <algorithm>
#include <list>

using namespace testsupport;
using Call = FaultyDisk::Call;
using Request = FaultyDisk::Request;

namespace reliability {

namespace {

/// What the disk was asked while a chain of operations ran.
struct Recording {
    Recording(Run& run, Folders& folders)
        : seed(static_cast<std::uint32_t>(run.random() % 100'000)),
          store(chainOf(seed).front().store)
    {
        reference = referenceOf(folders, chainOf(seed), [this](const Request& request) {
            Request& copy = requests.emplace_back(request);
            copy.file = texts.emplace_back(request.file);
            copy.bytes = texts.emplace_back(request.bytes);
        });
    }

    /// Runs it again before `look`, which gets each request, its number and how many transactions are over.
    template <class Look> void replay(Folders& folders, bool losesFlushes, Look look) const
    {
        UnsureDisk disk(folders.filesOf(store));
        std::size_t over = 0;
        for (std::size_t at = 0; at < requests.size(); ++at) {
            disk.take(requests[at], losesFlushes);
            over += requests[at].call == Call::Delete;
            look(disk, requests[at], at, over);
        }
    }

    std::uint32_t seed;
    std::string store;
    Reference reference;
    std::vector<Request> requests;
    std::list<std::string> texts;
};

} // namespace

void power(Run& run)
{
    Folders folders;
    int undone = 0;
    int undoneCalls = 0;
    for (int chain = 0; chain < run.part(100); ++chain) {
        const Recording recording(run, folders);
        const auto& states = recording.reference.states;
        const double share = 100.0 / static_cast<double>(recording.requests.size());
        recording.replay(folders, run.control, [&](UnsureDisk& disk, const Request&, std::size_t at, std::size_t over) {
            if (static_cast<double>(run.random()) >= share * 0x1p32) {
                return;
            }
            run.trying("chain " + std::to_string(recording.seed) + " cut after request " + std::to_string(at));
            bool deletionUndone = false;
            if (const auto found = soundState(run, folders.fresh(disk.cut(run.random, deletionUndone)))) {
                const bool isWhole = *found == states[over];
                const bool isBefore = !isWhole && deletionUndone && over > 0 && *found == states[over - 1];
                undone += isBefore;
                undoneCalls += isBefore && std::ranges::count(recording.reference.ends, over) > 0;
                run.expect(isWhole || isBefore, "what was committed is lost, or a part of a transaction there");
            }
        });
    }
    Run::tell(std::to_string(undone) + " cuts undid the last transaction with the deletion of its journal, in " +
              std::to_string(undoneCalls) + " of them the last of its call");
}

void recovery(Run& run)
{
    Folders folders;
    for (int chain = 0; chain < run.part(60); ++chain) {
        const Recording recording(run, folders);
        const Store& store = *std::ranges::find(stores(), recording.store, &Store::name);
        const auto tryAfter = [&](UnsureDisk& disk, const Request& last, std::size_t at, std::size_t over) {
            if (last.call != Call::Write || !last.file.ends_with(".dat") || run.random() % 2 != 0) {
                return;
            }
            const auto kind = static_cast<Call>(run.random() % FaultyDisk::callKinds);
            const int number = 1 + static_cast<int>(run.random() % 6);
            folders.fresh(disk.all());
            int seen = 0;
            {
                const FaultyDisk faulty([&](const Request& request) {
                    if (run.control) { // what is played back goes nowhere, and the journal is deleted
                        return request.call == Call::Write ? SQLITE_DONE : SQLITE_OK;
                    }
                    seen += request.call == kind && kind != Call::Unlock;
                    return request.call == kind && seen == number ? SQLITE_IOERR : SQLITE_OK;
                });
                store.read();
            }
            if (seen < number && !run.control) {
                return; // nothing has failed
            }
            run.trying("chain " + std::to_string(recording.seed) + " killed at request " + std::to_string(at) +
                       ", then call " + std::to_string(number) + " of kind " + std::to_string(static_cast<int>(kind)));
            DatabaseService::CloseKeptConnections(DatabaseService::OpenTransactions::RollBack);
            if (const auto found = soundState(run, folders.path())) {
                run.expect(*found == recording.reference.states[over], "the last transaction is not whole");
            }
        };
        for (int time = 0; time < 4; ++time) {
            recording.replay(folders, false, tryAfter);
        }
    }
}

} // namespace reliability
