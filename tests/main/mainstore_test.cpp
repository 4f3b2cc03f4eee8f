#include "support/lists.h"
#include "support/mainstoretest.h"

#include <cmath>
#include <fstream>
#include <limits>
#include <utility>

using namespace testsupport;
using namespace DatabaseService;

namespace {

using MainStore = MainStoreTest;

template <class Log> Log usage(int64 id, double time)
{
    return {{id,  "1", "2", "3", "4", "5", "6'", "7\xFF", "8", time, 2.5, "b", "c",
             "d", "e", "f", -1,  2,   "i", "j",  "k",     "l", -3.9, "n", 4}};
}

} // namespace

TEST_F(MainStore, Tables)
{
    EXPECT_EQ(m_file.tables(), allTables);
    EXPECT_EQ(m_file.columns("T_CloudFileTable"),
              "INTEGER NOT NULL KEY: id\n"
              "TEXT NOT NULL: fileId deleted changeType fromDevice kind fileName localFileName mimeType\n"
              "INTEGER NOT NULL: isFolder trashed\n"
              "TEXT NOT NULL: parentId parentFolder localParentId localParentFolder\n"
              "INTEGER NOT NULL: createdTime modifiedTime localModifiedTime size\n"
              "TEXT NOT NULL: thunbnailDownloadLink localThunbnailDownload\n"
              "INTEGER NOT NULL: status fileStatus isSyncDown isRiskFile imageRotate");
    EXPECT_EQ(m_file.columns("T_NotepadCard"), "INTEGER NOT NULL KEY: key\nTEXT NOT NULL: value");
    EXPECT_EQ(m_file.columns("T_WaitHandleCardItem"), m_file.columns("T_NotepadCard"));
    EXPECT_EQ(m_file.columns("UBAUserLog"),
              "INTEGER NOT NULL KEY: id\n"
              "TEXT NOT NULL: time action userId devId code info extend traceId\n"
              "REAL NOT NULL: useTime startTime\n"
              "TEXT NOT NULL: model romversion appversion reqsize rspsize\n"
              "INTEGER NOT NULL: logversion traceEndFlag\n"
              "TEXT NOT NULL: curModule actionType nextModule countryCode\n"
              "REAL NOT NULL: residenceTime\n"
              "TEXT NOT NULL: oprType\n"
              "INTEGER NOT NULL: isMainteranceLog");
    EXPECT_EQ(m_file.columns("UserLogTable"), m_file.columns("UBAUserLog"));
    EXPECT_EQ(m_file.columns("UserProperties"), "TEXT NOT NULL KEY: Key\nTEXT: Value");
    EXPECT_EQ(m_file.value("SELECT group_concat(name) FROM sqlite_master WHERE sql LIKE '%AUTOINCREMENT%'"),
              "'T_CloudFileTable,UBAUserLog,UserLogTable'");

    const std::string version = m_file.value("PRAGMA data_version");
    Main::InitMainDatabase();
    EXPECT_EQ(m_file.value("PRAGMA data_version"), version) << "a complete file is not written to";
    EXPECT_TRUE(openedTimes(6)) << "each table by itself";
}

TEST_F(MainStore, PropertiesTakeAnyText)
{
    const std::pair<std::wstring, std::wstring> values[] = {
        {L"", L""},
        {L"'; DROP TABLE UserProperties; -- \u540D\r\n", L"'; DROP TABLE UserProperties; -- \u540D\r\n"},
        {std::wstring(L"a\0b", 3), L"a"}, // stored whole
        {L"\xD800", L"\uFFFD"},           // half a character
    };
    for (const auto& [value, read] : values) {
        Main::InsertUserProperties(value, value);
        EXPECT_EQ(Main::GetUserPropertieByKey(value), read);
        Main::UpdateUserProperties(value, L"new");
        EXPECT_EQ(Main::GetUserPropertieByKey(value), L"new");
    }
    EXPECT_EQ(m_file.value("SELECT count(*) FROM UserProperties WHERE hex(Key) = '610062'"), "1");
    EXPECT_EQ(Main::CountUserProperties(), 4);
    Main::DeleteAllUserProperties();
    EXPECT_EQ(Main::CountUserProperties(), 0);
}

TEST_F(MainStore, PropertiesAreWrittenInOneTransaction)
{
    std::vector<UserProperties> properties{{L"a", L"1"}, {L"b", L"2"}};
    Main::InsertUserProperties(properties);
    EXPECT_TRUE(openedTimes(1));
    properties = {{L"b", L"lost"}, {L"c", L"3"}};
    Main::InsertUserProperties(properties);
    EXPECT_TRUE(m_log.failuresWere({lines.step, lines.bindMessage("UNIQUE constraint failed: UserProperties.Key")}));
    properties = {{L"a", L"one"}, {L"d", L"4"}};
    Main::UpdateUserProperties(properties);
    EXPECT_TRUE(openedTimes(1));
    m_file.exec("INSERT INTO UserProperties(Key) VALUES('null')");
    EXPECT_EQ(
        m_file.value("SELECT group_concat(Key || ifnull(Value, '-')) FROM (SELECT * FROM UserProperties ORDER BY 1)"),
        "'aone,b2,c3,d4,null-'");
    EXPECT_EQ(Main::GetUserPropertieByKey(L"null"), L"");
    EXPECT_EQ(Main::GetUserPropertieByKey(L"unknown"), L"");
    EXPECT_EQ(Main::GetAllUserProperties().size(), 5U);
}

TEST_F(MainStore, OnlyTheSynchronisedFoldersPathIsMadeLong)
{
    const std::wstring shortName = L"C:\\PROGRA~1";
    Main::InsertUserProperties(L"SyncCloudFolder", shortName);
    Main::InsertUserProperties(L"SyncCloudFolder2", shortName);
    const std::vector<UserProperties> all = Main::GetAllUserProperties();
    ASSERT_EQ(all.size(), 2U);
    EXPECT_EQ(all[0].value, platform::longPathName(shortName).value_or(shortName));
    EXPECT_EQ(all[1].value, shortName);
    EXPECT_EQ(Main::GetUserPropertieByKey(L"SyncCloudFolder"), shortName);
}

TEST_F(MainStore, LogsKeepWholeNumbersOfTimes)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const std::string most = "9.22337203685478e+18";
    const std::pair<double, std::string> times[] = {{1.9, "1.0"},     {-1.9, "-1.0"},          {1e300, most},
                                                    {infinity, most}, {-infinity, '-' + most}, {std::nan(""), "0.0"}};
    std::vector<UserLog> logs;
    std::vector<UBAUserLog> ubaLogs;
    std::vector<std::string> expected;
    for (const auto& [time, stored] : times) {
        const int64 id = std::ssize(logs) + 10;
        logs.push_back(usage<UserLog>(id, time));
        ubaLogs.push_back(usage<UBAUserLog>(id, time));
        expected.push_back(std::to_string(id) + "|'1'|'2'|'3'|'4'|'5'|'6''|'7\xEF\xBF\xBD'|'8'|" + stored +
                           "|2.0|'b'|'c'|'d'|'e'|'f'|-1|2|'i'|'j'|'k'|'l'|-3.0|'n'|4");
    }
    Main::InsertUserUserLog(logs);
    Main::InsertUserUBAUserLog(ubaLogs);
    Main::GetAllUserLog();
    EXPECT_TRUE(openedTimes(3));
    EXPECT_EQ(m_file.text("SELECT * FROM UserLogTable"), joined(expected, "\n"));
    EXPECT_EQ(m_file.text("SELECT * FROM UBAUserLog"), joined(expected, "\n"));

    Main::InsertUserUserLog({usage<UserLog>(1, 1), usage<UserLog>(1, 2)});
    const std::string reason = "UNIQUE constraint failed: UserLogTable.id";
    EXPECT_TRUE(m_log.failuresWere({lines.step, lines.finalize, lines.afterFinalize(reason)}));
    EXPECT_EQ(m_file.value("SELECT useTime FROM UserLogTable WHERE id = 1"), "1.0");
}

TEST_F(MainStore, Cards)
{
    Main::InsertWaitHandleCardItem(-1, "wait");
    Main::InsertNotepadCardItem(7, "first");
    Main::InsertNotepadCardItem(7, "it's \xFF");
    std::vector<T_NotepadCard> notes(1);
    Main::GetNotepadCardItem(notes);
    ASSERT_EQ(notes.size(), 2U) << "appended";
    EXPECT_EQ(std::pair(notes[1].key, notes[1].value), std::pair(7, std::string("it's \xEF\xBF\xBD")));
    std::vector<T_WaitHandleCardItem> waiting;
    Main::GetWaitHandleCardItem(waiting);
    ASSERT_EQ(waiting.size(), 1U);
    EXPECT_EQ(std::pair(waiting[0].key, waiting[0].value), std::pair(-1, std::string("wait")));

    Main::RemoveNotepadCardItem();
    EXPECT_EQ(m_file.value("SELECT count(*) FROM T_WaitHandleCardItem"), "1");
    m_file.exec("DROP TABLE T_NotepadCard; CREATE TABLE T_NotepadCard(key TEXT, value INTEGER);"
                "INSERT INTO T_NotepadCard VALUES('12', 34)");
    Main::GetNotepadCardItem(notes);
    ASSERT_EQ(notes.size(), 3U);
    EXPECT_EQ(std::pair(notes[2].key, notes[2].value), std::pair(0, std::string())) << "cells of the other kind";
    Main::RemoveWaitHandleCardItem();
    EXPECT_EQ(m_file.value("SELECT count(*) FROM T_WaitHandleCardItem"), "0");
}

TEST_F(MainStore, DroppedTablesComeBackAtTheNextStart)
{
    const std::pair<void (*)(), const char*> cleanUps[] = {
        {&Main::DeleteMainDBTable, "T_NotepadCard,T_WaitHandleCardItem"},
        {&Main::DeleteMainDBTableWithoutUserProperties, "T_NotepadCard,T_WaitHandleCardItem,UserProperties"},
        {&Main::DeleteMainCloudFileTable, "T_NotepadCard,T_WaitHandleCardItem,UBAUserLog,UserLogTable,UserProperties"}};
    for (const auto& [cleanUp, left] : cleanUps) {
        cleanUp();
        EXPECT_EQ(m_file.tables(), left);
        cleanUp();
        Main::InitMainDatabase();
        EXPECT_EQ(m_file.tables(), allTables);
    }
    EXPECT_TRUE(m_log.failuresWere({}));

    m_file.exec("DROP TABLE T_NotepadCard");
    Main::DeleteMainDBTable();
    std::vector<T_NotepadCard> notes(1);
    std::string file = "a";
    int one = 1;
    EXPECT_TRUE(Main::GetAllUserProperties().empty());
    EXPECT_EQ(Main::GetUserPropertieByKey(L"a"), L"");
    EXPECT_EQ(Main::CountUserProperties(), 0);
    Main::GetNotepadCardItem(notes);
    EXPECT_EQ(notes.size(), 1U);
    EXPECT_TRUE(Main::GetAllCloudDriveDataBatch().empty());
    EXPECT_EQ(Main::GetCloudDriveDataBatch(file).fileId, "");
    EXPECT_EQ(Main::GetAllCloudDriveDataBatchNum(), 0);
    EXPECT_FALSE(Main::SelectOneCloudDriveData(file));
    Main::DeleteCloudDriveDataBatchOrderBy(one); // two statements
    EXPECT_TRUE(m_log.failuresWere({10, lines.prepare}));
}

TEST_F(MainStore, CacheFilesGoAndTheFoldersAboveStay)
{
    for (const wchar_t* file : {L"cache/a.tmp", L"cache/b.tmp/c/d.txt", L"cache/keep.txt", L"other/a.tmp", L"x.tmp"}) {
        std::filesystem::create_directories(path(file).parent_path());
        std::ofstream(path(file)) << "content";
    }
    const auto there = [&](const wchar_t* file) { return std::filesystem::exists(path(file)); };
    const auto remove = [&](const std::wstring& folder, const std::wstring& names, const std::wstring& from) {
        const std::wstring root = wide(m_folder.path()) + platform::folderSeparator;
        Main::DeleteCacheFile(root + folder + platform::folderSeparator + names, from.empty() ? from : root + from);
    };
    remove(L"cache", L"*", L"");
    remove(L"missing", L"*", L"cache");
    remove(L"other", L"*", L"cache");
    EXPECT_TRUE(there(L"other/a.tmp")) << "the pattern finds names, the folder holds them";
    EXPECT_FALSE(there(L"cache/a.tmp"));
    EXPECT_TRUE(there(L"cache/b.tmp/c/d.txt"));
    remove(L"cache", L"*.tmp", L"cache");
    EXPECT_FALSE(there(L"cache/b.tmp"));
    EXPECT_TRUE(there(L"cache/keep.txt"));
    remove(L"cache", L"*", L"cache");
    EXPECT_TRUE(std::filesystem::is_empty(path(L"cache")));
    if (sizeof(std::filesystem::path::value_type) == 1) { // where a name need not be text
        std::ofstream(path(L"cache") / "\xFF.tmp") << "content";
        remove(L"cache", L"*.tmp", L"cache");
        EXPECT_TRUE(m_log.failuresWere(
            {{"DatabaseService::removeCacheFiles", "left alone, as its name is no Unicode: \uFFFD.tmp"}}));
    }
    EXPECT_TRUE(there(L"x.tmp") && there(L"main.dat")) << "beside the folder";
}
