#pragma once

#include <string>
#include <vector>

namespace benchmarks {

/// Notes what this process does with SQLite, whoever does it: each connection opened and each statement run, in
/// order. Blanks in the statements do not count. One at a time.
class StatementTrace {
public:
    StatementTrace();
    StatementTrace(const StatementTrace&) = delete;
    StatementTrace& operator=(const StatementTrace&) = delete;
    /// Connections that were opened meanwhile must be closed by then.
    ~StatementTrace();

    const std::vector<std::string>& steps() const { return m_steps; }

private:
    std::vector<std::string> m_steps;
};

} // namespace benchmarks
