#pragma once

#include "stores/database.h"
#include "terminal/json.h"

#include <string>

namespace dbservice {

/// A cell of any type for JSON; a blob as X'0A'.
Json cellJson(const Database::Row& row, int column);

/// The same for a person: NULL, a number, a text as it is, X'0A'.
std::string cellText(const Database::Row& row, int column);

/// As SQL writes it: a text between quotes.
std::string cellLiteral(const Database::Row& row, int column);

} // namespace dbservice
