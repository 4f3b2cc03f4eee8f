#pragma once

#include <filesystem>
#include <vector>

namespace dbservice {

/// The names of the databases in a folder, sorted: files of any name, without empty ones. Throws a `Failure` when the
/// folder cannot be read.
std::vector<std::filesystem::path> databaseFilesIn(const std::filesystem::path& folder);

} // namespace dbservice
