#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

/// Most text is ASCII, and ASCII needs no conversion.
namespace platform::detail {

inline bool isAscii(char byte)
{
    return static_cast<unsigned char>(byte) < 0x80;
}

inline bool isAscii(std::string_view text)
{
    constexpr std::uint64_t highBits = 0x8080808080808080;
    std::uint64_t all = 0;
    if (text.size() < sizeof all) {
        for (const char byte : text) {
            all |= static_cast<unsigned char>(byte);
        }
        return all < 0x80;
    }
    std::uint64_t word = 0;
    const char* const last = text.data() + text.size() - sizeof word;
    for (const char* next = text.data(); next < last; next += sizeof word) {
        std::memcpy(&word, next, sizeof word);
        all |= word;
    }
    std::memcpy(&word, last, sizeof word); // what is left, with some of what was looked at already
    return ((all | word) & highBits) == 0;
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
