#pragma once

#include <cstddef>
#include <optional>

namespace benchmarks {

/// Watches how far the process's resident memory rises above what it is at construction, in bytes. Free heap memory
/// is given back to the system first, so that it does not hide what is taken next. Nothing where the system cannot
/// tell.
class PeakMemory {
public:
    PeakMemory();
    std::optional<std::size_t> extra() const;

private:
    std::optional<std::size_t> m_start;
};

} // namespace benchmarks
