#include "harness.h"

#include "peakmemory.h"
#include "statementtrace.h"
#include "stopwatch.h"

#include <algorithm>
#include <csignal>
#include <fmt/format.h>
#include <numeric>
#include <stdexcept>

namespace benchmarks {

namespace {

volatile std::sig_atomic_t interrupted = 0;

// Stores can be large and lie in memory: an interrupted run must get to remove them.
void stopIfInterrupted()
{
    if (interrupted != 0) {
        throw std::runtime_error("interrupted");
    }
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

std::vector<double> ratios(const Measurement& own, const Measurement& rival)
{
    std::vector<double> all;
    std::transform(own.seconds.begin(), own.seconds.end(), rival.seconds.begin(), std::back_inserter(all),
                   std::divides<>());
    return all;
}

std::string megabytes(std::optional<std::size_t> bytes)
{
    return bytes ? fmt::format("{:.1f} MB", static_cast<double>(*bytes) / 1e6) : "-";
}

std::string milliseconds(const Measurement& measurement)
{
    return fmt::format("{:.1f} ms", median(measurement.seconds) * 1e3);
}

template <class Number> std::string verdict(Number value, Number target, const std::string& targetText)
{
    return targetText + (value <= target ? " met" : " missed");
}

void record(Measurement& measurement, double seconds, std::optional<std::size_t> extraMemory)
{
    measurement.seconds.push_back(seconds);
    measurement.extraMemory = std::max(measurement.extraMemory, extraMemory);
}

std::vector<StatementTrace::Step> stepsOf(const Contender& contender)
{
    const StatementTrace trace; // from before `prepare`, where connections that stay open are opened
    contender.prepare();
    contender.run();
    std::vector<StatementTrace::Step> steps = trace.steps();
    contender.check();
    return steps;
}

} // namespace

Result measure(const Operation& operation, int rounds)
{
    for (const int signal : {SIGINT, SIGTERM}) {
        std::signal(signal, [](int) { interrupted = 1; });
    }
    Result result{operation, std::vector<Measurement>(operation.contenders.size())};
    std::vector<std::size_t> order(operation.contenders.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    for (int round = 0; round <= rounds; ++round) {
        for (const std::size_t i : order) {
            stopIfInterrupted();
            const Contender& contender = operation.contenders[i];
            contender.prepare();
            const PeakMemory memory;
            const double seconds = secondsOf(contender.run);
            const std::optional<std::size_t> extraMemory = memory.extra();
            contender.check();
            if (round > 0) {
                record(result.measurements[i], seconds, extraMemory);
            }
        }
        std::next_permutation(order.begin(), order.end());
    }
    return result;
}

std::size_t runOnce(const Contender& contender)
{
    contender.prepare();
    secondsOf(contender.run);
    return contender.check();
}

void requireSameStatements(const Operation& operation)
{
    runOnce(operation.contenders[0]); // so that the store is there, and nobody's trace has its making
    const std::vector<StatementTrace::Step> own = stepsOf(operation.contenders[0]);
    const std::vector<StatementTrace::Step> rival = stepsOf(operation.contenders[1]);
    const auto [ownStep, rivalStep] = std::mismatch(own.begin(), own.end(), rival.begin(), rival.end());
    if (ownStep != own.end() || rivalStep != rival.end()) {
        throw std::runtime_error(fmt::format(
            "{}: the contenders run different statements at step {}:\n  {}: {}\n  {}: {}", operation.title,
            ownStep - own.begin(), operation.contenders[0].name, ownStep == own.end() ? "(end)" : ownStep->text,
            operation.contenders[1].name, rivalStep == rival.end() ? "(end)" : rivalStep->text));
    }
}

void printComparison(const std::vector<Result>& results, std::size_t rival)
{
    if (results.empty()) {
        return;
    }
    const std::vector<Contender>& contenders = results.front().operation.contenders;
    fmt::print("\n{} / {}\n", contenders[0].name, contenders[rival].name);
    fmt::print("{:<32}{:>8}{:>9}  {:<12}{:>12}{:>12}{:>12}{:>12}\n", "", "median", "minimum", "target", "time",
               "against", "memory", "against");
    for (const Result& result : results) {
        const Operation& operation = result.operation;
        const Measurement& own = result.measurements[0];
        const Measurement& other = result.measurements[rival];
        const std::vector<double> all = ratios(own, other);
        fmt::print("{:<32}{:>8.3f}{:>9.3f}  {:<12}{:>12}{:>12}{:>12}{:>12}{}\n", operation.title, median(all),
                   *std::min_element(all.begin(), all.end()),
                   rival == 1 ? verdict(median(all), operation.target, fmt::format("{:.2f}", operation.target)) : "",
                   milliseconds(own), milliseconds(other), megabytes(own.extraMemory), megabytes(other.extraMemory),
                   rival == 1 && operation.memoryTarget && own.extraMemory ? "  target " +
                           verdict(*own.extraMemory, *operation.memoryTarget, megabytes(operation.memoryTarget))
                                                                           : "");
    }
}

} // namespace benchmarks
