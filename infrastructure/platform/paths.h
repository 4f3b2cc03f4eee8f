#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace platform {

/// A path from wide text. On POSIX, where paths are bytes, it becomes UTF-8.
std::filesystem::path toPath(const std::wstring& wide);

/// A path's text: as the system shows it, repaired where it is not Unicode.
std::string toUtf8(const std::filesystem::path& path);

/// Where programs keep for the user what they can make again. Empty where the system names no place.
std::filesystem::path userCacheFolder();

/// Whether something is there. False also when the system cannot tell; a lack of memory is thrown.
bool exists(const std::wstring& path);

/// What stands between a folder and the names in it.
extern const wchar_t folderSeparator;

/// A path whose folders end in `\`, with the system's own separator in its place.
std::wstring fromBackslashes(std::wstring path);

/// The long form of a path that may hold short 8.3 names; elsewhere than on Windows the path itself. Nothing when the
/// path does not exist, or when the long form does not fit into 260 characters with its end.
std::optional<std::wstring> longPathName(const std::wstring& path);

} // namespace platform
