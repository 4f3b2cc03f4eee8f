#include "databaseservice/gallerydbprovider.h"
#include "support/enginelines.h"
#include "support/lists.h"
#include "support/storetest.h"

#include <functional>

using namespace testsupport;
using namespace DatabaseService;
using namespace DatabaseService::GalleryDBProvider;

namespace {

constexpr int64 big = 5'000'000'000;

/// A table and a record whose members hold the name of their column, if text, and else their place, beyond 32 bits or
/// below zero.
struct Table {
    const char* name;
    const char* columns;
    const char* kinds; // Text, Integer of 32 bits, Long one
    const char* key;
    std::function<bool()> insert;
    std::function<int()> count;
};

template <class Result, class Record>
std::function<bool()> inserting(Result (*insert)(std::vector<Record>&), const Record& record)
{
    return [=] {
        std::vector<Record> records{record};
        if constexpr (std::is_void_v<Result>) {
            insert(records);
            return true;
        } else {
            return insert(records);
        }
    };
}

// clang-format off
const GalleryFileTable filled{
    "UniqueId", "FileId", "VideoThumbId", "Hash", big + 4, big + 5, "ThumbFileId", "LcdFileId", big + 8,
    "RecycleAlbumId", big + 10, "Guid", "Expand", -13, -14, -15, "LocalPath", "OperateTime", -18, -19,
    "ContinuousName", -21, "FileName", "AlbumId", -24, -25, "CheckSumn", "Sdsmtime", "PictureMetadata",
    "VideoMetadata"};
// clang-format on

const Table tables[] = {
    {"Album", "AlbumId AlbumName CreateTime Lpath AlbumType Operation IsDelete Expand", "TTLTTTIT", "AlbumId",
     inserting(InsertAlbumTable, {"AlbumId", "AlbumName", big + 2, "Lpath", "AlbumType", "Operation", -6, "Expand"}),
     CountAlbumTable},
    {"AlbumLocalVersion",
     "AlbumVersion AlbumListVersion LatestVersion ClearVersion UpdateTime HasDownAll TempVersion Cursor RecyCursor "
     "BriefingTime SyncToken CloudPhotoVersion FileCursor",
     "TTITLIITTTTTT", "AlbumVersion",
     inserting(InsertAlbumVersionTable,
               {"AlbumVersion", "AlbumListVersion", -2, "ClearVersion", big + 4, -5, -6, "Cursor", "RecyCursor",
                "BriefingTime", "SyncToken", "CloudPhotoVersion", "FileCursor"}),
     CountAlbumVersionTable},
    {"GalleryFile",
     "UniqueId FileId VideoThumbId Hash CreateTime FirstUpdateTime ThumbFileId LcdFileId Size RecycleAlbumId "
     "RecycleTime Guid Expand GalleryState IsLocalUpload Offset LocalPath OperateTime ContinuousNo ContinuousType "
     "ContinuousName IsDeleted FileName AlbumId IsFavorite SavedFileType CheckSumn Sdsmtime PictureMetadata "
     "VideoMetadata",
     "TTTTLLTTLTLTTIIITTIITITTIITTTT", "UniqueId", inserting(InsertGalleryFileTable, filled), CountGalleryFileTable},
    {"DownloadTask",
     "FileName AlbumId FileId UniqueId TotalLength Position LocalPath OriginalFileLocalPath TaskType "
     "IsLocalFileDownload Id",
     "TTTTLITTIII", "Id",
     inserting(
         InsertDownloadTaskTable,
         {"FileName", "AlbumId", "FileId", "UniqueId", big + 4, -5, "LocalPath", "OriginalFileLocalPath", -8, -9, -10}),
     CountDownloadTaskTable},
    {"TransferCompleteCloudTask",
     "FileName FileId UniqueId TotalLength LocalPath TaskType EndTime IsLocalFileDownload Id", "TTTLTILII", "Id",
     inserting(InsertTransferCompleteCloudTaskTable,
               {"FileName", "FileId", "UniqueId", big + 3, "LocalPath", -5, big + 6, -7, -8}),
     CountTransferCompleteCloudTaskTable},
    {"UploadTask",
     "FileName AlbumId FileId UniqueId TotalLength Position LocalPath OriginalFileLocalPath TaskStatus TaskType "
     "StartTime EndTime IsFastUpload TransferId IsLocalFileDownload Id ServerPath",
     "TTTTLITTIITTITIIT", "Id",
     inserting(InsertUploadTaskTable,
               {"FileName", "AlbumId", "FileId", "UniqueId", big + 4, -5, "LocalPath", "OriginalFileLocalPath", -8, -9,
                "StartTime", "EndTime", -12, "TransferId", -14, -15, "ServerPath"}),
     CountUploadTaskTable},
};

struct Gallery : StoreTest {
    Gallery() { InitGalleryDatabase(L"gallery.dat"); }

    GalleryFileTable find(std::string uniqueId) { return GetGalleryFileOneData(uniqueId); }

    SqliteFile m_file{path(L"gallery.dat")};
};

} // namespace

TEST_F(Gallery, EachTableHoldsItsRecord)
{
    std::string order;
    for (const auto& [name, columns, kinds, key, insert, count] : tables) {
        SCOPED_TRACE(name);
        order += (order.empty() ? "'" : ",") + std::string(name);
        Rows schema;
        Rows row(1);
        for (const std::string& column : split(columns)) {
            const std::size_t place = schema.size();
            const bool text = kinds[place] == 'T';
            schema.push_back({textCell(column), text ? "'TEXT'" : "'INTEGER'", "1", "NULL", column == key ? "1" : "0"});
            const int64 number = static_cast<int64>(place);
            row[0].push_back(text ? textCell(column) : std::to_string(kinds[place] == 'L' ? big + number : -number));
        }
        const std::string table = name;
        EXPECT_EQ(m_file.query("SELECT name, type, \"notnull\", dflt_value, pk FROM pragma_table_info('" + table +
                               "') ORDER BY cid"),
                  schema);
        EXPECT_EQ(count(), 0);
        EXPECT_TRUE(insert());
        EXPECT_EQ(m_file.query("SELECT * FROM " + table), row);

        // A record of the same key replaces the whole row, and one of another stands beside it.
        m_file.exec("UPDATE " + table + " SET " + schema[1][0] + " = '?'");
        EXPECT_TRUE(insert());
        EXPECT_EQ(m_file.query("SELECT * FROM " + table), row);
        m_file.exec("UPDATE " + table + " SET " + key + " = 7");
        EXPECT_TRUE(insert());
        EXPECT_EQ(count(), 2);
    }
    EXPECT_EQ(m_file.value("SELECT group_concat(name) FROM sqlite_master WHERE type = 'table'"), order + '\'');
}

TEST_F(Gallery, AFileIsFoundByItsUniqueId)
{
    std::vector<GalleryFileTable> records{filled};
    EXPECT_TRUE(InsertGalleryFileTable(records));
    const Rows stored = m_file.query("SELECT * FROM GalleryFile");
    records = {find("UniqueId")};
    m_file.exec("DELETE FROM GalleryFile");
    EXPECT_TRUE(InsertGalleryFileTable(records));
    EXPECT_EQ(m_file.query("SELECT * FROM GalleryFile"), stored);
    EXPECT_TRUE(find("uniqueid").UniqueId.empty());
    m_file.exec("UPDATE GalleryFile SET \"Offset\" = 4294967301, UniqueId = '\u76F8'");
    EXPECT_EQ(find("\u76F8").Offset, 5) << "cut to the member";
}

TEST_F(Gallery, BatchesOfAnyLength)
{
    std::vector<GalleryFileTable> records;
    EXPECT_TRUE(InsertGalleryFileTable(records));
    EXPECT_EQ(CountGalleryFileTable(), 0);

    records.resize(3);
    records[0].FileName = "first";
    records[1].UniqueId = "damaged \xFF";
    records[2].FileName = "last";
    EXPECT_TRUE(InsertGalleryFileTable(records));
    EXPECT_EQ(m_file.text("SELECT UniqueId, FileName, VideoMetadata FROM GalleryFile ORDER BY UniqueId"),
              "''|'last'|''\n'damaged \uFFFD'|''|''");
}

TEST_F(Gallery, ResetDropsTheTablesUntilTheNextStart)
{
    for (const Table& table : tables) {
        EXPECT_TRUE(table.insert());
    }
    InitGalleryDatabase(L"gallery.dat");
    for (const Table& table : tables) {
        EXPECT_EQ(table.count(), 1) << table.name;
    }
    ResetGalleryDatabase(L"gallery.dat");
    ResetGalleryDatabase(L"gallery.dat");
    EXPECT_EQ(m_file.value("SELECT count(*) FROM sqlite_master"), "0");

    const ExpectedLine prepare = EngineLines("gallery.dat").prepare;
    for (const Table& table : tables) {
        SCOPED_TRACE(table.name);
        EXPECT_EQ(table.count(), 0);
        const bool silent = table.key == std::string("Id");
        EXPECT_EQ(table.insert(), silent) << "the task tables' writers tell nothing";
        EXPECT_TRUE(m_log.failuresWere({prepare, prepare}));
    }
    EXPECT_TRUE(find("UniqueId").UniqueId.empty());
    EXPECT_TRUE(m_log.failuresWere({prepare}));
}

TEST_F(Gallery, TheNameIsTakenAsItStands)
{
    InitGalleryDatabase(L"it's \u76F8.dat");
    EXPECT_TRUE(tables[0].insert());
    EXPECT_EQ(SqliteFile(path(L"it's \u76F8.dat")).value("SELECT count(*) FROM Album"), "1") << "a store of its own";
    // As long as there is no name, calls meet the folder itself.
    ResetGalleryDatabase({});
    m_log.take();
    EXPECT_EQ(CountAlbumTable(), 0);
    EXPECT_TRUE(m_log.failuresWere({EngineLines("").open, engine("OpenDatabase", "exist.")}));
}
