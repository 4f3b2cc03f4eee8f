#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// Text as a person reads it. All functions take and give UTF-8 and none looks at the locale.
namespace dbservice {

/// With everything escaped that would move the cursor or turn the text around: "\n", "\x1b", "\u{202e}".
std::string printable(std::string_view text);

/// JSON with the same escaped as JSON does, which leaves it as it is from U+007F on. It means what it meant.
std::string withoutTreachery(std::string json);

/// Text for a list, which tells every two texts apart: where `printable` escapes anything the text stands between
/// marks, as shells write it, and its own quotes and backslashes are escaped, too.
std::string inCell(std::string_view text);

/// How many cells of a terminal the text takes. Wide characters take two, combining ones none.
int cellWidth(std::string_view text);

/// Cut to at most `width` cells, the last of them an ellipsis if anything was cut.
std::string fitted(std::string_view text, int width);

/// "0 B", "1.5 KiB", "12.0 GiB".
std::string humanSize(std::int64_t bytes);

/// A time since 1970-01-01 00:00 UTC as "2024-02-29 12:34:56" in UTC. Clients store seconds, milliseconds and
/// microseconds: what would be beyond the year 5138 in one unit is in the next.
std::string humanTime(std::int64_t time);

/// "1,234,567".
std::string grouped(std::int64_t number);

/// "1 row", "2,000 rows".
std::string counted(std::int64_t number, std::string_view singular, std::string_view plural);

/// Which rows a page shows: "101-200 of 1,234", "none of 0".
std::string pageNumbers(std::int64_t offset, std::int64_t shown, std::int64_t total);

/// "0.12"
std::string twoDecimals(double number);

} // namespace dbservice
