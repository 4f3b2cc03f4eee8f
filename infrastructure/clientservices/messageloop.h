#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace CommonAbility {

/// The queue of a message thread, its handlers, and the loop that brings them together. Shared by the thread and the
/// object that created it; whoever lets go last frees it.
///
/// Threads: `run` on the message thread, all else on any.
class MessageLoop {
public:
    using Handler = std::function<void(std::uint64_t, std::int64_t)>;

    unsigned bind(Handler handler);
    bool post(unsigned message, std::uint64_t shortParameter, std::int64_t longParameter) noexcept;

    /// The life of the message thread.
    void run(const std::string& threadName) noexcept;
    void waitUntilRunning();
    bool isRunning() const;

    /// The object is going: no handler is called from now on but the one that may be running. Does not lock.
    void abandon() noexcept;

private:
    enum class State { New, Open, Closing, Ended };

    struct Message {
        const Handler* handler; ///< null when nothing is bound to `id`
        std::uint64_t shortParameter;
        std::int64_t longParameter;
        unsigned id;
    };

    bool takeQueue(std::vector<Message>& batch);

    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    State m_state = State::New;
    bool m_isWaiting = false; ///< the thread sleeps, and nobody has woken it
    std::vector<Message> m_queue;
    std::deque<Handler> m_handlers; ///< only grows, and does not move what is in it
    std::atomic<bool> m_isAbandoned = false;
};

} // namespace CommonAbility
