#pragma once

namespace platform {

enum class Stream { Input, Output, Error };

/// Whether a person looks at the stream, or types into it.
bool isTerminal(Stream stream) noexcept;

/// Whether the stream is a terminal that shows escapes as colours. A console of Windows is made to.
bool showsColours(Stream stream) noexcept;

/// The terminal's width in cells, 0 where the stream is no terminal or the width is unknown.
int terminalWidth(Stream stream) noexcept;

} // namespace platform
