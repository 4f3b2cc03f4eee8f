#pragma once

#include <cstdio>
#include <exception>
#include <utility>

namespace benchmarks {

/// The exit code of a program's work; what it throws is told, with the program's name.
template <class Work> int tellingErrors(const char* program, Work work)
{
    try {
        return std::move(work)();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s: %s\n", program, error.what());
        return 1;
    }
}

} // namespace benchmarks
