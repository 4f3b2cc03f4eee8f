// Folders as people and systems name them: the stores lie just there, or a failure is told and nothing lies anywhere.

#include "databaseservice/commonsqlitedb.h"
#include "databaseservice/databaseservice.h"
#include "databaseservice/maindatabaseprovider.h"
#include "platform/scopeexit.h"
#include "support/faultydisk.h"
#include "support/storetest.h"

#include <algorithm>
#include <cwchar>

using namespace testsupport;
namespace fs = std::filesystem;
namespace Main = DatabaseService::MainDatabaseProvider;

namespace {

enum Outcome { Found, Fails, Either }; // Either: as the release of the system and its settings have it

struct Row {
    std::wstring given; ///< {} is the test's folder; {drive} and {rest} make it up; {share} is it as Windows shares it
    std::wstring made;  ///< below the test's folder: where the stores are to be
    Outcome onWindows, onPosix;
};

Row named(const std::wstring& name, Outcome onWindows, Outcome onPosix)
{
    return {L"{}/" + name, name, onWindows, onPosix};
}

// clang-format off
const Row rows[] = {
    {L"{}", L"", Found, Found}, {L"{}/a//b///", L"a/b", Found, Found}, {L"{}/./a/.", L"a", Found, Found}, {L"{}\\a", L"a", Found, Fails},
    {L"{}\\a\\\\b\\\\", L"a/b", Found, Fails}, {L"{}/a\\b/c", L"a/b/c", Found, Fails}, named(L"a/../b", Found, Found), {L"{}/missing", L"", Fails, Fails},
    {L"", L"", Fails, Fails},
    // relative, whole or in part
    {L"a", L"a", Found, Found}, {L"./a", L"a", Found, Found}, {L"a/../b", L"a/../b", Found, Found}, {L".", L"", Found, Found},
    {L"{drive}a", L"a", Found, Found}, {L"{rest}/a", L"a", Found, Found}, {L"Q:\\a", L"a", Fails, Fails}, {L"Q:a", L"a", Fails, Fails},
    // Windows takes blanks and dots off the end of what it makes, and not always of what it looks for.
    named(L"a b  c", Found, Found), named(L" a", Found, Found), named(L"a ", Either, Found), named(L" ", Either, Found), named(L"a.", Either, Found),
    {L"{}/a..", L"a", Either, Fails}, named(L".a", Found, Found), named(L"a.dat", Found, Found),
    // scripts, an accent by itself, two emoji joined, halves of such, capitals
    named(L"\u0414\u0438\u0441\u043A", Found, Found), named(L"\u76F8\u518C", Found, Found), named(L"\u0635\u0648\u0631", Found, Found),
    named(L"e\u0301", Found, Found), {L"{}/e\u0301", L"\u00E9", Fails, Fails}, named(L"\U0001F4F7\u200D\U0001F600", Found, Found),
    named(L"a\xD83D", Fails, Found), named(L"\xDE00", Fails, Found), {L"{}/PHOTO", L"Photo", Found, Fails},
    {L"{}/\u0434\u0438\u0441\u043A", L"\u0414\u0438\u0441\u043A", Found, Fails},
    // devices, what Windows forbids, and what would mean something else elsewhere
    named(L"NUL", Fails, Found), {L"NUL", L"NUL", Fails, Found}, named(L"con", Fails, Found), named(L"COM1", Fails, Found), named(L"COM1.txt", Either, Found),
    named(L"NUL.a", Either, Found), {L"\\\\.\\NUL", L"", Fails, Fails}, {L"//./NUL", L"", Fails, Fails}, named(L"a<", Fails, Found), named(L"a>", Fails, Found),
    named(L"a|b", Fails, Found), named(L"a?", Fails, Found), named(L"a*", Fails, Found), named(L"\"a\"", Fails, Found), named(L"a\tb\n", Fails, Found),
    named(L"a:b", Fails, Found), {L"{}/a::$DATA", L"a", Fails, Fails}, named(L"~/$HOME/%TEMP%", Found, Found), named(L"a%20b&c#d'e", Found, Found),
    // long ones; the last three are too long for SQLite, the very last only in bytes
    named(std::wstring(130, L'a') + L'/' + std::wstring(130, L'b'), Either, Found),
    {L"\\\\?\\{}\\" + std::wstring(250, L'a'), std::wstring(250, L'a'), Either, Fails}, named(std::wstring(1100, L'a'), Fails, Fails),
    {L"{}" + std::wstring(100'000, L'x'), L"", Fails, Fails},
    named(std::wstring(80, L'\u76F8') + L'/' + std::wstring(80, L'\u518C'), Found, Fails),
    // the names that devices and servers give to folders
    {L"\\\\?\\{}\\a", L"a", Found, Fails}, {L"\\\\.\\{}\\a", L"a", Found, Fails}, {L"//?/{}/a", L"a", Either, Fails},
    {L"\\\\localhost\\{share}\\a", L"a", Either, Fails}, {L"\\\\?\\UNC\\localhost\\{share}\\a", L"a", Either, Fails},
    {L"\\\\localhost\\no\\a", L"a", Fails, Fails},
};
// clang-format on

using Paths = StoreTest;

TEST_F(Paths, LeadToTheStoresOrToAFailure)
{
    const fs::path before = fs::current_path();
    const FaultyDisk doesNotFlush;
    for (const auto& [pattern, made, onWindows, onPosix] : rows) {
        const TestFolder test;
        const platform::ScopeExit back([&] { fs::current_path(before); });
        fs::current_path(test.path());
        const std::wstring all = platform::toWide(platform::toUtf8(test.path()));
        const std::wstring drive = all.substr(0, test.path().root_name().native().size());
        const std::wstring rest = all.substr(drive.size());
        std::wstring given = pattern;
        const std::pair<const wchar_t*, std::wstring> marks[] = {
            {L"{}", all}, {L"{drive}", drive}, {L"{rest}", rest}, {L"{share}", drive.substr(0, 1) + L'$' + rest}};
        for (const auto& [mark, text] : marks) {
            const std::size_t at = given.find(mark);
            given = at == std::wstring::npos ? given : given.replace(at, std::wcslen(mark), text);
        }
        SCOPED_TRACE(platform::toUtf8(given));
        const fs::path folder = (test.path() / platform::toPath(made)).lexically_normal();
        std::error_code refused;
        fs::create_directories(test.path() / platform::toPath(made), refused);
        GlobalParamWrapper::GetInstance()->SetUserDataBaseFolder(given);

        bool works = true;
        std::size_t read = 0;
        DatabaseService::CommonSqliteDb plain; // which is given a whole path
        try {
            DatabaseService::InitDataBase(given);
        } catch (const std::exception&) {
            works = false;
        }
        if (!given.empty()) {
            Main::InsertUserProperties(L"key", L"value");
            read = Main::GetAllUserProperties().size();
        }
        for (const std::string& line : m_log.take()) {
            works = works && !line.starts_with("5 ");
        }
        EXPECT_EQ(read, works);
        EXPECT_EQ(!given.empty() && plain.OpenUnicodePath((given + L"/main.dat").c_str()), works);
        EXPECT_EQ(plain.QueryTotalCount("SELECT count(*) FROM UserProperties", 0), works);
        plain.Close();
        m_log.take();
        const Outcome expected = platform::folderSeparator == L'\\' ? onWindows : onPosix;
        EXPECT_TRUE(expected == Either || works == (expected == Found));
        EXPECT_EQ(fs::remove(folder / "main.dat", refused) + fs::remove(folder / "FastAccess.dat", refused), 2 * works);
        if (!made.empty()) {
            fs::remove(folder, refused); // lists of what is there end at a path that is too long
        }
        EXPECT_EQ(std::ranges::count_if(fs::recursive_directory_iterator(test.path()),
                                        [](const auto& entry) { return entry.is_regular_file(); }),
                  0)
            << "elsewhere";
        EXPECT_FALSE(fs::exists(test.path().root_path() / "main.dat"));
    }
}

} // namespace
