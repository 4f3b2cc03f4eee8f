// The value classes at the engine's border, and the drive's record.

#include "databaseservice/databasebindparameter.h"
#include "databaseservice/databasequeryresult.h"
#include "support/drivefields.h"

#include <gtest/gtest.h>
#include <limits>
#include <set>
#include <type_traits>

using namespace testsupport;
using DatabaseService::DatabaseBindParameter;
using DatabaseService::DatabaseQueryResult;
using DatabaseService::DriveDataTable;
using DatabaseService::int64;

namespace {

constexpr int64 least = std::numeric_limits<int64>::min();
constexpr int64 most = std::numeric_limits<int64>::max();

DatabaseQueryResult rowOf(const std::wstring& text)
{
    DatabaseQueryResult row;
    row.Insert(text);
    return row;
}

DatabaseQueryResult rowOf(int64 number)
{
    DatabaseQueryResult row;
    row.Insert(number);
    return row;
}

} // namespace

TEST(BindParameter, KeepsValuesAndNamesInOrder)
{
    using TextElement = std::pair<std::wstring, std::string>;
    using NumberElement = std::pair<int64, std::string>;
    DatabaseBindParameter bind;
    bind.Bind(std::wstring(L"wide"), ":a");
    bind.Bind(true, ":b");
    bind.Bind(std::string(), ":c");
    bind.Bind(-5, ":d");
    bind.Bind(least, ":e");
    bind.Bind(std::string("\xE5\x90\x8D\xFF"), ":f");
    bind.Bind(TextElement(L"pair", ":g"));
    bind.Bind(NumberElement(7, ":h"));
    bind.Bind(false, ":i");

    std::vector<TextElement> texts;
    std::vector<NumberElement> numbers;
    std::string kinds;
    for (bind.Reset(); bind.HasNext(); bind.Next()) {
        TextElement text(L"untouched", "");
        NumberElement number(-1, "untouched");
        EXPECT_EQ(bind.GetValue(text), !bind.IsInt());
        EXPECT_EQ(bind.GetValue(number), bind.IsInt());
        kinds += bind.IsInt() ? 'i' : 't';
        if (bind.IsInt()) {
            EXPECT_EQ(text.first, L"untouched");
            numbers.push_back(number);
        } else {
            EXPECT_EQ(number.first, -1);
            texts.push_back(text);
        }
    }
    EXPECT_EQ(kinds, "titiittii");
    EXPECT_EQ(texts,
              (std::vector<TextElement>{{L"wide", ":a"}, {L"", ":c"}, {L"\u540D\uFFFD", ":f"}, {L"pair", ":g"}}));
    EXPECT_EQ(numbers, (std::vector<NumberElement>{{1, ":b"}, {-5, ":d"}, {least, ":e"}, {7, ":h"}, {0, ":i"}}));
    EXPECT_FALSE(bind.Next());
    EXPECT_FALSE(DatabaseBindParameter().HasNext());
    EXPECT_FALSE(DatabaseBindParameter().Next());
}

TEST(QueryResult, TextReadsAsNumberByItsLeadingDigits)
{
    const std::pair<std::wstring, int64> cases[] = {
        {L"", 0},
        {L"letters", 0},
        {L"42 letters", 42},
        {L"12.5", 12},
        {L"-12.5", -12},
        {L" \t\n\v\f\r+7", 7},
        {L"- 7", 0},
        {L"--7", 0},
        {L"0x10", 0},
        {L"1e5", 1},
        {L"9223372036854775807", most},
        {L"9223372036854775808", most},
        {L"-9223372036854775808", least},
        {L"-9223372036854775809", least},
        {L"99999999999999999999999", most},
        {L"\u0663", 0}, // a digit, but not one of ASCII
    };
    for (const auto& [text, number] : cases) {
        EXPECT_EQ(rowOf(text).GetInt(), number) << rowOf(text).GetString();
        EXPECT_EQ(rowOf(text).GetBoolean(), number != 0) << rowOf(text).GetString();
    }
}

TEST(QueryResult, CellsReadAsEitherKind)
{
    for (const auto& [number, digits] : {std::pair<int64, std::string>{-5, "-5"},
                                         {0, "0"},
                                         {most, "9223372036854775807"},
                                         {least, "-9223372036854775808"}}) {
        EXPECT_EQ(rowOf(number).GetString(), digits);
        EXPECT_EQ(rowOf(number).GetWstring(), std::wstring(digits.begin(), digits.end()));
        EXPECT_EQ(rowOf(number).GetInt(), number);
        EXPECT_EQ(rowOf(number).GetBoolean(), number != 0);
    }
    EXPECT_EQ(rowOf(L"\u540D").GetString(), "\xE5\x90\x8D");
    EXPECT_EQ(rowOf(L"\u540D").GetWstring(), L"\u540D");
}

TEST(QueryResult, EachReadConsumesItsCell)
{
    DatabaseQueryResult row;
    row.Insert(int64{1});
    row.Insert(std::wstring(L"two"));
    row.Insert(int64{3});
    EXPECT_EQ(row.GetInt(), 1);

    DatabaseQueryResult copy = row;
    EXPECT_EQ(copy.GetString(), "two");
    EXPECT_TRUE(copy.GetBoolean());
    EXPECT_FALSE(copy.HasNext());
    EXPECT_EQ(row.GetWstring(), L"two") << "a copy's reads do not move its source";

    DatabaseQueryResult moved = std::move(row);
    EXPECT_EQ(moved.GetInt(), 3) << "a move takes the cursor along";
    row = DatabaseQueryResult();
    EXPECT_FALSE(row.HasNext());
    moved.Reset();
    EXPECT_EQ(moved.GetInt(), 1);
}

TEST(QueryResult, PastTheLastCellIsEmpty)
{
    DatabaseQueryResult row = rowOf(7);
    row.GetInt();
    for (int twice = 0; twice < 2; ++twice) {
        EXPECT_EQ(row.GetString(), "");
        EXPECT_EQ(row.GetWstring(), L"");
        EXPECT_EQ(row.GetInt(), 0);
        EXPECT_FALSE(row.GetBoolean());
        EXPECT_FALSE(row.HasNext());
    }
    row.Reset();
    EXPECT_EQ(row.GetInt(), 7);
}

TEST(DriveRecord, DefaultsAndEverySetterWithItsGetter)
{
    const DriveDataTable fresh;
    const DriveDataTable filled = filledRecord("id", 1);
    std::set<std::string> values;
    for (const DriveField& field : driveFields()) {
        SCOPED_TRACE(field.column);
        EXPECT_EQ(field.get(fresh), field.column == "kind" ? "drive#file" : field.text ? "" : "0");
        // Two accessors of one member would show as one value twice.
        EXPECT_TRUE(values.insert(field.get(filled)).second);
        if (field.text && field.column != "fileId") {
            EXPECT_EQ(field.get(filled), field.column + "-1");
        }
    }
    EXPECT_EQ(values.size(), 53U);
    EXPECT_EQ(filled.GetSize(), (int64{1006} << 40) + 1006);
    EXPECT_EQ(filled.GetClassIndex(), -1049);
    EXPECT_EQ(fresh.GetHelpData(), "");
    EXPECT_EQ(fresh.GetFileOperationType(), -1);
}

TEST(DriveRecord, CopiesTakeEveryMember)
{
    DriveDataTable source = filledRecord("id", 2);
    source.SetHelpData("other id");
    source.SetFileOperationType(9);
    DriveDataTable assigned;
    assigned = source;
    assigned = *&assigned;
    for (const DriveDataTable& copy : {DriveDataTable(source), assigned, DriveDataTable(&source)}) {
        EXPECT_EQ(cellsOf(copy), cellsOf(source));
        EXPECT_EQ(copy.GetHelpData(), "other id");
        EXPECT_EQ(copy.GetFileOperationType(), 9);
    }
    const DriveDataTable fromNull(nullptr);
    EXPECT_EQ(cellsOf(fromNull), cellsOf(DriveDataTable()));
    EXPECT_EQ(fromNull.GetFileOperationType(), -1);
    static_assert(std::has_virtual_destructor_v<DriveDataTable>);
}

TEST(DriveRecord, EmptyAndFolder)
{
    DriveDataTable record;
    record.SetName("a name alone");
    EXPECT_TRUE(record.Empty());
    record.SetFileid("id");
    EXPECT_FALSE(record.Empty());

    const std::string folder = "application/vnd.tessix-apps.folder";
    const std::pair<std::string, bool> cases[] = {
        {folder, true},
        {"", false},
        {"APPLICATION/VND.TESSIX-APPS.FOLDER", false},
        {folder + " ", false},
        {folder + std::string(1, '\0'), false},
        {folder.substr(1), false},
    };
    for (const auto& [mimeType, isFolder] : cases) {
        record.SetMimeType(mimeType);
        EXPECT_EQ(record.IsFolder(), isFolder) << mimeType;
    }
}
