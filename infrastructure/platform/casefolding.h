#pragma once

namespace platform::detail {

/// The simple case folding of one code point: a character becomes one character, never more.
char32_t foldCase(char32_t codePoint) noexcept;

} // namespace platform::detail
