#pragma once

#include <filesystem>

namespace dbservice {

/// A new folder where the system keeps temporary files, for its user alone. It is removed with this object and all
/// that is in it.
///
/// Threads: any.
/// Throws a `Failure` when no folder can be made.
class TemporaryFolder {
public:
    TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder();

    const std::filesystem::path& path() const { return m_path; }

    /// Puts a copy of a file into the folder, in place of one of the name. False when there is no such file; throws a
    /// `Failure` when it cannot be copied.
    bool addCopy(const std::filesystem::path& file, const std::filesystem::path& name);

    /// For a process that is about to be ended: removes the folders of all these objects. Whoever makes or destroys one
    /// from then on waits for that end.
    static void removeAllForGood();

private:
    std::filesystem::path m_path;
};

} // namespace dbservice
