#include "platform/text.h"

#include <windows.h>

#include <algorithm>

namespace platform {

namespace {

static_assert(sizeof(wchar_t) == sizeof(char16_t), "wide text is UTF-16 here");

// The system counts in int, so longer text goes through in parts.
constexpr std::size_t largestPart = std::size_t{1} << 29;

/// The length of a first part that ends between two characters.
std::size_t partLength(std::string_view text)
{
    if (text.size() <= largestPart) {
        return text.size();
    }
    for (std::size_t end = largestPart; end > largestPart - 4; --end) {
        const bool continues = (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80;
        if (!continues) {
            return end;
        }
    }
    return largestPart; // four continuation bytes in a row: no character holds them all
}

std::size_t partLength(std::wstring_view text)
{
    if (text.size() <= largestPart) {
        return text.size();
    }
    return IS_LOW_SURROGATE(text[largestPart]) ? largestPart - 1 : largestPart;
}

int wideLength(std::string_view part, DWORD flags) noexcept
{
    return MultiByteToWideChar(CP_UTF8, flags, part.data(), static_cast<int>(part.size()), nullptr, 0);
}

} // namespace

bool detail::isWellFormed(std::string_view text) noexcept
{
    text.remove_prefix(detail::skipAscii(text, 0));
    while (!text.empty()) {
        const std::string_view part = text.substr(0, partLength(text));
        if (wideLength(part, MB_ERR_INVALID_CHARS) == 0) {
            return false;
        }
        text.remove_prefix(part.size());
    }
    return true;
}

std::string repairUtf8(std::string_view text)
{
    return toUtf8(toWide(text));
}

std::wstring toWide(std::string_view utf8)
{
    std::wstring wide;
    while (!utf8.empty()) {
        const std::string_view part = utf8.substr(0, partLength(utf8));
        const int length = wideLength(part, 0);
        const std::size_t before = wide.size();
        wide.resize(before + static_cast<std::size_t>(length));
        MultiByteToWideChar(CP_UTF8, 0, part.data(), static_cast<int>(part.size()), wide.data() + before, length);
        utf8.remove_prefix(part.size());
    }
    return wide;
}

std::wstring systemTextToWide(std::string_view text)
{
    const int size = static_cast<int>(std::min(text.size(), largestPart));
    const int length = size == 0 ? 0 : MultiByteToWideChar(CP_ACP, 0, text.data(), size, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(length), L'\0');
    if (length != 0) {
        MultiByteToWideChar(CP_ACP, 0, text.data(), size, wide.data(), length);
    }
    return wide;
}

std::string toUtf8(std::wstring_view wide)
{
    std::string utf8;
    while (!wide.empty()) {
        const std::wstring_view part = wide.substr(0, partLength(wide));
        const int size = static_cast<int>(part.size());
        const int length = WideCharToMultiByte(CP_UTF8, 0, part.data(), size, nullptr, 0, nullptr, nullptr);
        const std::size_t before = utf8.size();
        utf8.resize(before + static_cast<std::size_t>(length));
        WideCharToMultiByte(CP_UTF8, 0, part.data(), size, utf8.data() + before, length, nullptr, nullptr);
        wide.remove_prefix(part.size());
    }
    return utf8;
}

} // namespace platform
