#include "stopwatch.h"

#include <ctime>

namespace benchmarks {

double secondsOf(const std::function<void()>& work)
{
    const std::clock_t start = std::clock();
    work();
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

} // namespace benchmarks
