#include "platform/leadingreal.h"

#include "platform/leadinginteger.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <stdexcept>
#include <system_error>

namespace platform {

namespace {

constexpr std::string_view hexadecimalDigits = "0123456789abcdefABCDEF";

// "0x" without a digit behind it is a 0 and two letters.
bool isHexadecimal(std::string_view text)
{
    if (!text.starts_with("0x") && !text.starts_with("0X")) {
        return false;
    }
    text.remove_prefix(text.substr(2).starts_with('.') ? 3 : 2);
    return !text.empty() && hexadecimalDigits.find(text.front()) != std::string_view::npos;
}

// Whether a number that does not fit lies beyond the largest, and not below the smallest. It is so far from 1 that
// the place of its first digit decides.
bool isHuge(std::string_view number, bool hexadecimal)
{
    const std::size_t mark = std::min(number.find_first_of(hexadecimal ? "pP" : "eE"), number.size());
    const std::string_view digits = number.substr(0, mark);
    const auto point = static_cast<double>(std::min(digits.find('.'), digits.size()));
    const auto first = static_cast<double>(digits.find_first_not_of("0."));
    const auto exponent = static_cast<double>(leadingInteger(number.substr(std::min(mark + 1, number.size()))));
    return (point - first) * (hexadecimal ? 4 : 1) + exponent > 0;
}

} // namespace

LeadingReal leadingReal(std::string_view text) noexcept
{
    text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
    const bool negative = text.starts_with('-');
    text.remove_prefix(negative || text.starts_with('+') ? 1 : 0);
    if (text.starts_with('-')) {
        return {}; // `from_chars` would take this one
    }
    const bool hexadecimal = isHexadecimal(text);
    text.remove_prefix(hexadecimal ? 2 : 0);

    LeadingReal number{LeadingReal::Kind::Number};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number.value,
                                              hexadecimal ? std::chars_format::hex : std::chars_format::general);
    if (error == std::errc::invalid_argument) {
        return {};
    }
    if (error == std::errc::result_out_of_range) {
        const std::string_view taken = text.substr(0, static_cast<std::size_t>(end - text.data()));
        number.kind = LeadingReal::Kind::OutOfRange;
        number.value = isHuge(taken, hexadecimal) ? std::numeric_limits<double>::infinity() : 0;
    }
    if (negative) {
        number.value = -number.value;
    }
    return number;
}

double requiredReal(std::string_view text)
{
    const LeadingReal number = leadingReal(text);
    if (number.kind == LeadingReal::Kind::None) {
        throw std::invalid_argument("invalid stod argument");
    }
    if (number.kind == LeadingReal::Kind::OutOfRange) {
        throw std::out_of_range("stod argument out of range");
    }
    return number.value;
}

} // namespace platform
