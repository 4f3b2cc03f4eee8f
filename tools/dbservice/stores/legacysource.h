#pragma once

#include "stores/readablestore.h"

#include <filesystem>
#include <optional>

namespace dbservice {

/// A file of the earlier client generation, to be read without changing a byte of it: where it lies, or a temporary
/// copy where the library could not leave it as it is or may not open it for writing.
///
/// Throws a `Failure` unless it is such a file.
class LegacySource {
public:
    explicit LegacySource(const std::filesystem::path& file);

    /// Good as long as this object.
    const std::filesystem::path& file() const { return m_file; }

private:
    std::filesystem::path m_file;
    std::optional<ReadableStore> m_readable;
};

} // namespace dbservice
