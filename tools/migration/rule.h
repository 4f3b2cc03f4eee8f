#pragma once

#include "platform/text.h"
#include "value.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

/// How one column comes over is one row of a `constexpr` array per table. Moving, comparing and counting what is lost
/// all go by it.
namespace migration {

struct Looked {
    Value value;
    Loss loss = Loss::None;
};

template <class Legacy, class Current> struct Rule {
    enum Trait : unsigned {
        Plain = 0,
        Key = 1,     ///< tells the row from others and stays when the row changes; without any, the whole row does
        Lossy = 2,   ///< may lose something of its value
        Dropped = 4, ///< the store has no such column
    };

    std::string_view column; ///< as SQL writes it
    unsigned traits = Plain;
    /// The value that the store would hold. Text lies in the record or in `scratch`.
    Looked (*look)(const Legacy&, std::string& scratch) = nullptr;
    void (*move)(Legacy&, Current&) = nullptr;
};

template <auto Member> struct MemberOf;

template <class R, class T, T R::*Member> struct MemberOf<Member> {
    using Record = R;
    using Type = T;
};

template <auto From> using RecordOf = typename MemberOf<From>::Record;

template <auto From, auto To> using RuleOf = Rule<RecordOf<From>, RecordOf<To>>;

/// Both records have the same value.
template <auto From, auto To> constexpr auto same(std::string_view column, unsigned traits = 0)
{
    using Type = typename MemberOf<From>::Type;
    using Target = typename MemberOf<To>::Type;
    RuleOf<From, To> rule{column, traits};
    rule.look = [](const RecordOf<From>& row, std::string&) -> Looked {
        if constexpr (std::is_same_v<Type, std::string>) {
            return {Value::of(std::string_view(row.*From))};
        } else {
            static_assert(sizeof(Type) <= sizeof(Target));
            return {Value::of(int64{row.*From})};
        }
    };
    rule.move = [](RecordOf<From>& row, RecordOf<To>& current) {
        if constexpr (std::is_same_v<Target, std::wstring>) {
            current.*To = platform::toWide(row.*From);
        } else if constexpr (std::is_same_v<Type, std::string>) {
            current.*To = std::move(row.*From);
        } else {
            current.*To = row.*From;
        }
    };
    return rule;
}

/// 64 bits into 32.
template <auto From, auto To> constexpr auto clamped(std::string_view column)
{
    RuleOf<From, To> rule{column, RuleOf<From, To>::Lossy};
    rule.look = [](const RecordOf<From>& row, std::string&) -> Looked {
        const Number number = within32Bits(row.*From);
        return {Value::of(number.value), number.loss};
    };
    rule.move = [](RecordOf<From>& row, RecordOf<To>& current) {
        current.*To = static_cast<std::int32_t>(within32Bits(row.*From).value);
    };
    return rule;
}

/// A number becomes its decimal digits.
template <auto From, auto To> constexpr auto digits(std::string_view column)
{
    RuleOf<From, To> rule{column};
    rule.look = [](const RecordOf<From>& row, std::string& scratch) -> Looked {
        scratch = std::to_string(row.*From);
        return {Value::of(std::string_view(scratch))};
    };
    rule.move = [](RecordOf<From>& row, RecordOf<To>& current) { current.*To = std::to_string(row.*From); };
    return rule;
}

/// A text becomes the number that it is.
template <auto From, auto To> constexpr auto number(std::string_view column)
{
    RuleOf<From, To> rule{column, RuleOf<From, To>::Lossy};
    rule.look = [](const RecordOf<From>& row, std::string&) -> Looked {
        const Number number = numberFrom(row.*From);
        return {Value::of(number.value), number.loss};
    };
    rule.move = [](RecordOf<From>& row, RecordOf<To>& current) { current.*To = numberFrom(row.*From).value; };
    return rule;
}

/// A number whose fraction the store's writer cuts off.
template <auto From, auto To> constexpr auto whole(std::string_view column)
{
    RuleOf<From, To> rule{column};
    rule.look = [](const RecordOf<From>& row, std::string&) -> Looked { return {Value::ofWhole(row.*From)}; };
    rule.move = [](RecordOf<From>& row, RecordOf<To>& current) { current.*To = row.*From; };
    return rule;
}

/// The legacy record has no such column: 0.
template <class Legacy, auto To> constexpr auto zero(std::string_view column)
{
    Rule<Legacy, RecordOf<To>> rule{column};
    rule.look = [](const Legacy&, std::string&) -> Looked { return {Value::of(int64{0})}; };
    rule.move = [](Legacy&, RecordOf<To>& current) { current.*To = 0; };
    return rule;
}

/// The store has no such column.
template <auto From, class Current> constexpr auto dropped(std::string_view column)
{
    Rule<RecordOf<From>, Current> rule{column, Rule<RecordOf<From>, Current>::Dropped};
    rule.look = [](const RecordOf<From>& row, std::string&) -> Looked {
        using Type = typename MemberOf<From>::Type;
        if constexpr (std::is_same_v<Type, std::string>) {
            return {Value::of(std::string_view(row.*From))};
        } else if constexpr (std::is_floating_point_v<Type>) {
            return {Value::of(int64{row.*From != 0})};
        } else {
            return {Value::of(int64{row.*From})};
        }
    };
    return rule;
}

} // namespace migration
