#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <system_error>

namespace platform {

enum class FileKind { Regular, Folder, Link, Other };

struct FileStatus {
    FileKind kind = FileKind::Other;
    std::int64_t size = 0;                ///< bytes; 0 for what is not a regular file
    std::int64_t modifiedNanoseconds = 0; ///< since 1970-01-01 00:00 UTC; negative for earlier times
    std::int64_t createdNanoseconds = 0;  ///< the same; equals `modifiedNanoseconds` where the system does not know
};

/// Looks at the entry itself and never at what a link points to. On failure `error` is set and the result is
/// a default one.
FileStatus readStatus(const std::filesystem::path& path, std::error_code& error) noexcept;

using WantEntry = std::function<bool(const std::filesystem::path::string_type& name, FileKind kind)>;

/// `error` tells what kept the system from looking at the entry.
using VisitEntry = std::function<void(const std::filesystem::path::string_type& name, const FileStatus& status,
                                      const std::error_code& error)>;

/// Looks at the entries of a folder as `readStatus` does, in no particular order: at those that are `wanted`, or at all
/// if that is empty. Where the system tells what an entry is, the others are not looked at. `error` is set when the
/// folder cannot be read to its end.
void readFolder(const std::filesystem::path& folder, const WantEntry& wanted, const VisitEntry& visit,
                std::error_code& error);

} // namespace platform
