#include "databaseservice/engine/cellreader.h"

#include "platform/leadinginteger.h"
#include "platform/text.h"

#include <cstring>

namespace DatabaseService {

// The functions that every cell goes through are compiled here and nowhere else. Inline, each source file had a copy as
// its compiler saw fit, the linker took any of them, and reading cost up to 4 % more with one than with another.

CellReader::Kind CellReader::next()
{
    while (m_column < m_columns) {
        m_value = sqlite3_column_value(m_stmt, m_column++);
        switch (sqlite3_value_type(m_value)) {
        case SQLITE_INTEGER:
            return Kind::Integer;
        case SQLITE_TEXT:
        case SQLITE_FLOAT:
            return Kind::Text;
        case SQLITE_NULL:
            if (const Kind kind = kindOfNull(); kind != Kind::None) {
                return kind;
            }
            break;
        default:
            break;
        }
    }
    return Kind::None;
}

std::string_view CellReader::storedText() const
{
    const auto* bytes = reinterpret_cast<const char*>(sqlite3_value_text(m_value));
    return bytes == nullptr || *bytes == '\0' ? std::string_view() : std::string_view(bytes);
}

std::string_view CellReader::text()
{
    const std::string_view stored = storedText();
    if (!platform::isUtf8(stored)) [[unlikely]] {
        return m_repaired = platform::repairUtf8(stored);
    }
    return stored;
}

// The conversion repairs by itself.
std::wstring CellReader::wideText() const
{
    return platform::toWide(storedText());
}

int64 CellReader::nextInteger()
{
    switch (next()) {
    case Kind::Integer:
        return integer();
    case Kind::Text:
        return platform::leadingInteger(text());
    case Kind::None:
        break;
    }
    return 0;
}

void CellReader::nextText(std::string& out)
{
    switch (next()) {
    case Kind::Integer:
        out = std::to_string(integer());
        break;
    case Kind::Text:
        out.assign(text());
        break;
    case Kind::None:
        out.clear();
        break;
    }
}

void CellReader::nextText(std::wstring& out)
{
    switch (next()) {
    case Kind::Integer:
        out = std::to_wstring(integer());
        break;
    case Kind::Text:
        out = wideText();
        break;
    case Kind::None:
        out.clear();
        break;
    }
}

CellReader::Kind CellReader::kindOfNull()
{
    if (m_nullKinds.empty()) {
        m_nullKinds.resize(static_cast<std::size_t>(m_columns));
    }
    std::optional<Kind>& kind = m_nullKinds[static_cast<std::size_t>(m_column) - 1];
    if (!kind) {
        kind = kindOfDeclaration();
    }
    return *kind;
}

// The declared type is compared whole and with regard to case; an expression has none.
CellReader::Kind CellReader::kindOfDeclaration() const
{
    const char* declared = sqlite3_column_decltype(m_stmt, m_column - 1);
    if (declared == nullptr || std::strcmp(declared, "INTEGER") == 0) {
        return Kind::Integer;
    }
    if (std::strcmp(declared, "TEXT") == 0 || std::strcmp(declared, "VARCHAR") == 0) {
        return Kind::Text;
    }
    return Kind::None;
}

} // namespace DatabaseService
