#pragma once

#include "databaseservice/integers.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

struct sqlite3_stmt;

namespace migration {

using DatabaseService::int64;

/// A cell as the store holds it, or would. Text lies elsewhere.
struct Value {
    enum class Kind { None, Number, Real, Text };

    Kind kind = Kind::None;
    int64 number = 0;
    double real = 0;
    std::string_view text;

    static Value of(int64 number) { return {Kind::Number, number, 0, {}}; }
    /// As a column of real numbers stores it: without its fraction, within 64 bits, 0 for what is no number.
    static Value ofWhole(double real);
    static Value of(std::string_view text) { return {Kind::Text, 0, 0, text}; }
    /// The text is good until the statement's next step.
    static Value stored(sqlite3_stmt* statement, int column);

    /// Neither 0 nor an empty text.
    bool holdsSomething() const { return number != 0 || real != 0 || !text.empty(); }

    bool operator==(const Value&) const = default;
};

/// What one value after the other comes to.
class Digest {
public:
    void add(const Value& value);
    std::uint64_t value() const { return m_value; }

private:
    std::uint64_t m_value = 0;
};

enum class Loss { None, Clamped, NotANumber };

struct Number {
    int64 value = 0;
    Loss loss = Loss::None;
};

/// The number, or the nearest one that 32 bits hold.
Number within32Bits(int64 number);

/// A text that is a number, blanks around it aside; a fraction is cut off, and beyond 64 bits it is the nearest within.
/// An empty text is 0. Of any other text the digits at its front, which is no number.
Number numberFrom(std::string_view text);

} // namespace migration
