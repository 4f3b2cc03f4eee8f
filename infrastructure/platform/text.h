#pragma once

#include "platform/ascii.h"

#include <concepts>
#include <string>
#include <string_view>

/// The operating system behind one interface. Each header has one source file for Windows and one for POSIX,
/// and both keep the promises written here.
namespace platform {

namespace detail {
/// `isUtf8` for text that is not all ASCII.
bool isWellFormed(std::string_view text) noexcept;
} // namespace detail

/// The one seam at which text changes between UTF-8 and wide. Wide text is UTF-16 on Windows and UTF-32
/// elsewhere. All functions are pure and may be called from any thread. Text goes through whole,
/// embedded NULs included.
///
/// Text that is not well formed is repaired, never refused: on Windows as the system's own conversion does it,
/// elsewhere with one U+FFFD for each maximal ill-formed part of UTF-8 and for each wide character that is no
/// Unicode scalar value.

/// Whether `text` is well-formed UTF-8, so that repairing it would change nothing. Fast for ASCII.
inline bool isUtf8(std::string_view text) noexcept
{
    return detail::isAscii(text) || detail::isWellFormed(text);
}

/// A repaired copy of `text`.
std::string repairUtf8(std::string_view text);

std::wstring toWide(std::string_view utf8);
/// Text in the system's code page: UTF-8 except on Windows. For short texts such as paths.
std::wstring systemTextToWide(std::string_view text);
std::string toUtf8(std::wstring_view wide);
/// For strings and literals: they are wide text, although each could become a path as well.
template <std::convertible_to<std::wstring_view> Text> std::string toUtf8(const Text& wide)
{
    return toUtf8(std::wstring_view(wide));
}

} // namespace platform
