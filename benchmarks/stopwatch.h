#pragma once

#include <functional>

namespace benchmarks {

/// Runs `work` and tells how many seconds of processor time it took. On a machine that is busy with other things that
/// says more than the time on the wall, and nothing that is measured here waits for anything. (On Windows `std::clock`
/// gives elapsed time.) Profilers find the measured part of the program by this name, which is why it stands in a
/// source file of its own.
double secondsOf(const std::function<void()>& work);

} // namespace benchmarks
