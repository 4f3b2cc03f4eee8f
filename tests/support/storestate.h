#pragma once

#include <filesystem>
#include <map>
#include <string>

namespace testsupport {

/// What the tables of all stores in a folder hold: a row under its table and its key.
using State = std::map<std::string, std::string>;
/// Throws `std::runtime_error` unless all files are sound and nobody has a lock on them.
State stateOf(const std::filesystem::path& folder);

} // namespace testsupport
