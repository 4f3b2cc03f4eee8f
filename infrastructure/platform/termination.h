#pragma once

#include <functional>

namespace platform {

/// Has `handler` run when the process is told to end: by Ctrl-C, by a request of the system's or another program's, by
/// a terminal that is closed and, on POSIX, by a reader of its output that has gone. It runs on a thread of its own and
/// may do ordinary work, while the other threads go on; what ends the process then does so as if there were no handler,
/// so that a shell sees the same. What this process ignores from its start stays ignored.
///
/// Once per process, before any other thread starts. The handler is never destroyed.
void onTermination(std::function<void()> handler);

} // namespace platform
