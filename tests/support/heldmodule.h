#pragma once

#include "clientservices/korvthread.h"
#include "support/gate.h"

#include <thread>

namespace testsupport {

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
