// The drive store's file as SQLite describes it.

#include "support/drivefields.h"
#include "support/enginelines.h"
#include "support/filebytes.h"
#include "support/observed.h"
#include "support/storetest.h"

#include <map>
#include <sstream>

using namespace testsupport;
using DatabaseService::DriverDBProviderBase;

namespace {

class DriveSchema : public StoreTest {
protected:
    const std::filesystem::path m_path = path(L"DriveModuleData.dat");
    ObservedDrive m_drive;
};

struct Run {
    const char* type;
    const char* columns;
};

/// What `PRAGMA table_info` shows for columns in runs of one type, the first of them the key.
Rows tableInfo(const std::vector<Run>& runs, const std::map<std::string, std::string>& defaults = {})
{
    Rows rows;
    for (const auto& [type, columns] : runs) {
        std::istringstream names(columns);
        for (std::string name; names >> name;) {
            const bool key = rows.empty();
            const auto byDefault = defaults.find(name);
            rows.push_back({std::to_string(rows.size()), textCell(name), textCell(type), key ? "1" : "0",
                            byDefault == defaults.end() ? "NULL" : byDefault->second, key ? "1" : "0"});
        }
    }
    return rows;
}

const EngineLines lines("DriveModuleData.dat");
const std::vector<Run> taskColumns{
    {"TEXT", "fileId cursor"}, {"INTEGER", "state updateTime"}, {"TEXT", "data1 data2 data3 data4"}};

} // namespace

TEST_F(DriveSchema, TablesAndIndexes)
{
    EXPECT_TRUE(m_drive.InitDatabase());
    SqliteFile file(m_path, SqliteFile::Collation::NameCompare);
    EXPECT_EQ(file.query("PRAGMA table_info(DriveDataTable)"),
              tableInfo({{"TEXT", "fileId name kind mimeType description"},
                         {"INTEGER", "size"},
                         {"TEXT", "attachmentSize hash contentVersion parentId"},
                         {"INTEGER", "favorite recycled directlyRecycled createdTime modifiedTime recycledTime isSync"},
                         {"TEXT", "thumbnailDownloadLink LCDImageDownloadLink"},
                         {"INTEGER", "version batchOper"},
                         {"TEXT", "localAbsolutePath localFileSha256 deleteSrcPath"},
                         {"INTEGER", "uploadTime"},
                         {"TEXT", "renameName"},
                         {"INTEGER", "renameTime"},
                         {"TEXT", "moveParentId"},
                         {"INTEGER", "moveTime softDelete"},
                         {"TEXT", "softDeleteSrcPath"},
                         {"INTEGER",
                          "softDelTime hardDelete hardDelTime localRestore restoreTime uploadBatchId "
                          "renameBatchId moveBatchId softDelBatchId hardDelBatchId restoreBatchId "
                          "newBatchId autoUpload riskFileSign"},
                         {"TEXT", "riskFileType"},
                         {"INTEGER", "fileExtSign needToDisplay classIndex"},
                         {"TEXT", "data1 data2 data3 data4"},
                         {"INTEGER", "subFileAndDirectory operateType"},
                         {"TEXT", "device"}},
                        {{"needToDisplay", "'1'"}}));
    EXPECT_EQ(file.query("PRAGMA table_info(DriveConfTable)"),
              tableInfo({{"INTEGER", "id isFirstStart"},
                         {"TEXT", "startCursor"},
                         {"INTEGER",
                          "timedTaskInterval fullSyncInterval incrementDetectInterval automaticSyncInterval "
                          "lastFullSyncTimestamp lastIncrementDetectTimestamp lastAutomaticSyncTimestamp "
                          "subscribeInterval lastSubscribeTimestamp"},
                         {"TEXT", "rootFileId"},
                         {"INTEGER", "lastNotifySpaceFull"},
                         {"TEXT", "SyncRootPath"},
                         {"INTEGER", "isFirstTrayStart"},
                         {"TEXT", "ClosedBanners data1 data2 data3 data4"},
                         {"INTEGER", "lastLostFileQueryTimestamp"},
                         {"TEXT", "lostFileQueryCursor"}},
                        {{"lastLostFileQueryTimestamp", "'0'"}, {"lostFileQueryCursor", "''''"}}));
    EXPECT_EQ(file.query("PRAGMA table_info(DriveFullTask)"), tableInfo(taskColumns));
    EXPECT_EQ(file.query("PRAGMA table_info(DriveFolderSync)"), tableInfo(taskColumns));
    EXPECT_EQ(file.value("SELECT count(*) FROM sqlite_master WHERE type = 'table'"), "4");

    EXPECT_EQ(file.query("SELECT m.name, x.name, x.coll, x.desc FROM sqlite_master m, pragma_index_xinfo(m.name) x "
                         "WHERE m.type = 'index' AND m.sql IS NOT NULL AND x.key = 1 ORDER BY m.rowid"),
              (Rows{{"'nameIndex'", "'name'", "'NameCompare'", "0"},
                    {"'mimeTypeIndex'", "'mimeType'", "'BINARY'", "0"},
                    {"'sizeIndex'", "'size'", "'BINARY'", "0"},
                    {"'modifiedTimeIndex'", "'modifiedTime'", "'BINARY'", "0"},
                    {"'fileExtSignIndex'", "'fileExtSign'", "'BINARY'", "0"},
                    {"'parentIdIndex'", "'parentId'", "'BINARY'", "0"}}));
}

TEST_F(DriveSchema, EachStatementRunsAloneAndInOrder)
{
    EXPECT_TRUE(m_drive.InitDatabase());
    const std::vector<std::string> begins{
        "CREATE TABLE IF NOT EXISTS DriveFullTask (",    "CREATE TABLE IF NOT EXISTS DriveConfTable (",
        "CREATE TABLE IF NOT EXISTS DriveDataTable(",    "CREATE INDEX IF NOT EXISTS nameIndex ON DriveDataTable",
        "CREATE INDEX IF NOT EXISTS mimeTypeIndex ",     "CREATE INDEX IF NOT EXISTS sizeIndex ",
        "CREATE INDEX IF NOT EXISTS modifiedTimeIndex ", "CREATE INDEX IF NOT EXISTS fileExtSignIndex ",
        "CREATE INDEX IF NOT EXISTS parentIdIndex ",     "CREATE TABLE IF NOT EXISTS DriveFolderSync",
    };
    const std::vector<std::string> statements = m_drive.trace.take();
    ASSERT_EQ(statements.size(), 3 * begins.size());
    for (std::size_t at = 0; at < begins.size(); ++at) {
        const std::string connection = std::to_string(at) + ':';
        EXPECT_EQ(statements[3 * at], connection + "BEGIN IMMEDIATE;");
        EXPECT_TRUE(statements[3 * at + 1].starts_with(connection + begins[at])) << statements[3 * at + 1];
        EXPECT_EQ(statements[3 * at + 2], connection + "COMMIT;");
    }
}

TEST_F(DriveSchema, WhatIsThereStaysAsItIs)
{
    SqliteFile(m_path).exec("CREATE TABLE DriveDataTable(fileId TEXT PRIMARY KEY, name INT, mimeType, size, "
                            "modifiedTime, fileExtSign, parentId); INSERT INTO DriveDataTable(fileId) VALUES('kept')");
    EXPECT_TRUE(m_drive.InitDatabase());
    EXPECT_TRUE(m_drive.InsertDriveData(treeRecord("new", "root"))) << "there is no upgrade, and no report";
    EXPECT_TRUE(m_log.failuresWere({lines.prepare}));
    SqliteFile file(m_path, SqliteFile::Collation::NameCompare);
    EXPECT_EQ(file.value("SELECT count(*) FROM pragma_table_info('DriveDataTable')"), "7");
    EXPECT_EQ(file.value("SELECT group_concat(fileId) FROM DriveDataTable"), "'kept'");

    const std::string before = bytesOf(m_path);
    EXPECT_TRUE(m_drive.InitDatabase());
    EXPECT_EQ(bytesOf(m_path), before) << "a complete file is not written to";
}

TEST_F(DriveSchema, FailureIsTrueAllTheSame)
{
    useFolder(path(L"missing"));
    EXPECT_TRUE(m_drive.InitDatabase());
    std::vector<ExpectedLine> expected;
    for (int statement = 0; statement < 10; ++statement) {
        expected.push_back(lines.open);
        expected.push_back(engine("OpenDatabase", "DriveModuleData.datdoes not exist."));
    }
    EXPECT_TRUE(m_log.failuresWere(expected));
}

TEST_F(DriveSchema, EveryConnectionKnowsTheCollation)
{
    EXPECT_TRUE(m_drive.InitDatabase());
    EXPECT_EQ(DriverDBProviderBase::GetNameCompareName(), "NameCompare");
    for (const char* id : {"10", "9", "a2", "A10", ""}) {
        DatabaseService::DriveDataTable record = treeRecord("id" + std::string(id), "root");
        record.SetName(id);
        m_drive.InsertDriveData(record);
    }
    std::list<DatabaseService::DatabaseQueryResult*>* list = nullptr;
    EXPECT_TRUE(m_drive.Query("SELECT name FROM DriveDataTable ORDER BY name COLLATE NameCompare", list));
    EXPECT_EQ(takeRows(m_drive, list), (Rows{{"''"}, {"'9'"}, {"'10'"}, {"'a2'"}, {"'A10'"}}));

    SqliteFile plain(m_path);
    EXPECT_THROW(plain.exec("INSERT INTO DriveDataTable(fileId, name) VALUES('x', 'y')"), std::runtime_error);
    EXPECT_THROW(plain.exec("CREATE INDEX other ON DriveDataTable(name COLLATE NameCompare)"), std::runtime_error);
    std::string error = "kept";
    EXPECT_TRUE(DriverDBProviderBase::BindNameCompare(plain.handle(), error));
    EXPECT_EQ(error, "kept");
    EXPECT_EQ(plain.value("PRAGMA integrity_check"), "'ok'");

    // SQLite refuses to replace a collation under a statement that runs.
    sqlite3_stmt* running = nullptr;
    sqlite3_prepare_v2(plain.handle(), "SELECT name FROM DriveDataTable", -1, &running, nullptr);
    sqlite3_step(running);
    EXPECT_FALSE(DriverDBProviderBase::BindNameCompare(plain.handle(), error));
    EXPECT_EQ(error, sqlite3_errmsg(plain.handle()));
    sqlite3_finalize(running);
}

TEST_F(DriveSchema, ProvidersAreValuesThatHoldAFileName)
{
    DriverDBProviderBase first;
    first.SetDatabasePath(L"other.dat");
    const DriverDBProviderBase second = first;
    first.SetDatabasePath(L"DriveModuleData.dat");
    DriverDBProviderBase third = second;
    EXPECT_TRUE(third.InitDatabase());
    EXPECT_TRUE(std::filesystem::exists(path(L"other.dat")));
    EXPECT_FALSE(std::filesystem::exists(m_path));
}
