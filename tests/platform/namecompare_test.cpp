#include "platform/namecompare.h"

#include <array>
#include <cstdint>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace {

using namespace std::string_literals;

int compare(std::string_view left, std::string_view right)
{
    const int order = platform::compareNames(left, right);
    return (order > 0) - (order < 0);
}

void check(const std::vector<std::tuple<std::string, std::string, int>>& pairs)
{
    for (const auto& [left, right, order] : pairs) {
        SCOPED_TRACE(testing::PrintToString(left) + " and " + testing::PrintToString(right));
        EXPECT_EQ(compare(left, right), order);
        EXPECT_EQ(compare(right, left), -order);
    }
}

// What a person expects of names, and what the system's order and the project's own both keep.
TEST(NameCompare, OrdersNamesAsAPersonWould)
{
    check({
        {"", "", 0},
        {"", "0", -1},
        {"img9", "img9a", -1},
        {"a1b2", "a1b10", -1},
        {"9", "a", -1},
        {"abcxyz", "ABCXYZ", 0},
        {"abc", "ABD", -1},
        {"file", "file1", -1},
        {"\xC3\x84pfel", "\xC3\xA4pfel", 0},
        {std::string(1000, 'x') + '2', std::string(1000, 'X') + "10", -1},
    });
}

TEST(NameCompare, OwnOrderIsTheOneOnDisk)
{
    if (platform::nameOrderVersion() == "StrCmpLogicalW"s) {
        return;
    }
    EXPECT_EQ(platform::nameOrderVersion(), "own order 1 (Unicode 15.0 simple case folding)"s);
    const std::string nines(60, '9');
    check({
        // digit runs
        {"img007.jpg", "img7.JPG", 0},
        {"a0", "a00", 0},
        {"a0b", "a00c", -1},
        {nines + "8", nines + "9", -1},
        {std::string(60, '0') + nines, nines, 0},
        {"0", "\0"s, 1},
        // a digit run against another character
        {"1", "/", 1},
        {"9", ":", -1},
        {"a9", "a/", 1},
        {"9", "\xEF\xBC\x90", -1}, // a wide 0 is a character like any other
        // letters
        {"_", "A", -1},
        {"Z", "[", 1},
        {"\xCE\xA3", "\xCF\x82", 0},     // a capital and the other small sigma
        {"\xE2\x84\xAA-1", "K-1", 0},    // the Kelvin sign is a k
        {"\xC3\x9F", "\xE1\xBA\x9E", 0}, // both sharp s
        {"\xC3\x9F", "ss", 1},           // and neither is a pair
        {"\xC4\xB0", "i", 1},            // a dotted capital I is no i
        {"\xF0\x90\x90\x80", "\xF0\x90\x90\xA8", 0},
        {"\xC7\x84", "\xC7\x86", 0}, // a capital, a title and a small letter in a row
        {"\xC7\x85", "\xC7\x86", 0},
        {"\xC4\x80", "\xC4\x81", 0}, // capitals at even places, with small letters in between
        {"\xC4\x81", "\xC4\x82", -1},
        {"\xEF\xBF\xBF", "\xF0\x90\x80\x80", -1},
        // prefixes and NULs
        {"a", "a\0"s, -1},
        {"a\0b"s, "a\0c"s, -1},
        // what is not UTF-8 counts as U+FFFD
        {"\xFF", "\xEF\xBF\xBD", 0},
        {"\xE2\x82", "\xFF", 0},
        {"\xED\xA0\x80", "\xFF\xFF\xFF", 0},
        {"\xC3", "\xC3\xA4", 1},
        {"\xC3-01", "\xFF-1", 0},
    });
}

// SQLite hands over ranges of a page, without a NUL behind them.
TEST(NameCompare, ReadsNothingBehindTheRange)
{
    const std::string_view page = "img12\xC3\xA4-99";
    for (std::size_t length = 0; length <= page.size(); ++length) {
        EXPECT_EQ(compare(page.substr(0, length), std::string(page.substr(0, length))), 0) << length;
    }
    EXPECT_EQ(compare({}, ""), 0);
}

// The index on disk needs a total preorder: any two names compare, and no two ways of comparing them disagree.
TEST(NameCompare, IsATotalPreorder)
{
    const std::uint32_t seed = std::random_device{}();
    std::mt19937 random(seed);
    const auto below = [&random](std::size_t limit) { return static_cast<std::size_t>(random() % limit); };
    // Few different pieces, so that names meet in every way the order knows: pairs that are equal or nearly so.
    // clang-format off
    const std::vector<std::string> pieces{
        "a", "A", "k", "\xE2\x84\xAA", "\xC3\x84", "\xC3\xA4", "\xCF\x83", "\xCF\x82", "\xF0\x90\x90\x80",
        "\xF0\x90\x90\xA8", "\xFF", "\xEF\xBF\xBD", "0", "00", "7", "07", "1", "9", "-", "/", ":", "\0"s, "b", "",
        "\x80", "", "\xC3", "\xF0\x9F\x98"};
    // clang-format on
    constexpr int rounds = 200'000;
    int equal = 0;
    for (int round = 0; round < rounds; ++round) {
        const std::array model{below(pieces.size()), below(pieces.size()), below(pieces.size()), below(pieces.size())};
        std::array<std::string, 3> names;
        for (std::string& name : names) {
            for (const std::size_t piece : model) {
                const std::size_t change = below(8);
                name += pieces[change == 0 ? below(pieces.size()) : change < 4 ? piece ^ 1 : piece];
            }
        }
        const auto failure = [&] { return "seed " + std::to_string(seed) + ": " + testing::PrintToString(names); };
        const int order = compare(names[0], names[1]);
        const int next = compare(names[1], names[2]);
        ASSERT_EQ(compare(names[0], names[0]), 0) << failure();
        ASSERT_EQ(compare(names[1], names[0]), -order) << failure();
        if (order * next >= 0) { // up, down or equal all the way
            ASSERT_EQ(compare(names[0], names[2]), order != 0 ? order : next) << failure();
        }
        equal += order == 0 && names[0] != names[1] ? 1 : 0;
    }
    EXPECT_GT(equal, rounds / 20) << "different names that compare equal were among them";
}

} // namespace
