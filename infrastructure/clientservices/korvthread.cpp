#include "clientservices/korvthread.h"

#include "clientservices/cloudlogger.h"
#include "clientservices/messageloop.h"
#include "platform/thread.h"

#include <utility>

namespace CommonAbility {

void WaitForThread(ThreadHandle thread) noexcept
{
    platform::waitForThread(thread);
}

korvThread::korvThread() : m_loop(std::make_shared<MessageLoop>()) { }

korvThread::~korvThread()
{
    // A thread that the system has ended may have left the loop's lock taken and its own sleep unfinished.
    if (!platform::hasThreadEnded(m_thread)) {
        m_loop->abandon();
    }
    platform::closeThread(m_thread);
}

bool korvThread::CreateThread(std::string name, unsigned long, unsigned stackSize, _SECURITY_ATTRIBUTES* attributes)
{
    if (m_thread != nullptr) {
        return false;
    }
    m_thread = platform::startThread(
        [loop = m_loop, name] {
            platform::setThreadName(name);
            loop->run(name);
        },
        stackSize, attributes);
    if (m_thread == nullptr) {
        Logger::CloudLogger::GetInstance()->Output(0, 5, __LINE__, "CommonAbility::korvThread::CreateThread",
                                                   "cannot create thread " + name, true);
        return false;
    }
    m_loop->waitUntilRunning();
    return true;
}

bool korvThread::IsInMessageLoop() const
{
    return m_loop->isRunning();
}

bool korvThread::PostThreadMessageW(unsigned message, std::uint64_t shortParameter, std::int64_t longParameter)
{
    return m_loop->post(message, shortParameter, longParameter);
}

} // namespace CommonAbility
