#pragma once

#include <string>
#include <vector>

namespace benchmarks {

/// Notes what this process does with SQLite, whoever does it: each connection opened and each statement run, in
/// order. One at a time.
class StatementTrace {
public:
    struct Step {
        bool isOpen = false;
        std::string text; ///< the file or the statement

        /// Blanks in the text do not count.
        friend bool operator==(const Step& one, const Step& other);
    };

    StatementTrace();
    StatementTrace(const StatementTrace&) = delete;
    StatementTrace& operator=(const StatementTrace&) = delete;
    /// Connections that were opened meanwhile must be closed by then.
    ~StatementTrace();

    const std::vector<Step>& steps() const { return m_steps; }

private:
    std::vector<Step> m_steps;
};

} // namespace benchmarks
