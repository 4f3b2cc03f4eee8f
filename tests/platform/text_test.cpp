#include "platform/filestatus.h"
#include "platform/paths.h"
#include "platform/text.h"
#include "support/testfolder.h"

#include <chrono>
#include <fstream>
#include <gtest/gtest.h>
#include <string>

namespace {

using namespace std::string_literals;

constexpr bool wideIsUtf32 = sizeof(wchar_t) == sizeof(char32_t);

/// The text with each '?' made a replacement character.
std::string marked(const std::string& text)
{
    std::string result;
    for (const char byte : text) {
        result += byte == '?' ? "\xEF\xBF\xBD"s : std::string(1, byte);
    }
    return result;
}

// What is repaired has to be repaired everywhere; into how many characters is our own rule where the system has none.
TEST(Text, RepairsIllFormedUtf8)
{
    const std::pair<std::string, std::string> cases[] = {
        {"a\x80\xBF\x80z", "a???z"},   // continuation bytes alone
        {"a\xC3", "a?"},               // a lead byte at the end,
        {"\xC3\x41", "?A"},            // before ASCII
        {"\xC3\xC3\xA4", "?\xC3\xA4"}, // and before another
        {"\xC0\xAF", "??"},            // long forms
        {"\xE0\x80\x80", "???"},
        {"\xF0\x80\x80\x80", "????"},
        {"\xED\xA0\xBD\xED\xB8\x80", "??????"}, // a pair of surrogates
        {"\xE2\x82\xE2\x82\xAC", "?\xE2\x82\xAC"},
        {"\xF0\x9F\x98\x41", "?A"},
        {"\xF4\x90\x80\x80", "????"}, // past the last code point
        {"\xF5\xFE\xFF", "???"},      // bytes that never occur
        {"a\0\xFF"s, "a\0?"s},
    };
    for (const auto& [bytes, expected] : cases) {
        SCOPED_TRACE(testing::PrintToString(bytes));
        EXPECT_FALSE(platform::isUtf8(bytes));
        const std::string repaired = platform::repairUtf8(bytes);
        EXPECT_TRUE(platform::isUtf8(repaired));
        EXPECT_EQ(platform::toUtf8(platform::toWide(bytes)), repaired);
        if (wideIsUtf32) {
            EXPECT_EQ(repaired, marked(expected));
        }
    }
}

TEST(Text, LeavesWellFormedTextAlone)
{
    // The first and last characters of each length, and NULs.
    for (const std::string& text : {""s, "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80"s, "\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF"s,
                                    "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF\xEF\xBF\xBD"s, "\0"s, "12345678\0\xC3\xA4\0"s}) {
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
            text[place] = '?';
            const std::string expected = marked(text);
            text[place] = '\xFF';
            ASSERT_FALSE(platform::isUtf8(text)) << length << ' ' << place;
            ASSERT_EQ(platform::repairUtf8(text), expected) << length << ' ' << place;
        }
    }
}

TEST(Text, WideTextHoldsTheCodePoints)
{
    EXPECT_EQ(platform::toWide("a\0\xC3\xA4\xE5\x81\x87\xF0\x9F\x98\x80"s), L"a\0\u00E4\u5047\U0001F600"s);
    EXPECT_EQ(platform::toUtf8(L"\U0001F600\0\u00E4"s), "\xF0\x9F\x98\x80\0\xC3\xA4"s);
}

TEST(Text, RepairsWideTextThatIsNoCharacter)
{
    const std::wstring high(1, static_cast<wchar_t>(0xD83D));
    const std::wstring low(1, static_cast<wchar_t>(0xDE00));
    EXPECT_EQ(platform::toUtf8(high), marked("?"));
    EXPECT_EQ(platform::toUtf8(L"a" + low + L"b"), marked("a?b"));
    EXPECT_EQ(platform::toUtf8(low + high), marked("??"));
    EXPECT_EQ(platform::toUtf8(high + low), wideIsUtf32 ? marked("??") : "\xF0\x9F\x98\x80");
    if (wideIsUtf32) {
        EXPECT_EQ(platform::toUtf8(std::wstring(1, static_cast<wchar_t>(0x110000))), marked("?"));
        EXPECT_EQ(platform::toUtf8(std::wstring(1, static_cast<wchar_t>(-1))), marked("?"));
    }
}

TEST(FileStatus, LooksAtTheEntryItself)
{
    const testsupport::TestFolder folder;
    std::error_code error = std::make_error_code(std::errc::io_error);
    EXPECT_EQ(platform::readStatus(folder.path(), error).kind, platform::FileKind::Folder);
    EXPECT_FALSE(error) << error.message();
    EXPECT_EQ(platform::readStatus(folder.path(), error).size, 0);
    platform::readStatus(folder.path() / "nothing", error);
    EXPECT_EQ(error, std::errc::no_such_file_or_directory);

    const std::filesystem::path link = folder.path() / "link";
    std::error_code notAllowed;
    std::filesystem::create_symlink(folder.path() / "nothing", link, notAllowed);
    if (!notAllowed) { // Windows grants links to administrators only
        EXPECT_EQ(platform::readStatus(link, error).kind, platform::FileKind::Link);
        EXPECT_FALSE(error);
        EXPECT_FALSE(platform::exists(platform::toWide(platform::toUtf8(link))));
    }
}

TEST(FileStatus, KnowsTimesBefore1970)
{
    using namespace std::chrono;
    const testsupport::TestFolder folder;
    const std::filesystem::path file = folder.path() / "file";
    std::ofstream(file, std::ios::binary) << "x";
    const auto modified = [&](auto time) {
        std::filesystem::last_write_time(file, time);
        std::error_code error;
        return nanoseconds(platform::readStatus(file, error).modifiedNanoseconds);
    };
    const auto now = floor<seconds>(std::filesystem::last_write_time(file)); // not every system sets finer times
    const auto back = hours(24 * 365 * 70);
    EXPECT_LT(abs(system_clock::now().time_since_epoch() - modified(now)), seconds(60));
    EXPECT_EQ(modified(now - back), modified(now) - back);
}

} // namespace
