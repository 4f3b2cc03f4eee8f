#pragma once

#include "clientservices/export.h"

#include <cstdint>
#include <memory>
#include <string>

struct _SECURITY_ATTRIBUTES; // NOLINT(bugprone-reserved-identifier): the name that <windows.h> gives it

/// Message threads, and the client's printf-style log.
namespace CommonAbility {

class MessageLoop;

/// A thread that can be waited for: on Windows the system's `HANDLE`, elsewhere an address that only `WaitForThread`
/// knows what to do with.
using ThreadHandle = void*;

/// Waits, with no time limit, until the thread has ended. Returns at once for null and when the thread itself calls.
/// Any number of threads may wait for one.
CLIENTSERVICES_EXPORT void WaitForThread(ThreadHandle thread) noexcept;

/// A thread with one queue of messages, which it takes in posting order.
///
/// Threads: `CreateThread` once, before others know the object; all else from any thread, the object's own included.
/// Ownership: whoever posts keeps what a message's parameters point to when the post gives false, and has given it away
/// when it gives true. The handle is the object's and valid for as long as that lives.
/// Failure: what cannot be queued gives false and leaves no line in the log; a thread that cannot be created does.
///
/// The queue takes messages from `CreateThread` until the quit message is posted. What was accepted before that is
/// handled, then the thread ends; there is no second one. A burst of posts is limited by memory alone.
///
/// The destructor neither waits nor locks, as the system may have ended the thread already when the process exits. A
/// thread that still runs begins no further message after it and ends by itself, and what was queued is lost. So stop
/// the thread first, or never destroy the object, if its messages matter or use what dies with it.
class CLIENTSERVICES_EXPORT korvThread {
public:
    /// The system's WM_QUIT.
    enum : unsigned { quitMessage = 18 };

    korvThread();
    korvThread(const korvThread&) = delete;
    korvThread& operator=(const korvThread&) = delete;
    virtual ~korvThread();

    /// Returns once the thread takes messages; false when the system has no thread to give or the object had one
    /// before. `name`, in UTF-8, is what a debugger shows, on Linux its first 15 bytes. `flags` is there for the client
    /// and means nothing here. A `stackSize` of 0 bytes is the system's default, and `attributes` counts on Windows
    /// only.
    bool CreateThread(std::string name, unsigned long flags, unsigned stackSize, _SECURITY_ATTRIBUTES* attributes);

    /// Whether the thread is in its loop: from `CreateThread` until the last message before the quit message has been
    /// handled. Does not ask who calls.
    bool IsInMessageLoop() const;

    /// True when queued. False before `CreateThread` and once the quit message has been posted.
    bool PostThreadMessageW(unsigned message, std::uint64_t shortParameter, std::int64_t longParameter);

    /// Null before `CreateThread`.
    operator ThreadHandle() const noexcept { return m_thread; }

private:
    friend class MsgThreadAbility;

    const std::shared_ptr<MessageLoop> m_loop; ///< the thread has a share of it and knows nothing else of this object
    ThreadHandle m_thread = nullptr;
};

} // namespace CommonAbility
