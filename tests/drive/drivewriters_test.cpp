#include "support/drivetest.h"

#include <algorithm>

using namespace testsupport;
using DatabaseService::DriveDataTable;
using Drive = DatabaseService::DriverDBProvider;
using Records = std::vector<DriveDataTable>;

namespace {

const std::string cloud =
    "name kind mimeType description size attachmentSize hash contentVersion parentId favorite "
    "recycled directlyRecycled createdTime modifiedTime recycledTime isSync thumbnailDownloadLink "
    "LCDImageDownloadLink version batchOper ";
const std::string local = "localFileSha256 deleteSrcPath uploadTime renameName renameTime moveParentId moveTime "
                          "softDelete softDeleteSrcPath softDelTime hardDelete hardDelTime localRestore restoreTime ";
const std::string batch = "uploadBatchId renameBatchId moveBatchId softDelBatchId hardDelBatchId restoreBatchId "
                          "newBatchId ";
const std::string spare = "data1 data2 data3 data4 ";
const std::string markers = "renameName renameTime renameBatchId moveParentId moveTime moveBatchId softDelete "
                            "softDeleteSrcPath softDelTime softDelBatchId hardDelete hardDelTime hardDelBatchId "
                            "localRestore restoreTime uploadTime uploadBatchId newBatchId restoreBatchId ";

const std::string all =
    cloud + local + batch + "autoUpload riskFileSign riskFileType fileExtSign needToDisplay classIndex " + spare;

/// An update of rows by one statement.
struct Update {
    const char* name;
    std::function<bool(Drive&, const Records&)> call;
    std::string columns; ///< in the statement's order, with "=" and the parameter where that is not the namesake
    std::string tail = "WHERE fileId = :fileId";
};

const std::string byId = "WHERE fileId = :fileId ;";
const Update batches[] = {
    {"pointers",
     [](auto& drive, auto& records) {
         return drive.UpdateDriveData(
             mapped(records, [](const auto& record) { return std::make_shared<DriveDataTable>(record); }));
     },
     all},
    {"all", &Drive::UpdateDriveAllData, cloud + local + batch + "autoUpload riskFileSign riskFileType " + spare},
    {"base", &Drive::UpdateDriveBaseData,
     cloud + local + "autoUpload needToDisplay riskFileSign riskFileType " + spare},
    {"simple", &Drive::UpdateDriveSimpleData,
     "name size parentId recycled directlyRecycled modifiedTime recycledTime contentVersion version riskFileSign "
     "fileExtSign needToDisplay classIndex riskFileType deleteSrcPath "},
    {"operations", &Drive::UpdateDriveOperData, markers},
    {"simple with operations", &Drive::UpdateSimpleAllData,
     "name size parentId favorite recycled directlyRecycled modifiedTime recycledTime version " + markers +
         "riskFileSign riskFileType fileExtSign needToDisplay classIndex deleteSrcPath "},
    {"local", &Drive::UpdateFileLocalInfo, "localAbsolutePath localFileSha256 "},
    {"new folder", &Drive::NewDirDriveDataById, "fileId name kind contentVersion modifiedTime recycledTime newBatchId",
     "WHERE fileId = :helpData;"},
    {"upload", &Drive::UploadDriveDataById, "mimeType name kind contentVersion version newBatchId fileId=helpData",
     "WHERE fileId = :fileId;"},
    {"rename", &Drive::RenameDriveDataById, "renameName name renameBatchId renameTime", byId},
    {"move", &Drive::MoveDriveDataToParent, "moveParentId moveBatchId moveTime", byId},
    {"soft delete", &Drive::SoftDeleteDriveDataById, "softDelete softDeleteSrcPath softDelBatchId softDelTime", byId},
    {"hard delete", &Drive::HardDeleteDriveDataById, "hardDelete hardDelBatchId hardDelTime", byId},
    {"restore", &Drive::RestoreDriveDataById, "localRestore restoreBatchId restoreTime", byId},
};

const Update single{"one", [](auto& drive, auto& records) { return drive.UpdateDriveData(records.at(0)); }, all};
const Update display{"display",
                     [](auto& drive, auto& records) {
                         const DriveDataTable& record = records.at(0);
                         return drive.UpdateCloudContentStatusById(record.GetFileid(), record.GetCloudContentStatus());
                     },
                     "needToDisplay ", "WHERE fileId = :fileId;"};

DriveDataTable keyed(const std::string& fileId, const std::string& helpData)
{
    DriveDataTable record = treeRecord(fileId, "");
    record.SetHelpData(helpData);
    return record;
}

struct DriveWriters : DriveTest {
    /// Fills a row, has `update` change it from a record that differs in every member, and compares statement and row
    /// with what it names. An update by `helpData` gets the row's id there.
    void expectExactly(const Update& update)
    {
        m_file.exec("DELETE FROM DriveDataTable");
        m_drive.InsertDriveDataBatch({filledRecord("id", 1), filledRecord("other", 2)});
        m_file.exec("UPDATE DriveDataTable SET subFileAndDirectory = 5, operateType = 6, device = 'd'");
        m_drive.trace.take();
        const bool byHelpData = update.tail.find(":helpData") != std::string::npos;
        DriveDataTable record = filledRecord(byHelpData ? "new" : "id", 3);
        record.SetHelpData(byHelpData ? "id" : "new");
        EXPECT_TRUE(update.call(m_drive, {record}));

        std::vector<std::string> settings;
        DriveDataTable expected = filledRecord("id", 1);
        for (const std::string& word : split(update.columns)) {
            const std::string column = word.substr(0, word.find('='));
            const std::string parameter = word.substr(word.find('=') + 1);
            const auto field = std::ranges::find(driveFields(), column, &DriveField::column);
            ASSERT_TRUE(field != driveFields().end()) << column;
            field->set(expected, parameter == "helpData" ? record.GetHelpData() : field->get(record));
            settings.push_back(column + " = :" + parameter);
        }
        EXPECT_EQ(statement(), "UPDATE DriveDataTable SET " + joined(settings) + ' ' + update.tail);
        EXPECT_EQ(row(expected.GetFileid()), cellsOf(expected));
        EXPECT_EQ(row("other"), cellsOf(filledRecord("other", 2)));
        EXPECT_EQ(m_file.value("SELECT count(*) FROM DriveDataTable WHERE subFileAndDirectory = 5 AND operateType = 6 "
                               "AND device = 'd'"),
                  "2");

        const std::string there = ids();
        EXPECT_TRUE(update.call(m_drive, {filledRecord("unknown", 4)}));
        EXPECT_EQ(ids(), there) << "an update inserts nothing";
        m_drive.trace.take();
    }
};

} // namespace

TEST_F(DriveWriters, InsertStoresEveryMember)
{
    const DriveDataTable record = filledRecord("id", 1);
    EXPECT_TRUE(m_drive.InsertDriveData(record));
    EXPECT_EQ(row("id"), cellsOf(record));
    EXPECT_EQ(m_file.text("SELECT subFileAndDirectory, operateType, device FROM DriveDataTable"), "NULL|NULL|NULL");
    const std::string sql = statement();
    EXPECT_TRUE(sql.starts_with("INSERT INTO DriveDataTable (")) << sql;
    EXPECT_EQ(parametersIn(sql), driveColumns());

    EXPECT_TRUE(m_drive.InsertDriveData(DriveDataTable()));
    EXPECT_EQ(row(""), cellsOf(DriveDataTable())) << "the column's own default does not come into it";
}

TEST_F(DriveWriters, ReplaceForgetsTheLocalPath)
{
    m_drive.InsertDriveData(filledRecord("there", 1));
    m_drive.trace.take();
    EXPECT_TRUE(m_drive.ReplaceDriveData(filledRecord("there", 2)));
    const std::string sql = statement();
    EXPECT_TRUE(sql.starts_with("REPLACE INTO DriveDataTable (")) << sql;
    EXPECT_EQ(parametersIn(sql).size(), 52U);
    EXPECT_TRUE(m_drive.ReplaceDriveAllData({filledRecord("new", 3), filledRecord("there", 4)}));
    for (const auto& [id, seed] : {std::pair{"there", 4}, {"new", 3}}) {
        std::vector<std::string> expected = cellsOf(filledRecord(id, seed));
        expected[21] = "NULL";
        EXPECT_EQ(row(id), expected);
    }
    EXPECT_EQ(m_drive.GetDriveDataById("there").GetLocalAbsolutePath(), "");
}

TEST_F(DriveWriters, EachUpdateTouchesExactlyItsColumnsInOneTransaction)
{
    expectExactly(single);
    expectExactly(display);
    for (const Update& update : batches) {
        SCOPED_TRACE(update.name);
        expectExactly(update);
        EXPECT_TRUE(update.call(m_drive, {keyed("id", "id"), keyed("unknown", "unknown"), keyed("other", "other")}));
        EXPECT_EQ(m_drive.trace.take().size(), 5U);
        EXPECT_TRUE(update.call(m_drive, {}));
        EXPECT_EQ(m_drive.trace.take().size(), 2U) << "an empty batch begins and commits";
    }
}

TEST_F(DriveWriters, NothingGuardsTheKey)
{
    m_drive.InsertDriveDataBatch({treeRecord("a", ""), treeRecord("taken", ""), treeRecord("child", "a")});
    EXPECT_TRUE(m_drive.UploadDriveDataById({keyed("a", "taken"), keyed("a", "")}));
    EXPECT_TRUE(m_log.failuresWere({lines.step, lines.bindMessage("UNIQUE constraint failed: DriveDataTable.fileId")}));
    EXPECT_EQ(m_file.text("SELECT fileId, parentId FROM DriveDataTable ORDER BY 1"), "''|''\n'child'|'a'\n'taken'|''");
}

TEST_F(DriveWriters, ABatchIsOneTransactionThatLosesFailedRowsOnly)
{
    m_drive.InsertDriveData(treeRecord("b", "root"));
    m_drive.trace.take();
    EXPECT_TRUE(m_drive.InsertDriveDataBatch({treeRecord("a", ""), treeRecord("b", "lost"), treeRecord("c", "")}));
    EXPECT_TRUE(m_log.failuresWere({lines.step, lines.bindMessage("UNIQUE constraint failed: DriveDataTable.fileId")}));
    EXPECT_EQ(m_drive.trace.take().size(), 5U);
    EXPECT_EQ(m_file.text("SELECT fileId, parentId FROM DriveDataTable ORDER BY 1"), "'a'|''\n'b'|'root'\n'c'|''");

    const auto update = [](const char* id) { return std::make_shared<DriveDataTable>(filledRecord(id, 2)); };
    EXPECT_TRUE(m_drive.UpdateDriveData(std::vector{update("a"), std::shared_ptr<DriveDataTable>(), update("b")}));
    EXPECT_EQ(m_file.text("SELECT name FROM DriveDataTable ORDER BY fileId"), "'name-2'\n'name-2'\n'name of c'");
    EXPECT_TRUE(m_log.failuresWere({{"DriverDBProviderBase::UpdateDriveData", "*"}})) << "for the null record";

    m_drive.trace.take();
    EXPECT_TRUE(m_drive.InsertDriveDataBatch({}));
    EXPECT_TRUE(m_drive.DeleteDriveDataById(std::vector<std::string>()));
    EXPECT_TRUE(m_drive.UpdateCloudContentStatusByIds({}));
    EXPECT_EQ(m_drive.trace.take().size(), 3U * 2) << "an empty batch begins and commits";
}

TEST_F(DriveWriters, UpdateByNamesPatchesEighteenMembers)
{
    const std::vector<std::string> keys =
        split("batchOper localAbsolutePath uploadTime renameName renameTime moveParentId moveTime softDelete "
              "deleteSrcPath softDeleteSrcPath softDelTime hardDelete hardDelTime localRestore restoreTime parentId "
              "name version");
    const DriveDataTable before = filledRecord("id", 1);
    m_drive.InsertDriveData(before);
    std::unordered_map<std::string, std::string> values;
    for (const std::string& key : keys) {
        values[key] = "42" + key;
    }
    values["size"] = values["fileId"] = values["needToDisplay = 0; --"] = "42";
    EXPECT_TRUE(m_drive.UpdateDriveData("id", values));
    const std::vector<std::string> after = row("id");
    for (std::size_t at = 0; at < after.size(); ++at) {
        const DriveField& field = driveFields()[at];
        const bool patched = std::ranges::count(keys, field.column) > 0 && field.column != "localAbsolutePath";
        EXPECT_EQ(after[at], !patched ? field.cell(before) : field.text ? textCell("42" + field.column) : "42");
    }

    const std::tuple<std::string, std::string, std::string> numbers[] = {
        {"version", "letters", "0"},
        {"version", " -7.9", "-7"},
        {"version", "99999999999999999999", "9223372036854775807"},
        {"softDelete", "4294967297", "1"}, // cut to the member's width
        {"softDelete", "2147483648", "-2147483648"},
    };
    for (const auto& [key, text, stored] : numbers) {
        EXPECT_TRUE(m_drive.UpdateDriveData("id", {{key, text}}));
        EXPECT_EQ(m_file.value("SELECT " + key + " FROM DriveDataTable"), stored) << text;
    }

    const DriveDataTable withoutId = filledRecord("", 2);
    m_drive.InsertDriveData(withoutId);
    EXPECT_TRUE(m_drive.UpdateDriveData("unknown", {{"name", "new"}}));
    EXPECT_EQ(ids(), "',id'");
    EXPECT_EQ(row(""), cellsOf(withoutId));
    EXPECT_TRUE(m_drive.UpdateDriveData("", {{"name", "new"}}));
    EXPECT_EQ(m_drive.GetDriveDataById("").GetName(), "new");
}

TEST_F(DriveWriters, OnlyTheDisplayFlagReportsTheEngine)
{
    m_drive.InsertDriveDataBatch({treeRecord("a", ""), treeRecord("b", "")});
    EXPECT_TRUE(m_drive.UpdateCloudContentStatusByIds({{"a", 2}, {"unknown", 3}, {"b", -1}}));
    EXPECT_EQ(m_file.query("SELECT needToDisplay FROM DriveDataTable ORDER BY fileId"), (Rows{{"2"}, {"-1"}}));

    useFolder(path(L"missing"));
    const DriveDataTable record = treeRecord("a", "");
    std::vector<std::string> statements{"SELECT 1", "SELECT 2"};
    EXPECT_TRUE(m_drive.InitDatabase() && m_drive.InsertDriveData(record) && m_drive.ReplaceDriveData(record));
    for (const Update& update : batches) {
        EXPECT_TRUE(update.call(m_drive, {record})) << update.name;
    }
    EXPECT_TRUE(single.call(m_drive, {record}));
    EXPECT_FALSE(display.call(m_drive, {record}) || m_drive.UpdateCloudContentStatusByIds({}));
    EXPECT_TRUE(m_drive.UpdateDriveData("a", {{"name", "b"}}));
    EXPECT_TRUE(m_drive.DeleteDriveDataById("a") && m_drive.DeleteDriveDataById(std::vector<std::string>{"a"}));
    EXPECT_TRUE(m_drive.DeleteAllDriveData() && m_drive.DeleteDriveDataWithoutLocal());
    EXPECT_TRUE(m_drive.ExecuteSQL("SELECT 1") && m_drive.ExecuteSQLList(statements));
    EXPECT_FALSE(std::filesystem::exists(path(L"missing")));
    EXPECT_EQ(failedOpens(), 10 + 21 + 7);
}

TEST_F(DriveWriters, Deletes)
{
    m_drive.InsertDriveDataBatch({treeRecord("a", ""), treeRecord("b", ""), treeRecord("c", ""), treeRecord("d", "")});
    m_drive.trace.take();
    EXPECT_TRUE(m_drive.DeleteDriveDataById("a"));
    EXPECT_EQ(statement(), "DELETE FROM DriveDataTable WHERE fileId = :fileId ;");
    EXPECT_TRUE(m_drive.DeleteDriveDataById(std::vector<std::string>{"b", "unknown", "c"}));
    EXPECT_EQ(ids(), "'d'");

    // The statement tests a column that the table does not have.
    EXPECT_TRUE(m_drive.DeleteDriveDataWithoutLocal());
    EXPECT_TRUE(m_log.failuresWere({lines.prepare}));
    EXPECT_EQ(ids(), "'d'");
    m_file.exec("ALTER TABLE DriveDataTable ADD COLUMN local INTEGER");
    m_drive.trace.take();
    EXPECT_TRUE(m_drive.DeleteDriveDataWithoutLocal());
    EXPECT_EQ(statement(), "DELETE FROM DriveDataTable WHERE local = 1;");

    EXPECT_TRUE(m_drive.DeleteAllDriveData());
    EXPECT_EQ(statement(), "DELETE FROM DriveDataTable;");
    EXPECT_EQ(m_drive.CountDriverData(), 0);
}

TEST_F(DriveWriters, ListsOfStatementsRunEachAlone)
{
    std::vector<std::string> statements{"INSERT INTO DriveDataTable(fileId) VALUES('a')",
                                        "INSERT INTO nowhere VALUES(1)",
                                        "INSERT INTO DriveDataTable(fileId) VALUES('b'); DELETE FROM DriveDataTable"};
    EXPECT_TRUE(m_drive.ExecuteSQLList(statements));
    EXPECT_TRUE(m_log.failuresWere({lines.prepare}));
    EXPECT_EQ(ids(), "'a,b'") << "only the first statement of a text runs";
    EXPECT_EQ(m_file.value("SELECT needToDisplay FROM DriveDataTable LIMIT 1"), "1") << "here the default applies";
    const int opened = m_drive.opened;
    statements.clear();
    EXPECT_TRUE(m_drive.ExecuteSQLList(statements));
    EXPECT_EQ(m_drive.opened, opened) << "an empty list opens nothing";
    EXPECT_TRUE(m_drive.ExecuteSQL("DELETE FROM DriveDataTable WHERE fileId = 'a'"));
    EXPECT_EQ(ids(), "'b'");
    EXPECT_TRUE(m_drive.DriverDBProviderBase::ExecuteSQL("DELETE FROM DriveDataTable"));
    EXPECT_EQ(ids(), "NULL");
}
