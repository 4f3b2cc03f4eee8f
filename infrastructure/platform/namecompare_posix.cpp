#include "platform/namecompare.h"

#include "platform/ascii.h"
#include "platform/casefolding.h"
#include "platform/utf8decode.h"

#include <algorithm>
#include <array>

namespace platform {

namespace {

constexpr std::uint8_t notPlain = 0xFF;

constexpr bool isDigit(char byte)
{
    return byte >= '0' && byte <= '9';
}

/// For each byte what it folds to where one byte decides, which is ASCII without the digits.
constexpr auto plainFolding = [] {
    std::array<std::uint8_t, 256> table{};
    for (std::size_t byte = 0; byte < table.size(); ++byte) {
        const bool isCapital = byte >= 'A' && byte <= 'Z';
        const bool isPlain = byte < 0x80 && !(byte >= '0' && byte <= '9');
        table[byte] = isPlain ? static_cast<std::uint8_t>(isCapital ? byte - 'A' + 'a' : byte) : notPlain;
    }
    return table;
}();

constexpr std::uint8_t foldPlain(char byte)
{
    return plainFolding[static_cast<unsigned char>(byte)];
}

/// Takes the digit run off the front. Gives its digits without leading zeros.
std::string_view takeNumber(std::string_view& rest)
{
    std::size_t zeros = 0;
    while (zeros < rest.size() && rest[zeros] == '0') {
        ++zeros;
    }
    std::size_t end = zeros;
    while (end < rest.size() && isDigit(rest[end])) {
        ++end;
    }
    const std::string_view number(rest.data() + zeros, end - zeros);
    rest.remove_prefix(end);
    return number;
}

char32_t takeCharacter(std::string_view& rest)
{
    std::size_t length = 0;
    const char32_t character = detail::decodeRepaired(rest, length);
    rest.remove_prefix(length);
    return character;
}

int compareNumbers(std::string_view left, std::string_view right)
{
    if (left.size() != right.size()) {
        return left.size() < right.size() ? -1 : 1;
    }
    return left.compare(right);
}

int compareCharacters(char32_t left, char32_t right)
{
    if (left == right) {
        return 0;
    }
    left = detail::foldCase(left);
    right = detail::foldCase(right);
    return (left > right ? 1 : 0) - (left < right ? 1 : 0);
}

/// Compares the first digit run or character of each side and takes it off.
int compareFronts(std::string_view& left, std::string_view& right)
{
    if (isDigit(left.front()) && isDigit(right.front())) {
        const std::string_view number = takeNumber(left);
        return compareNumbers(number, takeNumber(right));
    }
    // A digit may meet another character here. Nothing else lies between '0' and '9' or folds to a digit, so each
    // digit answers as '0' would.
    const char32_t character = takeCharacter(left);
    return compareCharacters(character, takeCharacter(right));
}

} // namespace

int compareNames(std::string_view left, std::string_view right) noexcept
{
    while (true) {
        const std::size_t shorter = std::min(left.size(), right.size());
        std::size_t plain = 0;
        for (; plain < shorter; ++plain) {
            const std::uint8_t leftFolded = foldPlain(left[plain]);
            const std::uint8_t rightFolded = foldPlain(right[plain]);
            if (leftFolded == notPlain || rightFolded == notPlain) {
                break;
            }
            if (leftFolded != rightFolded) {
                return leftFolded < rightFolded ? -1 : 1;
            }
        }
        if (plain == shorter) {
            return (left.size() > shorter ? 1 : 0) - (right.size() > shorter ? 1 : 0);
        }
        left.remove_prefix(plain);
        right.remove_prefix(plain);
        const int order = compareFronts(left, right);
        if (order != 0) {
            return order;
        }
    }
}

const char* nameOrderVersion() noexcept
{
    return "own order 1 (Unicode 15.0 simple case folding)";
}

} // namespace platform
