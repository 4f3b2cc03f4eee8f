#pragma once

#include <string_view>

namespace platform {

struct LeadingReal {
    enum class Kind { None, Number, OutOfRange };

    Kind kind = Kind::None;
    double value = 0; ///< out of range: infinite, or 0 for what lies between 0 and the smallest number, with its sign
};

/// The number at the front of a text, as C reads it outside any locale: blanks, a sign, digits with a point and an
/// exponent, or hexadecimal ones behind "0x", or "inf", "infinity" or "nan" in letters of either case; whatever
/// follows is ignored. Numbers below the smallest normal one are numbers, with the digits that they have left.
LeadingReal leadingReal(std::string_view text) noexcept;

/// The same, or what `std::stod` throws: `std::invalid_argument` with "invalid stod argument" without a number,
/// `std::out_of_range` with "stod argument out of range". Whose library it is makes no difference to type and text.
double requiredReal(std::string_view text);

} // namespace platform
