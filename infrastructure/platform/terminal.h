#pragma once

namespace platform {

enum class Stream { Output, Error };

/// Whether a person looks at the stream.
bool isTerminal(Stream stream) noexcept;

/// The terminal's width in cells, 0 where the stream is no terminal or the width is unknown.
int terminalWidth(Stream stream) noexcept;

} // namespace platform
