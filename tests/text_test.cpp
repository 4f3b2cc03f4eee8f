#include "platform/filestatus.h"
#include "platform/paths.h"
#include "platform/text.h"

#include "support/testfolder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace std::string_literals;

constexpr bool wideIsUtf32 = sizeof(wchar_t) == sizeof(char32_t);

const std::string replacement = "\xEF\xBF\xBD";

std::string replacements(int count)
{
    std::string text;
    while (count-- > 0) {
        text += replacement;
    }
    return text;
}

struct IllFormed {
    const char* what;
    std::string bytes;
    std::string repaired;
};

const std::vector<IllFormed> illFormed{
    {"a continuation byte alone", "\x80", replacements(1)},
    {"several continuation bytes", "a\x80\xBF\x80z", "a" + replacements(3) + "z"},
    {"a lead byte at the end", "a\xC3", "a" + replacements(1)},
    {"a lead byte before ASCII", "\xC3\x41", replacements(1) + "A"},
    {"two lead bytes", "\xC3\xC3\xA4", replacements(1) + "\xC3\xA4"},
    {"a long form of two bytes", "\xC0\xAF", replacements(2)},
    {"a long form of three bytes", "\xE0\x80\x80", replacements(3)},
    {"a long form of four bytes", "\xF0\x80\x80\x80", replacements(4)},
    {"a surrogate", "\xED\xA0\x80", replacements(3)},
    {"a pair of surrogates", "\xED\xA0\xBD\xED\xB8\x80", replacements(6)},
    {"two bytes of three", "\xE2\x82", replacements(1)},
    {"two bytes of three before a character", "\xE2\x82\xE2\x82\xAC", replacements(1) + "\xE2\x82\xAC"},
    {"three bytes of four before ASCII", "\xF0\x9F\x98\x41", replacements(1) + "A"},
    {"three bytes of four before a lead byte", "\xF0\x9F\x98\xC3\xA4", replacements(1) + "\xC3\xA4"},
    {"past the last code point", "\xF4\x90\x80\x80", replacements(4)},
    {"bytes that never occur", "\xF5\xFE\xFF", replacements(3)},
    {"behind a whole word of ASCII", "12345678\xFF", "12345678" + replacements(1)},
    {"inside a word of ASCII", "1234567\xFFxyzxyzxy", "1234567" + replacements(1) + "xyzxyzxy"},
    {"behind a NUL", "a\0\xFF"s, "a\0"s + replacement},
};

// What is repaired has to be repaired everywhere; into how many characters is our own rule where the system has none.
TEST(Text, RepairsIllFormedUtf8)
{
    for (const IllFormed& each : illFormed) {
        SCOPED_TRACE(each.what);
        EXPECT_FALSE(platform::isUtf8(each.bytes));
        const std::string repaired = platform::repairUtf8(each.bytes);
        EXPECT_TRUE(platform::isUtf8(repaired));
        EXPECT_EQ(platform::toUtf8(platform::toWide(each.bytes)), repaired);
        if (wideIsUtf32) {
            EXPECT_EQ(repaired, each.repaired);
        }
    }
}

TEST(Text, LeavesWellFormedTextAlone)
{
    const std::vector<std::string> texts{
        "",
        "a",
        "1234567",
        "12345678",
        "123456789",
        "\x7F",
        "\xC2\x80",
        "\xDF\xBF",
        "\xE0\xA0\x80",
        "\xED\x9F\xBF",
        "\xEE\x80\x80",
        "\xEF\xBF\xBF",
        "\xF0\x90\x80\x80",
        "\xF4\x8F\xBF\xBF",
        replacement,
        "gr\xC3\xB6\xC3\x9Fte \xE5\x81\x87\xE6\x9C\x9F \xF0\x9F\x98\x80.jpg",
        "\0"s,
        "a\0b\0\0"s,
        "12345678\0\xC3\xA4"s,
    };
    for (const std::string& text : texts) {
        SCOPED_TRACE(testing::PrintToString(text));
        EXPECT_TRUE(platform::isUtf8(text));
        EXPECT_EQ(platform::repairUtf8(text), text);
        EXPECT_EQ(platform::toUtf8(platform::toWide(text)), text);
    }
}

// A byte that is not ASCII must be seen wherever it stands and however long the text is.
TEST(Text, SeesOneBadByteAtEveryPlace)
{
    for (std::size_t length = 1; length <= 40; ++length) {
        for (std::size_t place = 0; place < length; ++place) {
            std::string text(length, 'x');
            text[place] = '\xFF';
            std::string expected(length, 'x');
            expected.replace(place, 1, replacement);
            ASSERT_FALSE(platform::isUtf8(text)) << length << ' ' << place;
            ASSERT_EQ(platform::repairUtf8(text), expected) << length << ' ' << place;
        }
    }
}

TEST(Text, WideTextHoldsTheCodePoints)
{
    EXPECT_EQ(platform::toWide("a\0\xC3\xA4\xE5\x81\x87"s), L"a\0\u00E4\u5047"s);
    EXPECT_EQ(platform::toWide("\xF0\x9F\x98\x80"), L"\U0001F600");
    EXPECT_EQ(platform::toUtf8(L"\U0001F600\0\u00E4"s), "\xF0\x9F\x98\x80\0\xC3\xA4"s);
}

TEST(Text, RepairsWideTextThatIsNoCharacter)
{
    const std::wstring high(1, static_cast<wchar_t>(0xD83D));
    const std::wstring low(1, static_cast<wchar_t>(0xDE00));
    EXPECT_EQ(platform::toUtf8(high), replacement);
    EXPECT_EQ(platform::toUtf8(L"a" + low + L"b"), "a" + replacement + "b");
    EXPECT_EQ(platform::toUtf8(low + high), replacements(2));
    EXPECT_EQ(platform::toUtf8(high + low), wideIsUtf32 ? replacements(2) : "\xF0\x9F\x98\x80");
    if (wideIsUtf32) {
        EXPECT_EQ(platform::toUtf8(std::wstring(1, static_cast<wchar_t>(0x110000))), replacement);
        EXPECT_EQ(platform::toUtf8(std::wstring(1, static_cast<wchar_t>(-1))), replacement);
    }
}

TEST(Paths, FollowWideNames)
{
    const testsupport::TestFolder folder;
    const std::wstring name = L"Gr\u00F6\u00DFe \u5047\u671F \U0001F600";
    const std::filesystem::path path = folder.path() / platform::toPath(name);
    const std::wstring wide = platform::toWide(platform::toUtf8(path));

    EXPECT_FALSE(platform::exists(wide));
    std::filesystem::create_directory(path);
    EXPECT_TRUE(platform::exists(wide));
    EXPECT_EQ(platform::toUtf8(path.filename()), platform::toUtf8(name));
    EXPECT_FALSE(platform::exists(L""));
    EXPECT_FALSE(platform::exists(wide + std::wstring(100'000, L'x')));
}

TEST(FileStatus, LooksAtTheEntryItself)
{
    using namespace std::chrono;
    const testsupport::TestFolder folder;
    const std::filesystem::path file = folder.path() / "file";
    const auto before = system_clock::now() - seconds(5);
    std::ofstream(file, std::ios::binary) << "12345";
    const auto after = system_clock::now() + seconds(5);

    std::error_code error = std::make_error_code(std::errc::io_error);
    const platform::FileStatus status = platform::readStatus(file, error);
    EXPECT_FALSE(error) << error.message();
    EXPECT_EQ(status.kind, platform::FileKind::Regular);
    EXPECT_EQ(status.size, 5);
    const system_clock::time_point modified{
        duration_cast<system_clock::duration>(nanoseconds(status.modifiedNanoseconds))};
    EXPECT_GE(modified, before);
    EXPECT_LE(modified, after);
    EXPECT_LE(status.createdNanoseconds, status.modifiedNanoseconds);

    const platform::FileStatus own = platform::readStatus(folder.path(), error);
    EXPECT_FALSE(error);
    EXPECT_EQ(own.kind, platform::FileKind::Folder);
    EXPECT_EQ(own.size, 0);

    const std::filesystem::path link = folder.path() / "link";
    std::error_code notAllowed;
    std::filesystem::create_symlink(folder.path() / "nothing", link, notAllowed);
    if (!notAllowed) { // Windows grants links to administrators only
        EXPECT_EQ(platform::readStatus(link, error).kind, platform::FileKind::Link);
        EXPECT_FALSE(error);
        EXPECT_FALSE(platform::exists(platform::toWide(platform::toUtf8(link))));
    }

    const platform::FileStatus missing = platform::readStatus(folder.path() / "nothing", error);
    EXPECT_EQ(error, std::errc::no_such_file_or_directory);
    EXPECT_EQ(missing.modifiedNanoseconds, 0);
}

// Times of a file that came from an old or a broken clock. Whole seconds: not every system sets finer ones.
TEST(FileStatus, KnowsTimesBefore1970)
{
    using namespace std::chrono;
    const testsupport::TestFolder folder;
    const std::filesystem::path file = folder.path() / "file";
    std::ofstream(file, std::ios::binary) << "x";
    const auto now = floor<seconds>(std::filesystem::last_write_time(file));
    const auto back = hours(24 * 365 * 70);

    std::error_code error;
    std::filesystem::last_write_time(file, now);
    const std::int64_t late = platform::readStatus(file, error).modifiedNanoseconds;
    std::filesystem::last_write_time(file, now - back);
    const std::int64_t early = platform::readStatus(file, error).modifiedNanoseconds;
    EXPECT_LT(early, 0);
    EXPECT_EQ(late - early, duration_cast<nanoseconds>(back).count());
}

} // namespace
