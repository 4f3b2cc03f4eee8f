#pragma once

#include "databaseservice/integers.h"

#include <limits>
#include <string_view>

namespace DatabaseService {

/// The number at the front of a text: blanks, a sign, ASCII digits, and whatever follows is ignored. 0 without
/// digits; what is beyond 64 bits becomes the nearest limit. Does not follow the process locale.
template <class Char> constexpr int64 leadingInteger(std::basic_string_view<Char> text) noexcept
{
    std::size_t at = 0;
    const auto in = [&](Char low, Char high) { return at < text.size() && text[at] >= low && text[at] <= high; };
    while (in(Char(' '), Char(' ')) || in(Char('\t'), Char('\r'))) {
        ++at;
    }
    const bool negative = in(Char('-'), Char('-'));
    if (negative || in(Char('+'), Char('+'))) {
        ++at;
    }
    constexpr uint64 most = std::numeric_limits<int64>::max();
    const uint64 limit = negative ? most + 1 : most;
    uint64 magnitude = 0;
    for (; in(Char('0'), Char('9')); ++at) {
        const uint64 digit = static_cast<uint64>(text[at] - Char('0'));
        magnitude = magnitude > (limit - digit) / 10 ? limit : magnitude * 10 + digit;
    }
    return static_cast<int64>(negative ? uint64{0} - magnitude : magnitude);
}

} // namespace DatabaseService
