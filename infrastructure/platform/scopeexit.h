#pragma once

#include <utility>

namespace platform {

/// Runs an action at the end of its scope, however the scope is left. What the action throws is lost: it comes from a
/// memory that has run out, and the process goes on.
template <class Action> class ScopeExit {
public:
    explicit ScopeExit(Action action) : m_action(std::move(action)) { }
    ScopeExit(const ScopeExit&) = delete;
    ScopeExit& operator=(const ScopeExit&) = delete;
    ~ScopeExit()
    {
        try {
            m_action();
        } catch (...) { // another exception may be on its way
        }
    }

private:
    Action m_action;
};

} // namespace platform
