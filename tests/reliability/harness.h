#pragma once

#include "databaseservice/keptconnections.h"
#include "support/faultydisk.h"
#include "support/filebytes.h"
#include "support/sqlitefile.h"
#include "support/storestate.h"
#include "support/testfolder.h"
#include "support/trialrun.h"

#include <atomic>
#include <functional>
#include <map>
#include <optional>
#include <set>

namespace reliability {

/// An operation of a store. What it is tried on is the store as `setUp` leaves it.
struct Operation {
    std::string store; ///< empty: it starts with an empty folder
    std::string name;
    std::function<std::string()> run; ///< gives what the call returned and the rows that it read
    bool onOtherThread = false;       ///< a module's
    bool silent = false;              ///< a plain connection, which does not log that a read broke off
};
const std::vector<Operation>& operations();

/// A store as those see it who add rows to it from many sides at once.
struct Store {
    std::string name;
    std::string file;
    std::string numbers; ///< the SQL that gives those that were added
    std::function<void()> create;
    std::function<void()> fill;
    std::function<void(int)> add; ///< one row that has the number
    std::function<std::size_t()> read;
};
const std::vector<Store>& stores();

/// Fills an empty folder, which the user's database folder is set to, with the store.
void setUp(const std::string& name);

/// Turns this process to a folder that others have set up.
void enter(const std::string& folder);

using testsupport::Run;
using testsupport::State;
/// None, and the run is told, unless all files are sound and nobody has a lock on them.
std::optional<State> soundState(Run& run, const std::filesystem::path& folder);
using Files = std::map<std::string, std::string>;

/// A folder that the stores look into, fresh for each case. The one before is removed, as far as nobody is in it.
class Folders {
public:
    Folders() { fresh(); }
    const std::filesystem::path& fresh(const Files& files = {});
    const std::filesystem::path& path() const { return m_path; }
    /// The files of a store as `setUp` leaves it.
    const Files& filesOf(const std::string& store);

private:
    testsupport::TestFolder m_all;
    std::filesystem::path m_path;
    int m_count = 0;
    std::map<std::string, Files> m_known;
};

/// The numbers of the rows that were added to a store.
std::set<int> numbersIn(const Folders& folders, const Store& store);

/// How many lines the log has that tell of a failure.
std::int64_t failureLines();
struct Outcome {
    std::string result;
    bool threw = false; ///< for want of memory, or by contract at a time that is no number
    std::int64_t failureLines = 0;
};
Outcome perform(const Operation& operation);

/// Operations of one store in a row, as they are when nothing fails.
struct Reference {
    std::vector<State> states;     ///< at first and after each transaction that wrote
    std::vector<std::size_t> ends; ///< how many transactions there were by the end of each operation
    Outcome outcome;               ///< of the last operation
    std::map<testsupport::FaultyDisk::Call, int> calls;
};
using Watch = std::function<void(const testsupport::FaultyDisk::Request&)>;
Reference referenceOf(Folders& folders, const std::vector<Operation>& chain, const Watch& watch = {});
/// Eight operations of a store, the same ones for the same seed.
std::vector<Operation> chainOf(std::uint32_t seed);

/// What cannot be expected without memory: the entry in the list of what stays open, and the line in the log.
struct Allowance {
    bool unlisted = false;
    bool untold = false;
};
/// After a fault is over: what stayed open is listed and locks nothing unless its transaction is open; the file is
/// sound; each row is old or new; whoever left one out or read less said so. Gives how many connections went unlisted.
int expectUnharmed(Run& run, Folders& folders, const Operation& operation, const Reference& reference,
                   const Outcome& outcome, Allowance allowance = {});

// The parts; `killed` is the process that is killed, `member` one of a crowd.
using Part = void(Run& run);
Part faults, memory, kills, power, recovery, damage, crowds, threads, fullDisk, killed, member;

} // namespace reliability
