#pragma once

#include "databaseservice/integers.h"

#include <cmath>
#include <limits>

namespace DatabaseService {

/// The number without its fraction. What is beyond 64 bits becomes the nearest limit; what is no number becomes 0.
inline int64 wholeNumber(double value) noexcept
{
    constexpr double beyond = 9223372036854775808.0; // the first number above the limit, which no `double` meets itself
    if (std::isnan(value)) {
        return 0;
    }
    if (value >= beyond) {
        return std::numeric_limits<int64>::max();
    }
    return value < -beyond ? std::numeric_limits<int64>::min() : static_cast<int64>(value);
}

} // namespace DatabaseService
