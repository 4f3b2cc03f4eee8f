#pragma once

#include <stdexcept>
#include <string>

namespace dbservice {

// Exit codes beside 0.
inline constexpr int failed = 1;
inline constexpr int wrongUsage = 2;

/// Why a command cannot go on, as the person reads it after the program's name: "cannot read the store: ...".
class Failure : public std::runtime_error {
public:
    explicit Failure(const std::string& reason, int exitCode = failed)
        : std::runtime_error(reason),
          m_exitCode(exitCode)
    {
    }

    int exitCode() const { return m_exitCode; }

private:
    int m_exitCode;
};

/// Nothing is there by that name, as far as the store could be read.
class NotFound : public Failure {
public:
    using Failure::Failure;
};

} // namespace dbservice
