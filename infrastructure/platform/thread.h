#pragma once

#include <functional>
#include <string>

/// Threads that nobody has to join, each behind a handle that can be waited for.
///
/// Threads: any. Ownership: `closeThread` gives a handle back. A null handle stands for a thread that has ended.
namespace platform {

/// On Windows the system's own HANDLE, elsewhere an address that only these functions know what to do with.
using ThreadHandle = void*;

/// Runs `body`, which must not throw, on a thread of its own. What `body` holds is gone by the time the thread counts
/// as ended. A `stackSize` of 0 bytes is the system's default; `attributes` are the SECURITY_ATTRIBUTES on Windows and
/// mean nothing elsewhere. Null when the system has no thread to give.
ThreadHandle startThread(std::function<void()> body, unsigned stackSize, void* attributes);

/// Waits with no time limit until the thread has ended; returns at once when the thread itself calls.
void waitForThread(ThreadHandle thread) noexcept;

/// Neither waits nor locks, so that destructors may ask while the process exits, which on Windows ends all other
/// threads first.
bool hasThreadEnded(ThreadHandle thread) noexcept;

/// The thread goes on.
void closeThread(ThreadHandle thread) noexcept;

/// What a debugger shows for the calling thread; on Linux the first 15 bytes of it.
void setThreadName(const std::string& name) noexcept;

} // namespace platform
