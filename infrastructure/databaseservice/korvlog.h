// The library's own: not installed.
#pragma once

#include "clientservices/korvwritelog.h"

#include <array>
#include <cstddef>
#include <string_view>
#include <type_traits>

namespace DatabaseService {

/// What prints a value of the type; other types are not for the log.
template <class Value> inline constexpr char conversionOf = '\0';
template <> inline constexpr char conversionOf<int> = 'd';
template <> inline constexpr char conversionOf<unsigned> = 'u';
template <> inline constexpr char conversionOf<const char*> = 's';
template <> inline constexpr char conversionOf<const void*> = 'p';

/// Whether a printf format asks for just these values: plain conversions, without widths or flags.
template <class... Values> constexpr bool formatFits(std::string_view format)
{
    constexpr std::array<char, sizeof...(Values)> wanted{conversionOf<Values>...};
    std::size_t met = 0;
    for (std::size_t at = format.find('%'); at != std::string_view::npos; at = format.find('%', at + 2)) {
        const char conversion = at + 1 < format.size() ? format[at + 1] : ' ';
        if (conversion == '%') {
            continue;
        }
        if (met == wanted.size() || wanted[met] != conversion) {
            return false;
        }
        ++met;
    }
    return met == wanted.size();
}

/// A format that compiles only where it fits its values.
template <class... Values> class LogFormat {
public:
    consteval LogFormat(const char* text) : m_text(text)
    {
        if (!formatFits<Values...>(text)) {
            theFormatDoesNotFitItsValues();
        }
    }

    constexpr const char* text() const { return m_text; }

private:
    static void theFormatDoesNotFitItsValues() { } // not to be had while compiling, which is what stops the compiler

    const char* m_text;
};

/// One source file's way to the client's printf-style log.
struct KorvLog {
    int channel;
    int level;
    const char* file;

    template <class... Values>
    void operator()(int line, const char* function, LogFormat<std::type_identity_t<Values>...> format,
                    Values... values) const
    {
        CommonAbility::KorvWriteLog(channel, level, "unknow", line, file, function, format.text(), values...);
    }
};

} // namespace DatabaseService
