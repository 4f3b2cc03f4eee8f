#pragma once

#include <filesystem>
#include <string>

namespace dbservice {

/// What the library's tables in a store's file lack of the columns that the library gives them, as "FastAccess lacks
/// the column Tip"; empty if they lack nothing. Tables that are missing do not count, and a file whose name is not one
/// of the stores' is taken for a gallery.
///
/// The library opens its files elsewhere from then on, so this is for the end of a run.
std::string missingColumns(const std::filesystem::path& file);

} // namespace dbservice
