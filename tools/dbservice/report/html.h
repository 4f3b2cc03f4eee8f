#pragma once

#include <string>
#include <string_view>

namespace dbservice {

/// The text as HTML shows it: markup stays text, and what would turn it around is escaped.
std::string escaped(std::string_view text);

/// JSON that can lie in a script element.
std::string inScript(std::string json);

} // namespace dbservice
