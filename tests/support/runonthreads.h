#pragma once

#include <thread>
#include <vector>

namespace testsupport {

/// Calls `body` on so many threads at once.
template <class Body> void runOnThreads(int count, Body body)
{
    std::vector<std::thread> threads;
    for (int number = 0; number < count; ++number) {
        threads.emplace_back(body, number);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

} // namespace testsupport
