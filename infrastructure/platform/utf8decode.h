#pragma once

#include <unicode/utf8.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

/// The one UTF-8 decoder behind the POSIX sources.
namespace platform::detail {

constexpr char32_t replacementCharacter = 0xFFFD;
constexpr std::int32_t illFormed = -1;

/// Reads the code point at `position`, which must lie before the end, and moves past it. Gives `illFormed` for
/// bytes that are no character, past all that could have begun one together.
inline std::int32_t decodeNext(std::string_view text, std::size_t& position)
{
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    const std::size_t size = text.size();
    std::size_t index = position;
    std::int32_t codePoint = 0;
    U8_NEXT(bytes, index, size, codePoint);
    position = index;
    return codePoint;
}

/// The same with U+FFFD for what is no character.
inline char32_t decodeRepaired(std::string_view text, std::size_t& position)
{
    const std::int32_t codePoint = decodeNext(text, position);
    return codePoint == illFormed ? replacementCharacter : static_cast<char32_t>(codePoint);
}

} // namespace platform::detail
