#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace testsupport {

/// One run of a part: how much of it, from which seed, and what came of it.
class Run {
public:
    /// Takes the options; throws an exception of the standard library.
    explicit Run(const std::vector<std::string>& arguments);

    /// So much of what the whole run has, at least 1.
    int part(int whole) const { return std::max(1, static_cast<int>(whole * m_share)); }
    /// Tells of crashes, and ends the process when a case runs without end.
    static void watch();
    /// Draws whether this case, of that part of all, is tried.
    bool takes(double of = 1);
    /// Begins a case. What it promises is told when it breaks.
    void trying(const std::string& what, int count = 1);
    bool expect(bool holds, const std::string& broken);
    static void tell(const std::string& figure);
    /// Prints what was tried and survived, and gives the exit code.
    int end() const;

    std::string name;
    std::vector<std::string> rest; ///< of the arguments
    std::uint32_t seed = 1;
    bool control = false; ///< the property is to be broken on purpose, and the part to find that
    std::mt19937 random;

private:
    double m_share = 1;
    double m_seconds = 1e9;
    std::int64_t m_tried = 0;
    std::int64_t m_fell = 0;
    const std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
};

} // namespace testsupport
