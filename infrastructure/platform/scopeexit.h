#pragma once

#include <utility>

namespace platform {

/// Runs an action at the end of its scope, however the scope is left.
template <class Action> class ScopeExit {
public:
    explicit ScopeExit(Action action) : m_action(std::move(action)) { }
    ScopeExit(const ScopeExit&) = delete;
    ScopeExit& operator=(const ScopeExit&) = delete;
    ~ScopeExit() { m_action(); }

private:
    Action m_action;
};

} // namespace platform
