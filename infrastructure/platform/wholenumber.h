#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

namespace platform {

/// The number without its fraction. What is beyond 64 bits becomes the nearest limit; what is no number becomes 0.
inline std::int64_t wholeNumber(double value) noexcept
{
    constexpr double beyond = 9223372036854775808.0; // the first number above the limit, which no `double` meets itself
    if (std::isnan(value)) {
        return 0;
    }
    if (value >= beyond) {
        return std::numeric_limits<std::int64_t>::max();
    }
    return value < -beyond ? std::numeric_limits<std::int64_t>::min() : static_cast<std::int64_t>(value);
}

} // namespace platform
