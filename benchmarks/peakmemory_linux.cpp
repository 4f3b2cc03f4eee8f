#include "peakmemory.h"

#include <fstream>
#include <malloc.h>
#include <string>

namespace benchmarks {

namespace {

std::optional<std::size_t> statusValue(const std::string& key)
{
    std::ifstream status("/proc/self/status");
    std::string word;
    std::size_t kilobytes = 0;
    while (status >> word) {
        if (word == key && status >> kilobytes) {
            return kilobytes * 1024;
        }
    }
    return {};
}

} // namespace

PeakMemory::PeakMemory()
{
    malloc_trim(0);
    // Sets the high-water mark back to what is resident now.
    std::ofstream clear("/proc/self/clear_refs");
    if (clear << "5" << std::flush) {
        m_start = statusValue("VmRSS:");
    }
}

std::optional<std::size_t> PeakMemory::extra() const
{
    const std::optional<std::size_t> peak = statusValue("VmHWM:");
    if (!m_start || !peak) {
        return {};
    }
    return *peak > *m_start ? *peak - *m_start : 0;
}

} // namespace benchmarks
