#include "platform/text.h"

#include "platform/utf8decode.h"

namespace platform {

namespace {

static_assert(sizeof(wchar_t) == sizeof(char32_t), "wide text is UTF-32 here");

constexpr std::string_view replacementUtf8 = "\xEF\xBF\xBD";

char32_t scalarValue(wchar_t wide)
{
    const auto value = static_cast<char32_t>(wide);
    return U_IS_SURROGATE(value) || value > 0x10FFFF ? detail::replacementCharacter : value;
}

/// The end of the well-formed text that begins at `position`.
std::size_t skipWellFormed(std::string_view text, std::size_t position)
{
    while ((position = detail::skipAscii(text, position)) < text.size()) {
        do {
            const std::size_t start = position;
            if (detail::decodeNext(text, position) == detail::illFormed) {
                return start;
            }
        } while (position < text.size() && !detail::isAscii(text[position]));
    }
    return position;
}

} // namespace

bool detail::isWellFormed(std::string_view text) noexcept
{
    return skipWellFormed(text, 0) == text.size();
}

std::string repairUtf8(std::string_view text)
{
    std::string repaired;
    repaired.reserve(text.size());
    std::size_t position = 0;
    while (true) {
        const std::size_t end = skipWellFormed(text, position);
        repaired.append(text, position, end - position);
        if (end == text.size()) {
            return repaired;
        }
        repaired.append(replacementUtf8);
        position = end;
        detail::decodeNext(text, position);
    }
}

std::wstring toWide(std::string_view utf8)
{
    const std::size_t ascii = detail::skipAscii(utf8, 0);
    std::wstring wide(utf8.begin(), utf8.begin() + static_cast<std::ptrdiff_t>(ascii));
    if (ascii == utf8.size()) {
        return wide;
    }
    wide.resize(utf8.size()); // no character is longer in UTF-32
    std::size_t length = ascii;
    for (std::size_t position = ascii; position < utf8.size(); ++length) {
        if (detail::isAscii(utf8[position])) {
            wide[length] = static_cast<wchar_t>(utf8[position++]);
            continue;
        }
        wide[length] = static_cast<wchar_t>(detail::decodeRepaired(utf8, position));
    }
    wide.resize(length);
    return wide;
}

std::wstring systemTextToWide(std::string_view text)
{
    return toWide(text);
}

std::string toUtf8(std::wstring_view wide)
{
    char32_t bits = 0;
    for (const wchar_t character : wide) {
        bits |= static_cast<char32_t>(character);
    }
    if (bits < 0x80) {
        return {wide.begin(), wide.end()};
    }
    std::size_t size = wide.size();
    for (const wchar_t character : wide) {
        if (static_cast<char32_t>(character) >= 0x80) {
            size += static_cast<std::size_t>(U8_LENGTH(scalarValue(character)) - 1);
        }
    }
    std::string utf8(size, '\0');
    auto* bytes = reinterpret_cast<std::uint8_t*>(utf8.data());
    std::size_t position = 0;
    for (const wchar_t character : wide) {
        const char32_t value = scalarValue(character);
        U8_APPEND_UNSAFE(bytes, position, value);
    }
    return utf8;
}

} // namespace platform
