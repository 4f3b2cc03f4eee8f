#pragma once

#include <filesystem>

namespace dbservice {

/// A file that gets its name when it is whole, and is gone otherwise. It is made under a name of its own, so that what
/// a run leaves that was killed is in nobody's way.
///
/// Throws a `Failure` where something of the name is there: nothing is overwritten.
class NewFile {
public:
    explicit NewFile(const std::filesystem::path& name);
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    ~NewFile();

    /// The name until then, which nothing has.
    const std::filesystem::path& partial() const { return m_partial; }
    void giveName() const;

private:
    std::filesystem::path m_name;
    std::filesystem::path m_partial;
};

} // namespace dbservice
