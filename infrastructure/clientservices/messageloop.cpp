#include "clientservices/messageloop.h"

#include "clientservices/cloudlogger.h"
#include "clientservices/msgthreadability.h"

#include <cstddef>
#include <exception>
#include <thread>
#include <utility>

namespace CommonAbility {

namespace {

/// What an idle thread keeps for the next burst, in messages.
constexpr std::size_t keptCapacity = 4096;

void logFailure(int line, const std::string& threadName, unsigned message, const char* what, const char* why) noexcept
{
    try {
        Logger::CloudLogger::GetInstance()->Output(
            0, 5, line, "CommonAbility::MessageLoop::run",
            "thread " + threadName + ", message " + std::to_string(message) + ": " + what + why, true);
    } catch (...) { // out of memory costs the line, not the thread
    }
}

} // namespace

unsigned MessageLoop::bind(Handler handler)
{
    const std::lock_guard lock(m_mutex);
    m_handlers.push_back(std::move(handler));
    return MsgThreadAbility::firstBoundMessage + static_cast<unsigned>(m_handlers.size() - 1);
}

bool MessageLoop::post(unsigned message, std::uint64_t shortParameter, std::int64_t longParameter) noexcept
{
    bool wake = false;
    {
        const std::lock_guard lock(m_mutex);
        if (m_state != State::Open) {
            return false;
        }
        if (message == korvThread::quitMessage) {
            m_state = State::Closing;
        } else {
            const std::size_t place = message - MsgThreadAbility::firstBoundMessage; // huge for ids below the first
            const Handler* handler = place < m_handlers.size() ? &m_handlers[place] : nullptr;
            try {
                m_queue.push_back({handler, shortParameter, longParameter, message});
            } catch (...) { // out of memory
                return false;
            }
        }
        wake = std::exchange(m_isWaiting, false);
    }
    if (wake) {
        m_changed.notify_one();
    }
    return true;
}

void MessageLoop::run(const std::string& threadName) noexcept
{
    {
        const std::lock_guard lock(m_mutex);
        m_state = State::Open;
    }
    m_changed.notify_all();

    std::vector<Message> batch;
    while (takeQueue(batch)) {
        for (const Message& message : batch) {
            if (m_isAbandoned) {
                break;
            }
            if (message.handler == nullptr) {
                logFailure(__LINE__, threadName, message.id, "nothing is bound to it", "");
                continue;
            }
            try {
                (*message.handler)(message.shortParameter, message.longParameter);
            } catch (const std::exception& error) {
                logFailure(__LINE__, threadName, message.id, "its handler has thrown: ", error.what());
            } catch (...) {
                logFailure(__LINE__, threadName, message.id, "its handler has thrown", "");
            }
        }
    }
}

/// All messages at once, so that handlers cost the posters one lock per batch. False when the loop is to end.
bool MessageLoop::takeQueue(std::vector<Message>& batch)
{
    batch.clear();
    if (batch.capacity() > keptCapacity) {
        batch.shrink_to_fit();
    }
    std::unique_lock lock(m_mutex);
    while (m_queue.empty() && m_state == State::Open && !m_isAbandoned) {
        m_isWaiting = true;
        m_changed.wait(lock);
    }
    m_isWaiting = false;
    if (m_queue.empty() || m_isAbandoned) {
        m_state = State::Ended;
        return false;
    }
    batch.swap(m_queue);
    return true;
}

void MessageLoop::waitUntilRunning()
{
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_state != State::New; });
}

bool MessageLoop::isRunning() const
{
    const std::lock_guard lock(m_mutex);
    return m_state == State::Open || m_state == State::Closing;
}

void MessageLoop::abandon() noexcept
{
    m_isAbandoned = true;
    // Once the lock was free, the thread has seen that or sleeps and can be woken. Where it never is, the thread may
    // sleep on, which harms nobody.
    for (int attempts = 100; attempts > 0; --attempts) {
        if (m_mutex.try_lock()) {
            m_mutex.unlock();
            break;
        }
        std::this_thread::yield();
    }
    m_changed.notify_all();
}

} // namespace CommonAbility
