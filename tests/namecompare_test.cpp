#include "platform/namecompare.h"

#include <gtest/gtest.h>

#include <array>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

using namespace std::string_literals;

int sign(int order)
{
    return (order > 0) - (order < 0);
}

int compare(std::string_view left, std::string_view right)
{
    return sign(platform::compareNames(left, right));
}

/// Whether this build has the project's own order and not the system's.
bool hasOwnOrder()
{
    return std::string_view(platform::nameOrderVersion()).substr(0, 3) == "own";
}

struct Pair {
    std::string left;
    std::string right;
    int order;
};

void check(const std::vector<Pair>& pairs)
{
    for (const Pair& pair : pairs) {
        SCOPED_TRACE(testing::PrintToString(pair.left) + " and " + testing::PrintToString(pair.right));
        EXPECT_EQ(compare(pair.left, pair.right), pair.order);
        EXPECT_EQ(compare(pair.right, pair.left), -pair.order);
    }
}

// What a person expects of names, and what both orders keep.
TEST(NameCompare, OrdersNamesAsAPersonWould)
{
    check({
        {"", "", 0},
        {"", "a", -1},
        {"", "0", -1},
        {"img2", "img10", -1},
        {"img2.jpg", "img10.jpg", -1},
        {"img9", "img9a", -1},
        {"a1b2", "a1b10", -1},
        {"2", "10", -1},
        {"9", "a", -1},
        {"abc", "abd", -1},
        {"ABC", "abc", 0},
        {"abc", "ABD", -1},
        {"file", "file1", -1},
        {"\xC3\x84pfel", "\xC3\xA4pfel", 0},
    });
}

TEST(NameCompare, OwnOrderIsTheOneOnDisk)
{
    if (!hasOwnOrder()) {
        EXPECT_EQ(platform::nameOrderVersion(), "StrCmpLogicalW"s);
        return;
    }
    EXPECT_EQ(platform::nameOrderVersion(), "own order 1 (Unicode 15.0 simple case folding)"s);
    const std::string sixty(60, '9');
    check({
        // digit runs
        {"01", "1", 0},
        {"img007.jpg", "img7.JPG", 0},
        {"a0", "a00", 0},
        {"a0b", "a00c", -1},
        {"1" + std::string(60, '0'), sixty, 1},
        {sixty + "8", sixty + "9", -1},
        {std::string(60, '0') + sixty, sixty, 0},
        {"18446744073709551616", "18446744073709551617", -1},
        {"0", std::string("\0", 1), 1},
        // a digit run against another character
        {"1", "-", 1},
        {"1", "/", 1},
        {"9", ":", -1},
        {"a9", "a/", 1},
        {"9", "\xEF\xBC\x90", -1}, // a wide 0 is a character like any other
        // letters
        {"_", "A", -1},
        {"Z", "[", 1},
        {"z", "{", -1},
        {"\xCF\x83", "\xCF\x82", 0}, // both small sigmas
        {"\xCE\xA3", "\xCF\x82", 0},
        {"\xE2\x84\xAA-1", "K-1", 0},    // the Kelvin sign is a k
        {"\xC3\x9F", "\xE1\xBA\x9E", 0}, // both sharp s
        {"\xC3\x9F", "ss", 1},           // and neither is a pair
        {"\xC4\xB0", "i", 1},            // a dotted capital I is no i
        {"\xF0\x90\x90\x80", "\xF0\x90\x90\xA8", 0},
        {"\xC7\x84", "\xC7\x86", 0}, // a capital, a title and a small letter in a row
        {"\xC7\x85", "\xC7\x86", 0},
        {"\xC4\x80", "\xC4\x81", 0}, // capitals at even places, with small letters in between
        {"\xC4\x81", "\xC4\x82", -1},
        {"z", "\xC3\xA4", -1},
        {"\xEF\xBF\xBF", "\xF0\x90\x80\x80", -1},
        // prefixes and NULs
        {"a", "a\0"s, -1},
        {"a\0b"s, "a\0c"s, -1},
        {"a\0"s, "a "s, -1},
        // what is not UTF-8 counts as U+FFFD
        {"\xFF", "\xEF\xBF\xBD", 0},
        {"\xE2\x82", "\xFF", 0},
        {"\xED\xA0\x80", "\xFF\xFF\xFF", 0},
        {"\xC3", "\xC3\xA4", 1},
        {"\xC3-01", "\xFF-1", 0},
    });
}

/// Sorts by its bytes as a name of ASCII letters and digit runs below 2^31 does in either order: letters are small,
/// and a run is as wide as any other.
std::string sortKey(const std::vector<std::string>& runs)
{
    std::string key;
    for (const std::string& run : runs) {
        if (run.front() >= '0' && run.front() <= '9') {
            const std::string digits = std::to_string(std::stoll(run));
            key += std::string(10 - digits.size(), '0') + digits;
            continue;
        }
        for (const char letter : run) {
            key += static_cast<char>(letter | 0x20);
        }
    }
    return key;
}

// Whichever order a build has, a folder whose names are made of letters and numbers looks the same.
TEST(NameCompare, BothOrdersSortLettersAndNumbersAlike)
{
    std::mt19937 random(1); // the same names everywhere
    const auto below = [&random](std::size_t limit) { return static_cast<std::size_t>(random() % limit); };
    const auto lettersOf = [&](std::string_view alphabet) {
        std::string letters;
        for (std::size_t count = 1 + below(3); count > 0; --count) {
            letters += alphabet[below(alphabet.size())];
        }
        return letters;
    };
    const auto number = [&] {
        const std::size_t limits[]{3, 20, 1000, 0x8000'0000};
        const std::string digits = below(10) == 0 ? "2147483647" : std::to_string(below(limits[below(4)]));
        return std::string(below(3), '0') + digits;
    };
    std::vector<std::pair<std::string, std::string>> names; // each with its key
    for (int count = 0; count < 1000; ++count) {
        std::vector<std::string> runs;
        bool digits = below(2) == 0;
        for (std::size_t run = below(5); run > 0; --run, digits = !digits) {
            runs.push_back(digits ? number() : lettersOf(below(2) == 0 ? "abAB" : "abcdefghijklmnopqrstuvwxyzMNOXYZ"));
        }
        std::string name;
        for (const std::string& run : runs) {
            name += run;
        }
        names.emplace_back(name, sortKey(runs));
    }
    int different = 0;
    for (const auto& [left, leftKey] : names) {
        for (const auto& [right, rightKey] : names) {
            ASSERT_EQ(compare(left, right), sign(leftKey.compare(rightKey))) << left << " and " << right;
            different += left != right && leftKey == rightKey ? 1 : 0;
        }
    }
    EXPECT_GT(different, 100) << "names that differ in case or in leading zeros alone";
}

// SQLite hands over ranges of a page, without a NUL behind them.
TEST(NameCompare, ReadsNothingBehindTheRange)
{
    const std::string page = "img12\xC3\xA4-99";
    const std::string_view all = page;
    EXPECT_EQ(compare(all.substr(0, 4), "img1"), 0);
    EXPECT_EQ(compare(all.substr(0, 5), "img12"), 0);
    EXPECT_EQ(compare(all.substr(0, 6), "img12\xC3"), 0);
    EXPECT_EQ(compare(all.substr(0, 7), "img12\xC3\xA4"), 0);
    EXPECT_EQ(compare(all.substr(0, 8), "img12\xC3\xA4-"), 0);
    EXPECT_EQ(compare(all.substr(0, 0), ""), 0);
    EXPECT_EQ(compare({}, ""), 0);
    const std::string longName(1000, 'x');
    EXPECT_EQ(compare(std::string_view(longName).substr(0, 300), std::string(300, 'X')), 0);
    EXPECT_EQ(compare(std::string_view(longName).substr(0, 299), std::string(300, 'X')), -1);
}

/// Names that meet in every way the order knows: few different pieces, and variants that differ in little.
class NameMaker {
public:
    explicit NameMaker(std::uint32_t seed) : m_random(seed) { }

    std::string name()
    {
        std::string text;
        for (std::size_t count = below(7); count > 0; --count) {
            text += piece();
        }
        return text;
    }

    std::string variant(std::string text)
    {
        const std::size_t place = below(text.size() + 1);
        switch (below(6)) {
        case 0:
            return text;
        case 1:
            return text.insert(place, piece());
        case 2:
            return text.insert(place, "0");
        case 3:
            return text.erase(place, 1 + below(2));
        case 4:
            return name();
        default:
            if (place < text.size()) {
                text[place] = static_cast<char>(text[place] ^ 0x20);
            }
            return text;
        }
    }

private:
    std::size_t below(std::size_t limit) { return m_random() % limit; }

    std::string piece()
    {
        // clang-format off
        static const std::vector<std::string> pieces{
            "a", "A", "b", "z", "K", "k", " ", "-", "/", ":", "_", "[", "\0"s, ".jpg", "0", "1", "9", "00", "07", "10",
            "\xC3\x84", "\xC3\xA4", "\xCE\xA3", "\xCF\x83", "\xCF\x82", "\xE2\x84\xAA", "\xEF\xBF\xBD", "\xE5\x81\x87",
            "\xF0\x90\x90\x80", "\xF0\x90\x90\xA8", "\xF0\x9F\x98", "\x80", "\xC3", "\xE2\x82", "\xFF"};
        // clang-format on
        switch (below(12)) {
        case 0:
            return std::string(1, static_cast<char>(below(256)));
        case 1: {
            std::string digits(below(70), '0');
            for (char& digit : digits) {
                digit = static_cast<char>('0' + below(2));
            }
            return digits;
        }
        default:
            return pieces[below(pieces.size())];
        }
    }

    std::mt19937 m_random;
};

// The index on disk needs a total preorder: any two names compare, no two ways of comparing them disagree.
TEST(NameCompare, IsATotalPreorder)
{
    constexpr int triples = 400'000;
    const std::uint32_t seed = std::random_device{}();
    NameMaker make(seed);
    int equal = 0;
    int chains = 0;
    for (int triple = 0; triple < triples; ++triple) {
        const std::string first = make.name();
        const std::string second = make.variant(first);
        const std::array<std::string, 3> names{first, second, make.variant(second)};
        std::array<std::array<int, 3>, 3> order{};
        for (std::size_t left = 0; left < 3; ++left) {
            for (std::size_t right = 0; right < 3; ++right) {
                order[left][right] = compare(names[left], names[right]);
            }
        }
        const auto failure = [&] { return "seed " + std::to_string(seed) + ": " + testing::PrintToString(names); };
        for (std::size_t left = 0; left < 3; ++left) {
            ASSERT_EQ(order[left][left], 0) << failure();
            for (std::size_t right = 0; right < 3; ++right) {
                ASSERT_EQ(order[left][right], -order[right][left]) << failure();
                const std::size_t middle = 3 - left - right;
                if (left == right || order[left][middle] > 0 || order[middle][right] > 0) {
                    continue;
                }
                // left <= middle <= right: equal only when both steps are.
                ASSERT_EQ(order[left][right], order[left][middle] + order[middle][right] == 0 ? 0 : -1) << failure();
                ++chains;
            }
        }
        equal += order[0][1] == 0 && names[0] != names[1] ? 1 : 0;
    }
    EXPECT_GE(chains, triples);
    EXPECT_GE(equal, triples / 20); // different names that compare equal were among them
}

} // namespace
