#pragma once

#include "clientservices/korvthread.h"

#include <condition_variable>
#include <mutex>
#include <thread>

namespace testsupport {

/// Lets one thread through for each `open`. Not the standard library's semaphore: a test that waited on one hung under
/// Wine.
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

/// A module of a test's own, whose thread can be held in a handler.
template <class Module> class HeldModule : public Module {
public:
    HeldModule()
    {
        m_msgHold = this->BindMessage([this](auto, auto) {
            thread = std::this_thread::get_id();
            m_holding.open();
            m_goOn.pass();
        });
    }

    ~HeldModule() override { end(); }

    /// What is posted from here on waits for `goOn`.
    void hold()
    {
        this->TryPostThreadMessage(m_msgHold, 0, 0);
        m_holding.pass();
    }
    void goOn() { m_goOn.open(); }

    /// Ends the thread past the module's own stop.
    void end()
    {
        this->PostThreadMessageW(Module::quitMessage, 0, 0);
        CommonAbility::WaitForThread(*this);
    }

    std::thread::id thread; ///< of the module, once it was held

private:
    unsigned m_msgHold = 0;
    Gate m_holding;
    Gate m_goOn;
};

} // namespace testsupport
