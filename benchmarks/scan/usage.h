#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace benchmarks {

/// What a process has used from its start to its end.
struct Usage {
    double processorSeconds = 0; ///< in the program and in the system for it
    std::int64_t written = 0;    ///< bytes that the system had to write to the disk for it; 0 where that is not told
    std::int64_t memory = 0;     ///< bytes that were resident at the most
};

/// Runs a program with its standard output thrown away. Throws `std::runtime_error` unless it ends well.
Usage usageOf(std::vector<std::string> commandLine);

} // namespace benchmarks
