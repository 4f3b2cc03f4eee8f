#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace benchmarks {

/// One way of doing an operation. Only `run` is measured.
struct Contender {
    std::string name;
    std::function<void()> prepare;
    std::function<void()> run;
    /// How many rows `run` wrote or read. Throws `std::runtime_error` when they are not
    /// the right ones. Lets go of them.
    std::function<std::size_t()> check;
};

/// The same work for several contenders. The first one is measured against each of the others.
struct Operation {
    std::string name; ///< on the command line
    std::string title;
    double target = 0; ///< the ratio to the second contender that is to be reached
    std::vector<Contender> contenders;
    std::optional<std::size_t> memoryTarget; ///< for extra memory, in bytes
};

struct Measurement {
    std::vector<double> seconds;            ///< one value a round
    std::optional<std::size_t> extraMemory; ///< of the worst round, in bytes
};

struct Result {
    Operation operation;
    std::vector<Measurement> measurements; ///< one for each contender
};

/// Runs all contenders in turn, round after round, each round in another order, after one round that does not count.
/// Throws what `check` throws, and `std::runtime_error` after an interrupt or a request to end, noticed between runs.
Result measure(const Operation& operation, int rounds);

/// Runs one contender once, for a profiler, and gives its rows.
std::size_t runOnce(const Contender& contender);

/// Throws `std::runtime_error` unless the first two contenders open the same connections and run the same statements.
void requireSameStatements(const Operation& operation);

/// The first contender against the one numbered `rival`: a line for each operation. The ratios are those of single
/// rounds, the other columns medians over the rounds.
void printComparison(const std::vector<Result>& results, std::size_t rival);

} // namespace benchmarks
