// A process that is killed: at the n-th change of a file, and from outside at any time. What it had been told is in a
// file of its own, which it writes to before and after each call.

#include "harness.h"
#include "platform/paths.h"
#include "support/process.h"

#include <algorithm>
#include <fstream>
#include <thread>

using namespace testsupport;
using Clock = std::chrono::steady_clock;

namespace reliability {

// killed FOLDER ORACLE CHAIN CHANGE
void killed(Run& run)
{
    const std::vector<Operation> chain = chainOf(static_cast<std::uint32_t>(std::stoul(run.rest.at(2))));
    const std::int64_t change = std::stoll(run.rest.at(3));
    std::ofstream oracle(run.rest.at(1), std::ios::binary | std::ios::app);
    enter(run.rest.at(0));
    const FaultyDisk disk(change > 0 ? FaultyDisk::Fault::Kill : FaultyDisk::Fault::None, change);
    for (const Operation& operation : chain) {
        oracle << (run.control ? "be" : "b") << std::flush; // the control: told too early
        perform(operation);
        oracle << (run.control ? "" : "e") << std::flush;
    }
    std::_Exit(EXIT_SUCCESS); // the modules' threads never end
}

void kills(Run& run)
{
    struct Chain {
        Reference reference;
        std::int64_t changes = 0;
        Clock::duration duration{};
    };
    Folders folders;
    const TestFolder beside;
    const std::filesystem::path oracle = beside.path() / "oracle";
    std::map<std::uint32_t, Chain> chains;
    const auto lastSeed = static_cast<std::uint32_t>(std::min(40, run.part(400)));
    int inTheMiddle = 0;
    for (int kill = 0; kill < run.part(2000); ++kill) {
        const auto seed = static_cast<std::uint32_t>(std::uint64_t{run.seed} * 1000 + run.random() % lastSeed);
        const auto start = [&](std::int64_t atChange) {
            folders.fresh(folders.filesOf(chainOf(seed).front().store));
            writeBytes(oracle, "");
            std::vector<std::string> command{RELIABILITY_PROGRAM, "killed", platform::toUtf8(folders.path())};
            command.insert(command.end(),
                           {platform::toUtf8(oracle), std::to_string(seed), std::to_string(atChange),
                            run.control ? "--control" : ""});
            return command;
        };
        Chain& chain = chains[seed];
        if (chain.changes == 0) {
            chain.reference = referenceOf(folders, chainOf(seed));
            chain.changes = FaultyDisk::changes();
            const Clock::time_point begin = Clock::now();
            run.expect(RunningProgram(start(0)).wait() == 0, "does not end well when nobody kills it");
            chain.duration = Clock::now() - begin;
        }
        const bool fromOutside = kill % 2 == 0;
        const auto atChange = fromOutside ? 0 : 1 + static_cast<std::int64_t>(run.random()) % chain.changes;
        run.trying("chain " + std::to_string(seed) + " killed at change " + std::to_string(atChange));
        RunningProgram process(start(atChange));
        if (fromOutside) {
            std::this_thread::sleep_for(chain.duration * static_cast<int>(run.random() % 1000) / 1000);
            process.kill();
        }
        process.wait();

        const std::string told = bytesOf(oracle);
        const auto begun = static_cast<std::size_t>(std::ranges::count(told, 'b'));
        const auto ended = static_cast<std::size_t>(std::ranges::count(told, 'e'));
        inTheMiddle += ended < begun;
        const auto& [states, ends, outcome, calls] = chain.reference;
        const auto first = states.begin() + static_cast<std::ptrdiff_t>(ended == 0 ? 0 : ends[ended - 1]);
        const auto last = states.begin() + static_cast<std::ptrdiff_t>(begun == 0 ? 0 : ends[begun - 1]) + 1;
        if (const auto found = soundState(run, folders.path())) {
            run.expect(first < last && std::find(first, last, *found) != last,
                       "after " + std::to_string(ended) + " calls something is lost, or a part of a transaction there");
        }
    }
    Run::tell(std::to_string(inTheMiddle) + " of them in the middle of a call");
}

} // namespace reliability
