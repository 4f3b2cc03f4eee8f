#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

/// What both systems' sources share: most text is ASCII, and ASCII needs no conversion.
namespace platform::detail {

inline bool isAscii(char byte)
{
    return static_cast<unsigned char>(byte) < 0x80;
}

/// The first byte at or after `position` that is not ASCII, or the end.
inline std::size_t skipAscii(std::string_view text, std::size_t position)
{
    constexpr std::uint64_t highBits = 0x8080808080808080;
    std::uint64_t word = 0;
    for (; text.size() - position >= sizeof word; position += sizeof word) {
        std::memcpy(&word, text.data() + position, sizeof word);
        if ((word & highBits) != 0) {
            break;
        }
    }
    while (position < text.size() && isAscii(text[position])) {
        ++position;
    }
    return position;
}

} // namespace platform::detail
