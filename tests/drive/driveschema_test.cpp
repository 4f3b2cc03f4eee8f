#include "support/drivetest.h"
#include "support/filebytes.h"

using namespace testsupport;
using namespace DatabaseService;

using DriveSchema = DriveTest;

TEST_F(DriveSchema, TablesAndIndexes)
{
    EXPECT_EQ(m_file.value("SELECT group_concat(name) FROM sqlite_master WHERE type = 'table'"),
              "'DriveFullTask,DriveConfTable,DriveDataTable,DriveFolderSync'");
    EXPECT_EQ(m_file.columns("DriveDataTable"),
              "TEXT NOT NULL KEY: fileId\n"
              "TEXT: name kind mimeType description\n"
              "INTEGER: size\n"
              "TEXT: attachmentSize hash contentVersion parentId\n"
              "INTEGER: favorite recycled directlyRecycled createdTime modifiedTime recycledTime isSync\n"
              "TEXT: thumbnailDownloadLink LCDImageDownloadLink\n"
              "INTEGER: version batchOper\n"
              "TEXT: localAbsolutePath localFileSha256 deleteSrcPath\n"
              "INTEGER: uploadTime\n"
              "TEXT: renameName\n"
              "INTEGER: renameTime\n"
              "TEXT: moveParentId\n"
              "INTEGER: moveTime softDelete\n"
              "TEXT: softDeleteSrcPath\n"
              "INTEGER: softDelTime hardDelete hardDelTime localRestore restoreTime uploadBatchId renameBatchId "
              "moveBatchId softDelBatchId hardDelBatchId restoreBatchId newBatchId autoUpload riskFileSign\n"
              "TEXT: riskFileType\n"
              "INTEGER: fileExtSign\n"
              "INTEGER DEFAULT 1: needToDisplay\n"
              "INTEGER: classIndex\n"
              "TEXT: data1 data2 data3 data4\n"
              "INTEGER: subFileAndDirectory operateType\n"
              "TEXT: device");
    EXPECT_EQ(m_file.columns("DriveConfTable"),
              "INTEGER NOT NULL KEY: id\n"
              "INTEGER: isFirstStart\n"
              "TEXT: startCursor\n"
              "INTEGER: timedTaskInterval fullSyncInterval incrementDetectInterval automaticSyncInterval "
              "lastFullSyncTimestamp lastIncrementDetectTimestamp lastAutomaticSyncTimestamp subscribeInterval "
              "lastSubscribeTimestamp\n"
              "TEXT: rootFileId\n"
              "INTEGER: lastNotifySpaceFull\n"
              "TEXT: SyncRootPath\n"
              "INTEGER: isFirstTrayStart\n"
              "TEXT: ClosedBanners data1 data2 data3 data4\n"
              "INTEGER DEFAULT 0: lastLostFileQueryTimestamp\n"
              "TEXT DEFAULT '': lostFileQueryCursor");
    EXPECT_EQ(m_file.columns("DriveFullTask"),
              "TEXT NOT NULL KEY: fileId\nTEXT: cursor\nINTEGER: state updateTime\nTEXT: data1 data2 data3 data4");
    EXPECT_EQ(m_file.columns("DriveFolderSync"), m_file.columns("DriveFullTask"));

    EXPECT_EQ(m_file.text("SELECT m.name, x.name, x.coll, x.desc FROM sqlite_master m, pragma_index_xinfo(m.name) x "
                          "WHERE m.type = 'index' AND m.sql IS NOT NULL AND x.key = 1 ORDER BY m.rowid"),
              "'nameIndex'|'name'|'NameCompare'|0\n"
              "'mimeTypeIndex'|'mimeType'|'BINARY'|0\n"
              "'sizeIndex'|'size'|'BINARY'|0\n"
              "'modifiedTimeIndex'|'modifiedTime'|'BINARY'|0\n"
              "'fileExtSignIndex'|'fileExtSign'|'BINARY'|0\n"
              "'parentIdIndex'|'parentId'|'BINARY'|0");
}

TEST_F(DriveSchema, WhatIsThereStaysAsItIs)
{
    m_file.exec("DROP TABLE DriveDataTable; CREATE TABLE DriveDataTable(fileId TEXT PRIMARY KEY, name INT, mimeType, "
                "size, modifiedTime, fileExtSign, parentId); INSERT INTO DriveDataTable(fileId) VALUES('kept')");
    EXPECT_TRUE(m_drive.InitDatabase());
    EXPECT_TRUE(m_drive.InsertDriveData(treeRecord("new", "root"))) << "there is no upgrade, and no report";
    EXPECT_TRUE(m_log.failuresWere({lines.prepare}));
    EXPECT_EQ(ids(), "'kept'");

    const std::string before = bytesOf(path(L"DriveModuleData.dat"));
    EXPECT_TRUE(m_drive.InitDatabase());
    EXPECT_EQ(bytesOf(path(L"DriveModuleData.dat")), before) << "a complete file is not written to";
}

TEST_F(DriveSchema, EveryConnectionKnowsTheCollation)
{
    EXPECT_EQ(DriverDBProviderBase::GetNameCompareName(), "NameCompare");
    for (const char* id : {"10", "9", "a2", "A10", ""}) {
        DriveDataTable record = treeRecord("id" + std::string(id), "root");
        record.SetName(id);
        m_drive.InsertDriveData(record);
    }
    std::list<DatabaseQueryResult*>* list = nullptr;
    EXPECT_TRUE(m_drive.Query("SELECT name FROM DriveDataTable ORDER BY name COLLATE NameCompare", list));
    EXPECT_EQ(takeRows(m_drive, list), (Rows{{"''"}, {"'9'"}, {"'10'"}, {"'a2'"}, {"'A10'"}}));

    SqliteFile plain(path(L"DriveModuleData.dat"));
    EXPECT_THROW(plain.exec("INSERT INTO DriveDataTable(fileId, name) VALUES('x', 'y')"), std::runtime_error);
    EXPECT_THROW(plain.exec("CREATE INDEX other ON DriveDataTable(name COLLATE NameCompare)"), std::runtime_error);
    std::string error = "kept";
    EXPECT_TRUE(DriverDBProviderBase::BindNameCompare(plain.handle(), error));
    EXPECT_EQ(error, "kept");
    EXPECT_EQ(plain.value("PRAGMA integrity_check"), "'ok'");
}
