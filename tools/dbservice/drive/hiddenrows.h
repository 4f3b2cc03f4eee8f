#pragma once

#include <string>
#include <unordered_map>
#include <vector>

namespace dbservice {

class Session;

/// Why lists hide rows: "is in the bin (recycled = 1)". By the id of the row; of the others there is nothing.
using HiddenRows = std::unordered_map<std::string, std::vector<std::string>>;

/// Of the rows with these ids. Throws a `Failure` where the store cannot be read.
HiddenRows hiddenRows(Session& session, const std::vector<std::string>& ids);

} // namespace dbservice
