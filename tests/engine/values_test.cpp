#include "databaseservice/databasebindparameter.h"
#include "databaseservice/databasequeryresult.h"
#include "support/drivefields.h"

#include <gtest/gtest.h>
#include <limits>
#include <type_traits>

using namespace testsupport;
using namespace DatabaseService;

namespace {

constexpr int64 least = std::numeric_limits<int64>::min();
constexpr int64 most = std::numeric_limits<int64>::max();

template <class Value> DatabaseQueryResult rowOf(const Value& value)
{
    DatabaseQueryResult row;
    row.Insert(value);
    return row;
}

template <class Value>
concept Bindable = requires(DatabaseBindParameter bind, const Value& value)
{
    bind.Bind(value, ":a");
};
static_assert(Bindable<std::string> && Bindable<std::wstring> && Bindable<int> && Bindable<bool>);
static_assert(!Bindable<char[5]> && !Bindable<wchar_t[5]> && !Bindable<const char*> && !Bindable<int*>);

} // namespace

TEST(BindParameter, KeepsValuesAndNamesInOrder)
{
    DatabaseBindParameter bind;
    bind.Bind(std::wstring(L"wide"), "a");
    bind.Bind(true, "b");
    bind.Bind(std::string(), "c");
    bind.Bind(-5, "d");
    bind.Bind(least, "e");
    bind.Bind(std::string("\xE5\x90\x8D\xFF"), "f");
    bind.Bind(std::pair<std::wstring, std::string>(L"pair", "g"));
    bind.Bind(std::pair<int64, std::string>(7, "h"));
    for (int twice = 0; twice < 2; ++twice) {
        std::wstring elements;
        for (bind.Reset(); bind.HasNext(); bind.Next()) {
            std::pair<std::wstring, std::string> text;
            std::pair<int64, std::string> number;
            EXPECT_EQ(bind.GetValue(text), !bind.IsInt());
            EXPECT_EQ(bind.GetValue(number), bind.IsInt());
            EXPECT_EQ((bind.IsInt() ? text.second : number.second), "") << "left alone";
            const std::string& name = bind.IsInt() ? number.second : text.second;
            elements += std::wstring(name.begin(), name.end()) + L'=' +
                (bind.IsInt() ? std::to_wstring(number.first) : L'"' + text.first + L'"') + L' ';
        }
        EXPECT_EQ(elements, L"a=\"wide\" b=1 c=\"\" d=-5 e=-9223372036854775808 f=\"\u540D\uFFFD\" g=\"pair\" h=7 ");
    }
    EXPECT_FALSE(bind.Next());
    EXPECT_FALSE(DatabaseBindParameter().HasNext());
}

TEST(QueryResult, TextReadsAsNumberByItsLeadingDigits)
{
    const std::pair<std::wstring, int64> cases[] = {
        {L"letters", 0},
        {L"42 letters", 42},
        {L"-12.5", -12},
        {L" \t\n\v\f\r+7", 7},
        {L"- 7", 0},
        {L"9223372036854775807", most},
        {L"9223372036854775808", most},
        {L"-9223372036854775808", least},
        {L"-9223372036854775809", least},
        {L"\u0663", 0}, // a digit, but not one of ASCII
    };
    for (const auto& [text, number] : cases) {
        EXPECT_EQ(rowOf(text).GetInt(), number) << rowOf(text).GetString();
        EXPECT_EQ(rowOf(text).GetBoolean(), number != 0) << rowOf(text).GetString();
        EXPECT_EQ(rowOf(number).GetBoolean(), number != 0);
        EXPECT_EQ(rowOf(number).GetWstring(), std::to_wstring(number));
    }
}

TEST(QueryResult, EachReadConsumesItsCell)
{
    DatabaseQueryResult row = rowOf(int64{1});
    row.Insert(std::wstring(L"\u540D"));
    row.Insert(int64{3});
    EXPECT_EQ(row.GetInt(), 1);
    DatabaseQueryResult copy = row;
    EXPECT_EQ(copy.GetString(), "\xE5\x90\x8D");
    EXPECT_TRUE(copy.GetBoolean());
    EXPECT_FALSE(copy.HasNext());
    EXPECT_EQ(row.GetWstring(), L"\u540D") << "a copy's reads do not move its source";

    DatabaseQueryResult moved = std::move(row);
    EXPECT_EQ(moved.GetInt(), 3) << "a move takes the cursor along";
    EXPECT_FALSE(moved.IsInt() || moved.HasNext()) << "behind the last cell there is nothing";
    EXPECT_EQ(moved.GetString(), "");
    EXPECT_EQ(moved.GetInt(), 0);
    moved.Reset();
    EXPECT_EQ(moved.GetInt(), 1);
}

TEST(DriveRecord, DefaultsAndCopies)
{
    const DriveDataTable fresh;
    for (const DriveField& field : driveFields()) {
        EXPECT_EQ(field.get(fresh), field.column == "kind" ? "drive#file" : field.text ? "" : "0") << field.column;
    }
    EXPECT_EQ(driveFields().size(), 53U);
    EXPECT_EQ(fresh.GetHelpData(), "");
    EXPECT_EQ(fresh.GetFileOperationType(), -1);
    DriveDataTable source = filledRecord("id", 2);
    source.SetHelpData("other id");
    source.SetFileOperationType(9);
    const DriveDataTable copy(&source);
    EXPECT_EQ(cellsOf(copy), cellsOf(source));
    EXPECT_EQ(copy.GetHelpData(), "other id");
    EXPECT_EQ(copy.GetFileOperationType(), 9);
    EXPECT_EQ(cellsOf(DriveDataTable(nullptr)), cellsOf(DriveDataTable()));
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
    for (const std::string& type : {folder, folder + ' ', std::string("APPLICATION/VND.TESSIX-APPS.FOLDER")}) {
        record.SetMimeType(type);
        EXPECT_EQ(record.IsFolder(), type == folder);
    }
}
