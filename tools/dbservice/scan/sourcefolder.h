#pragma once

#include "databaseservice/clientconstants.h"
#include "platform/filestatus.h"
#include "scan/digest.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace dbservice {

class Reporter;

/// A name or a path as the system has it; names in a path are joined by '/'.
using NativeText = std::filesystem::path::string_type;

/// One entry of a real folder.
struct DiskEntry {
    NativeText name;
    std::string shownName; ///< UTF-8, repaired
    Digest key{};          ///< the same for the same path below the source, whatever else changes
    platform::FileStatus status;
    std::string_view mimeType;
    DatabaseService::ClientConstants::ExtensionGroup group = DatabaseService::ClientConstants::ExtensionGroup::Unknown;
    /// False where the entry is there but the system would not tell what it is; then only name and id count.
    bool examined = true;

    std::string id() const { return textOf(key); }
    bool isFolder() const { return examined && status.kind == platform::FileKind::Folder; }
};

/// Seconds for a time in nanoseconds, towards the past.
std::int64_t wholeSeconds(std::int64_t nanoseconds);

/// The real folder that a command records, read one folder at a time. Nothing but folders is opened, and links are
/// looked at but not followed. What is odd is a warning with its path and is counted.
class SourceFolder {
public:
    /// By what an entry is, and by what its name says if it is a file.
    using Wanted = std::function<bool(platform::FileKind, DatabaseService::ClientConstants::ExtensionGroup)>;

    /// Throws a `Failure` when `source` is no folder that can be read. The files of a store in `storeFolder` are left
    /// out wherever they turn up, and so is without a word what is neither a folder nor `wanted`.
    SourceFolder(const std::filesystem::path& source, const std::filesystem::path& storeFolder, Reporter& reporter,
                 Wanted wanted = {});

    /// The source itself as an entry; its path below the source is empty.
    DiskEntry self() const;
    /// What is in a folder, in no particular order; `folder` is its path below the source. Nothing when the folder
    /// cannot be read to its end.
    std::optional<std::vector<DiskEntry>> list(const NativeText& folder);

    std::filesystem::path absolute(const NativeText& below) const;
    /// The same of a folder as UTF-8, with a separator at its end.
    std::string shownPrefix(const NativeText& folder) const;

    /// Counts an entry or a folder as lost, with a warning.
    void warnLost(const std::filesystem::path& path, const std::string& what);

    /// Entries that were recorded although something is wrong with them.
    int odd() const { return m_odd; }
    /// Entries and folders that could not be recorded.
    int lost() const { return m_lost; }

private:
    std::optional<DiskEntry> examine(const NativeText& name, const platform::FileStatus& status,
                                     const std::error_code& error);
    bool wants(const NativeText& name, platform::FileKind kind) const;
    std::filesystem::path current() const { return absolute(m_below); }
    void checkLink(const std::filesystem::path& link);
    void warnOdd(const std::filesystem::path& path, const std::string& what);

    std::filesystem::path m_source;
    std::filesystem::path m_storeFolder;
    Reporter& m_reporter;
    Wanted m_wanted;
    NativeText m_below; // the path of the entry that is looked at
    int m_odd = 0;
    int m_lost = 0;
};

} // namespace dbservice
