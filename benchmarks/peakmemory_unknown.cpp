#include "peakmemory.h"

namespace benchmarks {

PeakMemory::PeakMemory() = default;

std::optional<std::size_t> PeakMemory::extra() const
{
    return m_start;
}

} // namespace benchmarks
