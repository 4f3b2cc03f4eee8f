#pragma once

#include "databaseservice/integers.h"
#include "platform/text.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <sqlite3.h>
#include <string>
#include <string_view>
#include <vector>

namespace DatabaseService {

/// Binds values to the parameters of one statement, which nobody else binds meanwhile. A refused value is kept for the
/// log.
///
/// SQLite keeps what is bound from one execution to the next. Half of the cells of a usual record are empty texts and
/// numbers that the record before it has, too: for these nothing is left to do.
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
          m_destructor(text == Text::Referenced ? SQLITE_STATIC : SQLITE_TRANSIENT),
          m_bound(static_cast<std::size_t>(sqlite3_bind_parameter_count(stmt)) + 1)
    {
    }

    /// 0 for a name that the statement does not have; binding to 0 is refused.
    int index(const std::string& name) const { return sqlite3_bind_parameter_index(m_stmt, name.c_str()); }

    /// Text that is not valid UTF-8 is bound repaired.
    bool bind(int index, const std::string& utf8)
    {
        if (utf8.empty()) {
            return bindEmptyText(index);
        }
        if (!platform::isUtf8(utf8)) [[unlikely]] {
            return bindText(index, platform::repairUtf8(utf8), SQLITE_TRANSIENT);
        }
        return bindText(index, utf8, m_destructor);
    }

    bool bind(int index, const std::wstring& wide)
    {
        return wide.empty() ? bindEmptyText(index) : bindText(index, platform::toUtf8(wide), SQLITE_TRANSIENT);
    }

    bool bind(int index, int64 value)
    {
        Bound& bound = boundTo(index);
        if (bound.kind == Bound::Number && bound.number == value) {
            return true;
        }
        if (sqlite3_bind_int64(m_stmt, index, value) == SQLITE_OK) [[likely]] {
            bound = {Bound::Number, value};
            return true;
        }
        m_refused = {index, std::to_wstring(value)};
        return false;
    }

    const Refused& refused() const { return m_refused; }

private:
    /// What a parameter is known to hold.
    struct Bound {
        enum Kind { Other, Number, EmptyText };
        Kind kind = Other;
        int64 number = 0;
    };

    Bound& boundTo(int index) { return m_bound[static_cast<std::size_t>(index)]; }

    bool bindEmptyText(int index)
    {
        Bound& bound = boundTo(index);
        if (bound.kind == Bound::EmptyText) {
            return true;
        }
        const bool isBound = bindText(index, "", SQLITE_STATIC);
        if (isBound) {
            bound.kind = Bound::EmptyText;
        }
        return isBound;
    }

    bool bindText(int index, std::string_view utf8, sqlite3_destructor_type destructor)
    {
        boundTo(index).kind = Bound::Other;
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
    std::vector<Bound> m_bound; // by the parameter's index; nothing is ever bound to 0
    Refused m_refused;
};

} // namespace DatabaseService
