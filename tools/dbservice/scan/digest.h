#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace dbservice {

/// 32 hexadecimal digits that are the same for the same name or path, as the system has it.
std::string idOf(const std::filesystem::path::string_type& path);

/// 32 hexadecimal digits of what is in a file. Nothing when it cannot be read to its end.
std::optional<std::string> contentHash(const std::filesystem::path& file);

} // namespace dbservice
