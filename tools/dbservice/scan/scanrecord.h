#pragma once

#include <array>
#include <chrono>
#include <cstdint>

namespace dbservice {

/// What a scan has done, and how long its steps took.
struct ScanRecord {
    std::int64_t folders = 0; ///< on disk, the source included
    std::int64_t files = 0;   ///< on disk: everything else
    std::int64_t added = 0;
    std::int64_t changed = 0;
    std::int64_t unchanged = 0;
    std::int64_t removed = 0;
    std::int64_t leftAlone = 0; ///< stored rows in the bin or with a pending operation
    std::int64_t rows = 0;      ///< in the store afterwards

    enum class Step { Walk, Read, Mark, Write, Sweep, Index };
    static constexpr std::array<const char*, 6> stepNames{"walk", "read", "mark", "write", "sweep", "index"};
    std::array<double, stepNames.size()> seconds{}; ///< by `Step`

    /// Adds the time of its life to a step.
    class Timer {
    public:
        Timer(ScanRecord& record, Step step) : m_seconds(record.seconds[static_cast<std::size_t>(step)]) { }
        Timer(const Timer&) = delete;
        Timer& operator=(const Timer&) = delete;
        ~Timer() { m_seconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - m_start).count(); }

    private:
        double& m_seconds;
        const std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
    };
};

} // namespace dbservice
