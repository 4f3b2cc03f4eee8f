#pragma once

#include <condition_variable>
#include <mutex>

namespace testsupport {

/// Lets one thread through for each `open`. Not the standard library's semaphore or latch: tests that waited on one
/// hung under Wine.
class Gate {
public:
    void open()
    {
        const std::lock_guard lock(m_mutex);
        ++m_open;
        m_changed.notify_one();
    }

    void pass()
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return m_open > 0; });
        --m_open;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    int m_open = 0;
};

} // namespace testsupport
