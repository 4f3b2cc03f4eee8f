#pragma once

#include "stores/finding.h"

#include <filesystem>
#include <string>
#include <vector>

namespace dbservice {

class Session;

/// Looks through a file: who has it locked, whether it is whole, what its tables and indexes lack, its cells and rows,
/// and whether its index of names is in this build's order. Changes nothing. What keeps it from looking is a finding.
Findings checkStore(Session& session, const std::filesystem::path& file);

/// Makes all indexes of a file anew, and those that the library would have made; nothing else of it changes. A copy of
/// the file is beside it afterwards, under a name that was free, which is given back. Throws a `Failure`, with the file
/// as it was.
std::filesystem::path makeIndexesAnew(const std::filesystem::path& file);

} // namespace dbservice
