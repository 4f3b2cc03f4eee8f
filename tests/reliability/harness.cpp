#include "harness.h"

#include "clientservices/cloudlogger.h"
#include "clientservices/globalparamwrapper.h"
#include "clientservices/logsinks.h"
#include "platform/paths.h"
#include "platform/programentry.h"
#include "platform/text.h"
#include "support/limitedmemory.h"

#include <algorithm>
#include <iostream>

namespace fs = std::filesystem;
using namespace testsupport;

namespace reliability {

namespace {

std::atomic<std::int64_t> linesOfFailure = 0;

/// Counts, and needs no memory for that. The plain connections' lines are of another severity.
class FailureCount : public Logger::LogSink {
public:
    void Write(const Logger::LogEntry& entry) override
    {
        linesOfFailure += entry.IsFailure() || entry.message.find(" failed") != std::string::npos;
    }
};

const std::map<std::string, Part*> parts{
    {"faults", faults},     {"memory", memory}, {"kills", kills},   {"power", power},
    {"recovery", recovery}, {"damage", damage}, {"crowds", crowds}, {"threads", threads},
    {"fulldisk", fullDisk}, {"killed", killed}, {"member", member},
};

} // namespace

void enter(const std::string& folder)
{
    const Folders elsewhere; // the gallery's name is kept for the process
    std::ranges::find(stores(), "gallery", &Store::name)->create();
    GlobalParamWrapper::GetInstance()->SetUserDataBaseFolder(platform::toWide(folder));
}

std::optional<State> soundState(Run& run, const fs::path& folder)
{
    try {
        return stateOf(folder);
    } catch (const std::runtime_error& error) {
        run.expect(false, error.what());
        return std::nullopt;
    }
}

const fs::path& Folders::fresh(const Files& files)
{
    std::error_code ignored;
    fs::remove_all(m_path, ignored);
    m_path = m_all.path() / std::to_string(++m_count);
    fs::create_directory(m_path);
    for (const auto& [name, bytes] : files) {
        writeBytes(m_path / name, bytes);
    }
    GlobalParamWrapper::GetInstance()->SetUserDataBaseFolder(platform::toWide(platform::toUtf8(m_path)));
    return m_path;
}

const Files& Folders::filesOf(const std::string& store)
{
    if (!m_known.contains(store)) {
        const FaultyDisk disk; // does not flush
        fresh();
        setUp(store);
        m_known[store] = contents(m_path);
    }
    return m_known[store];
}

std::set<int> numbersIn(const Folders& folders, const Store& store)
{
    std::set<int> numbers;
    for (const auto& row : SqliteFile(folders.path() / store.file).query(store.numbers)) {
        numbers.insert(std::stoi(row[0]));
    }
    return numbers;
}

std::int64_t failureLines()
{
    return linesOfFailure;
}

Outcome perform(const Operation& operation)
{
    Outcome outcome;
    const std::int64_t before = linesOfFailure;
    try {
        outcome.result = operation.run();
    } catch (const std::exception&) {
        outcome.threw = true;
    }
    outcome.failureLines = linesOfFailure - before;
    return outcome;
}

Reference referenceOf(Folders& folders, const std::vector<Operation>& chain, const Watch& watch)
{
    std::vector<Files> steps{folders.filesOf(chain.front().store)};
    folders.fresh(steps.front());
    Reference reference;
    {
        const FaultyDisk disk([&](const FaultyDisk::Request& request) {
            ++reference.calls[request.call];
            if (request.call == FaultyDisk::Call::Delete) { // of the journal, which ends the transaction
                steps.push_back(contents(folders.path()));
                steps.back().erase(fs::path(request.file).filename().string());
            }
            if (watch) {
                watch(request);
            }
            return SQLITE_OK;
        });
        for (const Operation& operation : chain) {
            reference.outcome = perform(operation);
            reference.ends.push_back(steps.size() - 1);
        }
    }
    DatabaseService::CloseKeptConnections();
    for (const Files& step : steps) {
        reference.states.push_back(stateOf(folders.fresh(step)));
    }
    return reference;
}

std::vector<Operation> chainOf(std::uint32_t seed)
{
    std::mt19937 random(seed);
    const std::string& store = stores()[random() % stores().size()].name;
    std::vector<Operation> chain;
    while (chain.size() < 8) {
        const Operation& drawn = operations()[random() % operations().size()];
        chain.resize(chain.size() + (drawn.store == store), drawn);
    }
    return chain;
}

int expectUnharmed(Run& run, Folders& folders, const Operation& operation, const Reference& reference,
                   const Outcome& outcome, Allowance allowance)
{
    static int unlistedBefore = 0;
    static int lockedBefore = 0;
    const auto listed = [] { return static_cast<int>(DatabaseService::ListKeptConnections().size()); };
    const int unlisted = FaultyDisk::openDatabases() - unlistedBefore - listed();
    const int locked = FaultyDisk::lockedDatabases() - lockedBefore;
    run.expect(unlisted == 0 || (unlisted > 0 && allowance.unlisted), "what stays open is not what is listed");
    DatabaseService::CloseKeptConnections();
    run.expect(locked <= listed() + unlisted, "a connection without a transaction holds a lock");
    DatabaseService::CloseKeptConnections(DatabaseService::OpenTransactions::RollBack);
    unlistedBefore = FaultyDisk::openDatabases();
    lockedBefore = FaultyDisk::lockedDatabases();
    if (unlisted != 0) {
        folders.fresh(contents(folders.path())); // as another process would find it
    }
    const auto found = soundState(run, folders.path());
    if (!found) {
        return unlisted;
    }
    State all = *found;
    for (const State& state : reference.states) {
        all.insert(state.begin(), state.end());
    }
    for (const auto& entry : all) {
        const auto cells = [&key = entry.first](const State& state) {
            const auto row = state.find(key);
            return row == state.end() ? "" : row->second;
        };
        run.expect(std::ranges::find(reference.states, cells(*found), cells) != reference.states.end(),
                   entry.first + " is neither old nor new");
    }
    const bool isWhole = *found == reference.states.back() && outcome.result == reference.outcome.result;
    run.expect(isWhole || outcome.threw || outcome.failureLines > 0 || allowance.untold || operation.silent,
               "something was left out, and no line tells of it");
    return unlisted;
}

} // namespace reliability

int platform::programMain(const std::vector<std::string>& arguments)
{
    using namespace reliability;
    Run::watch();
    limitSqliteMemory();
    Logger::CloudLogger::GetInstance()->AddSink(std::make_shared<FailureCount>());
    try {
        Run run(arguments);
        parts.at(run.name)(run);
        return run.end();
    } catch (const std::exception& error) {
        std::cerr << "reliability PART [--share 0.1] [--seconds 10] [--seed 1] [--control]: " << error.what() << '\n';
        return 2;
    }
}
