#pragma once

#include "stores/temporaryfolder.h"

#include <filesystem>
#include <optional>
#include <string>

namespace dbservice {

/// Where a command that only shows may read a store's file without changing a byte of the store: the store's own
/// folder or, where opening the file would replay a journal or lay down files beside it, or where the library lays
/// down tables before it reads, a temporary copy of the file and its journal, removed with this object.
///
/// Throws a `Failure` when the file is missing or no database, and when no copy can be made.
class ReadableStore {
public:
    enum class Copy { WhereNeeded, Always };

    /// `called` is what the person knows the file as.
    ReadableStore(const std::filesystem::path& folder, const std::filesystem::path& fileName, Copy copied,
                  const std::string& called = "the store");
    ReadableStore(const ReadableStore&) = delete;
    ReadableStore& operator=(const ReadableStore&) = delete;

    bool isCopy() const { return m_copy.has_value(); }
    const std::filesystem::path& folder() const { return m_copy ? m_copy->path() : m_folder; }

private:
    void makeCopy(const std::filesystem::path& file, const std::filesystem::path& fileName, const std::string& called);

    std::filesystem::path m_folder;
    std::optional<TemporaryFolder> m_copy;
};

/// Throws a `Failure` when the file is missing, empty or no database.
void requireStoreFile(const std::filesystem::path& folder, const std::filesystem::path& fileName);

/// Whether the file can be read and is a database, or empty.
bool isDatabase(const std::filesystem::path& file);

/// Throws a `Failure` when something is there that is no database. An empty file is none yet, and passes.
void requireDatabaseOrNothing(const std::filesystem::path& file);

} // namespace dbservice
