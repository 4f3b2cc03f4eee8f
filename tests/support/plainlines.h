#pragma once

#include "support/lists.h"
#include "support/storetest.h"

#include <regex>
#include <string>
#include <vector>

namespace testsupport {

/// A line of the plain connections in the client's printf-style log. `function` has its class before it.
inline std::string plainLine(const std::string& function, const std::string& message)
{
    const std::string file = function.starts_with("CommonSqliteDb::") ? "commonsqlitedb" : "clouddriverdb";
    return "262145 " + function + ": " + message + " (module 31, flag 0, unknow in " + file + ')';
}

inline std::string notOpen(const std::string& operation)
{
    return plainLine("CommonSqliteDb::" + operation, "db not open, excute failed");
}

/// The line of a failure that SQLite describes.
inline std::string sqliteFailed(const std::string& title, int code, const std::string& description)
{
    return plainLine("CommonSqliteDb::LogoutDbError",
                     title + " failed, errcode=" + std::to_string(code) + ",errDesc[" + description + ']');
}

struct PlainTest : StoreTest {
    using Lines = std::vector<std::string>;

    /// All lines since the last look, without their source lines.
    Lines logged()
    {
        static const std::regex sourceLine(", line [1-9][0-9]*, flag");
        return mapped(m_log.take(), [](const auto& line) { return std::regex_replace(line, sourceLine, ", flag"); });
    }
};

} // namespace testsupport
