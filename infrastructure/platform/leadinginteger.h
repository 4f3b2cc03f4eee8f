#pragma once

#include <cstdint>
#include <limits>
#include <string_view>

namespace platform {

/// The number at the front of a text: blanks, a sign, ASCII digits, and whatever follows is ignored. 0 without
/// digits; what is beyond 64 bits becomes the nearest limit. Does not follow the process locale.
template <class Char> constexpr std::int64_t leadingInteger(std::basic_string_view<Char> text) noexcept
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
    constexpr std::uint64_t most = std::numeric_limits<std::int64_t>::max();
    const std::uint64_t limit = negative ? most + 1 : most;
    std::uint64_t magnitude = 0;
    for (; in(Char('0'), Char('9')); ++at) {
        const std::uint64_t digit = static_cast<std::uint64_t>(text[at] - Char('0'));
        magnitude = magnitude > (limit - digit) / 10 ? limit : magnitude * 10 + digit;
    }
    return static_cast<std::int64_t>(negative ? std::uint64_t{0} - magnitude : magnitude);
}

} // namespace platform
