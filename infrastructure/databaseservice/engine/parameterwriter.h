#pragma once

#include "databaseservice/integers.h"
#include "platform/text.h"

#include <algorithm>
#include <limits>
#include <sqlite3.h>
#include <string>

namespace DatabaseService {

/// Binds values to the parameters of one statement. A refused value is kept for the log.
class ParameterWriter {
public:
    enum class Text {
        Referenced, ///< the caller's text outlives the step
        Copied,
    };

    struct Refused {
        int index = 0;
        std::wstring value;
    };

    ParameterWriter(sqlite3_stmt* stmt, Text text)
        : m_stmt(stmt),
          m_destructor(text == Text::Referenced ? SQLITE_STATIC : SQLITE_TRANSIENT)
    {
    }

    /// 0 for a name that the statement does not have; binding to 0 is refused.
    int index(const std::string& name) const { return sqlite3_bind_parameter_index(m_stmt, name.c_str()); }

    /// Text that is not valid UTF-8 is bound repaired.
    bool bind(int index, const std::string& utf8)
    {
        if (!platform::isUtf8(utf8)) [[unlikely]] {
            return bindText(index, platform::repairUtf8(utf8), SQLITE_TRANSIENT);
        }
        return bindText(index, utf8, m_destructor);
    }

    bool bind(int index, const std::wstring& wide) { return bindText(index, platform::toUtf8(wide), SQLITE_TRANSIENT); }

    bool bind(int index, int64 value)
    {
        if (sqlite3_bind_int64(m_stmt, index, value) == SQLITE_OK) [[likely]] {
            return true;
        }
        m_refused = {index, std::to_wstring(value)};
        return false;
    }

    const Refused& refused() const { return m_refused; }

private:
    bool bindText(int index, const std::string& utf8, sqlite3_destructor_type destructor)
    {
        // What is longer than SQLite's own limit is refused by SQLite, whatever the length says beyond it.
        constexpr std::size_t longest = std::numeric_limits<int>::max();
        const int length = static_cast<int>(std::min(utf8.size(), longest));
        if (sqlite3_bind_text(m_stmt, index, utf8.data(), length, destructor) == SQLITE_OK) [[likely]] {
            return true;
        }
        m_refused = {index, platform::toWide(utf8)};
        return false;
    }

    sqlite3_stmt* m_stmt;
    sqlite3_destructor_type m_destructor;
    Refused m_refused;
};

} // namespace DatabaseService
