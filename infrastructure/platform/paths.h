#pragma once

#include <filesystem>
#include <string>

namespace platform {

/// A path from wide text. On POSIX, where paths are bytes, it becomes UTF-8.
std::filesystem::path toPath(const std::wstring& wide);

/// A path's text: as the system shows it, repaired where it is not Unicode.
std::string toUtf8(const std::filesystem::path& path);

/// Whether something is there. False also when the system cannot tell.
bool exists(const std::wstring& path) noexcept;

} // namespace platform
