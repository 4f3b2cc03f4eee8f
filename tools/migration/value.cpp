#include "value.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <functional>
#include <limits>
#include <sqlite3.h>
#include <system_error>

namespace migration {

namespace {

constexpr double beyond64Bits = 9223372036854775808.0; // the first number above the highest, exactly

std::string_view withoutBlanks(std::string_view text)
{
    constexpr std::string_view blanks = " \t\n\v\f\r";
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    return text.substr(0, text.find_last_not_of(blanks) + 1);
}

bool isDigit(char letter)
{
    return letter >= '0' && letter <= '9';
}

Number wholeNumber(double real)
{
    if (real >= beyond64Bits) {
        return {std::numeric_limits<int64>::max(), Loss::Clamped};
    }
    if (real < -beyond64Bits) {
        return {std::numeric_limits<int64>::min(), Loss::Clamped};
    }
    return {static_cast<int64>(real)};
}

} // namespace

Value Value::ofWhole(double real)
{
    const double whole = std::isnan(real) ? 0 : std::clamp(std::trunc(real), -beyond64Bits, beyond64Bits);
    return {Kind::Real, 0, whole + 0.0, {}}; // there is one 0
}

Value Value::stored(sqlite3_stmt* statement, int column)
{
    switch (sqlite3_column_type(statement, column)) {
    case SQLITE_INTEGER:
        return of(int64{sqlite3_column_int64(statement, column)});
    case SQLITE_FLOAT:
        return {Kind::Real, 0, sqlite3_column_double(statement, column) + 0.0, {}};
    case SQLITE_TEXT: {
        const auto* const bytes = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
        return of(std::string_view(bytes, static_cast<std::size_t>(sqlite3_column_bytes(statement, column))));
    }
    default:
        return {};
    }
}

void Digest::add(const Value& value)
{
    std::uint64_t hash = static_cast<std::uint64_t>(value.kind);
    switch (value.kind) {
    case Value::Kind::None:
        break;
    case Value::Kind::Number:
        hash += std::hash<int64>()(value.number);
        break;
    case Value::Kind::Real:
        hash += std::hash<double>()(value.real);
        break;
    case Value::Kind::Text:
        hash += std::hash<std::string_view>()(value.text);
        break;
    }
    m_value = (m_value ^ hash) * 0x9E3779B97F4A7C15U;
    m_value ^= m_value >> 32;
}

Number within32Bits(int64 number)
{
    using Limits = std::numeric_limits<std::int32_t>;
    const int64 within = std::clamp<int64>(number, Limits::min(), Limits::max());
    return {within, within == number ? Loss::None : Loss::Clamped};
}

Number numberFrom(std::string_view text)
{
    text = withoutBlanks(text);
    if (text.empty()) {
        return {};
    }
    if (text.starts_with('+') && text.size() > 1 && isDigit(text[1])) {
        text.remove_prefix(1);
    }
    const char* const end = text.data() + text.size();
    Number number;
    const auto [wholeEnd, error] = std::from_chars(text.data(), end, number.value);
    if (error == std::errc::invalid_argument) {
        return {0, Loss::NotANumber};
    }
    if (error == std::errc::result_out_of_range) {
        number = {text.starts_with('-') ? std::numeric_limits<int64>::min() : std::numeric_limits<int64>::max(),
                  Loss::Clamped};
    }
    if (wholeEnd == end) {
        return number;
    }
    double real = 0;
    const auto [realEnd, realError] = std::from_chars(text.data(), end, real);
    if (realEnd == end) {
        if (realError == std::errc::result_out_of_range) { // by an exponent
            const bool tiny = text.find("e-") != std::string_view::npos || text.find("E-") != std::string_view::npos;
            real = tiny ? 0 : (text.starts_with('-') ? -HUGE_VAL : HUGE_VAL);
        }
        return wholeNumber(real);
    }
    return {number.value, Loss::NotANumber};
}

} // namespace migration
