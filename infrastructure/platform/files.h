#pragma once

#include <string>
#include <vector>

namespace platform {

struct FoundFile {
    std::wstring name; ///< without its folder
    bool isFolder = false;
    bool isNamed = true; ///< false if wide text cannot name it: `name` then shows it, and may name another file
};

/// What the last part of `pattern` matches in the folder before it, `*` for any text and `?` for any one character, in
/// the system's own order; nothing if there is no such folder. "." and ".." are never among it.
///
/// On Windows the system matches, without regard to case and with short names too. Elsewhere case counts, and `*.*`
/// matches every name, as it does there.
std::vector<FoundFile> findFiles(const std::wstring& pattern);

/// Creates a folder, and none above it, where nothing of the name is there and the system allows it.
void createFolder(const std::wstring& path);

/// Removes a file. 0, or the system's number for what went wrong.
unsigned long deleteFile(const std::wstring& path);

/// Removes what is there, with everything below it, as far as the system allows; a link goes, not what it points to.
void removeAll(const std::wstring& path);

} // namespace platform
