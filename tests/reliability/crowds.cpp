// Many writers and readers at once, in one process and in several, on every store; at last while somebody has its lock.

#include "harness.h"
#include "platform/paths.h"
#include "support/logcapture.h"
#include "support/process.h"
#include "support/runonthreads.h"

#include <algorithm>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <mutex>
#include <utility>

using namespace testsupport;
using Clock = std::chrono::steady_clock;

namespace reliability {

// member FOLDER RESULT STORE PROCESS THREADS MILLISECONDS: half of the threads write rows of their own numbers, half
// read. Writes a line for each: its first number or -1, how often it came through, its longest wait in milliseconds.
void member(Run& run)
{
    LogCapture log;
    enter(run.rest.at(0));
    const Store& store = *std::ranges::find(stores(), run.rest.at(2), &Store::name);
    const int threads = std::stoi(run.rest.at(4));
    const Clock::time_point start = Clock::now();
    const Clock::time_point end = start + std::chrono::milliseconds(std::stoi(run.rest.at(5)));
    std::mutex mutex;
    std::ofstream result(run.rest.at(1));
    runOnThreads(threads, [&](int thread) {
        const bool writes = thread % 2 == 0;
        const int first = (std::stoi(run.rest.at(3)) * threads + thread) * 10'000'000;
        int count = 0;
        Clock::duration longest{};
        for (Clock::time_point begin = start; begin < end; ++count) {
            writes ? store.add(first + count) : static_cast<void>(store.read());
            const Clock::time_point now = Clock::now();
            longest = std::max(longest, now - std::exchange(begin, now));
        }
        store.create(); // a start, which the others do not mind
        const std::lock_guard lock(mutex);
        result << (writes ? first : -1) << ' ' << count << ' '
               << std::chrono::duration_cast<std::chrono::milliseconds>(longest).count() << '\n';
    });
    result.close();
    if (failureLines() > 0) {
        std::ranges::copy(log.take(), std::ostream_iterator<std::string>(std::cerr, "\n"));
    }
    std::_Exit(failureLines() == 0 ? EXIT_SUCCESS : EXIT_FAILURE);
}

void crowds(Run& run)
{
    constexpr int threads = 16;
    const std::chrono::milliseconds time(run.part(30'000));
    Folders folders;
    const TestFolder beside;
    for (const Store& store : stores()) {
        for (const auto& [processes, held] : {std::pair(1, false), {4, false}, {4, true}}) {
            const std::string name = store.name + ", processes: " + std::to_string(processes) + (held ? ", held" : "");
            run.trying(name);
            folders.fresh();
            store.create();
            auto holder = std::make_unique<SqliteFile>(folders.path() / store.file);
            holder->exec(held ? "BEGIN EXCLUSIVE" : "");
            std::vector<std::unique_ptr<RunningProgram>> members;
            const auto result = [&](int process) { return beside.path() / std::to_string(process); };
            for (int process = 0; process < processes; ++process) {
                std::filesystem::remove(result(process));
                members.push_back(std::make_unique<RunningProgram>(
                    std::vector<std::string>{RELIABILITY_PROGRAM, "member", platform::toUtf8(folders.path()),
                                             platform::toUtf8(result(process)), store.name, std::to_string(process),
                                             std::to_string(threads / processes), std::to_string(time.count())}));
                while (held && !exists(result(process))) {
                    std::this_thread::sleep_for(std::chrono::milliseconds(10));
                }
            }
            std::this_thread::sleep_for(held ? time : std::chrono::milliseconds::zero());
            holder.reset();
            std::set<int> acknowledged;
            std::vector<int> counts[2];
            std::int64_t longest[2] = {};
            for (int process = 0; process < processes; ++process) {
                run.expect(members[static_cast<std::size_t>(process)]->wait() == 0, "a call failed");
                std::ifstream lines(result(process));
                int first = 0;
                int count = 0;
                for (std::int64_t wait = 0; lines >> first >> count >> wait;) {
                    run.trying(name, count);
                    counts[first < 0].push_back(count);
                    longest[first < 0] = std::max(longest[first < 0], wait);
                    run.expect(!held || wait >= time.count(), "did not wait for the lock");
                    // The control: a write is told that was none.
                    for (int number = first; first >= 0 && number < first + count + run.control; ++number) {
                        acknowledged.insert(number);
                    }
                }
            }
            for (const bool reads : {false, true}) {
                const auto [least, most] = std::ranges::minmax(counts[reads]);
                Run::tell(name + ": " + std::to_string(least) + " to " + std::to_string(most) + " calls for each of " +
                          std::to_string(counts[reads].size()) + (reads ? " readers" : " writers") +
                          ", the longest in " + std::to_string(longest[reads]) + " ms");
            }
            run.expect(soundState(run, folders.path()) && numbersIn(folders, store) == acknowledged,
                       "rows are not those that were acknowledged");
        }
    }
}

} // namespace reliability
