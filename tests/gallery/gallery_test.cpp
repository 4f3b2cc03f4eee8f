#include "databaseservice/gallerydbprovider.h"
#include "support/enginelines.h"
#include "support/recordfields.h"
#include "support/storetest.h"

#include <functional>

using namespace testsupport;
using namespace DatabaseService;
using namespace DatabaseService::GalleryDBProvider;

namespace {

using A = AlbumTable;
using V = AlbumVersionTable;
using G = GalleryFileTable;
using D = DownloadTaskTable;
using C = TransferCompleteCloudTaskTable;
using U = UploadTaskTable;

struct Table {
    std::string name;
    std::string kinds; ///< of the columns: Text, Integer of 32 bits, Long one
    std::vector<char> kindsOfMembers;
    bool tells; ///< how an insert ended
    std::vector<std::string> columns;
    std::vector<std::string> row;
    std::function<bool()> insert;
    std::function<int()> count;
};

template <class Record, class Result>
Table table(const RecordFields<Record>& fields, const char* kinds, Result (*insert)(std::vector<Record>&),
            int (*count)())
{
    const auto insertOne = [=] {
        std::vector records{fields.filled(1)};
        if constexpr (std::is_void_v<Result>) {
            insert(records);
            return true;
        } else {
            return insert(records);
        }
    };
    const auto kind = [](const auto& field) { return field.text ? 'T' : field.bits == 64 ? 'L' : 'I'; };
    const auto columns = mapped(fields.all, &RecordField<Record>::column);
    const auto row = fields.cells(fields.filled(1));
    return {fields.table, kinds, mapped(fields.all, kind), !std::is_void_v<Result>, columns, row, insertOne, count};
}

// clang-format off
const RecordFields<G> pictures{"GalleryFile",
    FIELDS(G, &G::UniqueId, &G::FileId, &G::VideoThumbId, &G::Hash, &G::CreateTime, &G::FirstUpdateTime,
    &G::ThumbFileId, &G::LcdFileId, &G::Size, &G::RecycleAlbumId, &G::RecycleTime, &G::Guid, &G::Expand,
    &G::GalleryState, &G::IsLocalUpload, &G::Offset, &G::LocalPath, &G::OperateTime, &G::ContinuousNo,
    &G::ContinuousType, &G::ContinuousName, &G::IsDeleted, &G::FileName, &G::AlbumId, &G::IsFavorite, &G::SavedFileType,
    &G::CheckSumn, &G::Sdsmtime, &G::PictureMetadata, &G::VideoMetadata)};

const Table tables[] = {
    table<A>({"Album",
        FIELDS(A, &A::AlbumId, &A::AlbumName, &A::CreateTime, &A::Lpath, &A::AlbumType, &A::Operation, &A::IsDelete,
        &A::Expand)}, "TTLTTTIT", InsertAlbumTable, CountAlbumTable),
    table<V>({"AlbumLocalVersion",
        FIELDS(V, &V::AlbumVersion, &V::AlbumListVersion, &V::LatestVersion, &V::ClearVersion, &V::UpdateTime,
        &V::HasDownAll, &V::TempVersion, &V::Cursor, &V::RecyCursor, &V::BriefingTime, &V::SyncToken,
        &V::CloudPhotoVersion, &V::FileCursor)}, "TTITLIITTTTTT", InsertAlbumVersionTable, CountAlbumVersionTable),
    table(pictures, "TTTTLLTTLTLTTIIITTIITITTIITTTT", InsertGalleryFileTable, CountGalleryFileTable),
    table<D>({"DownloadTask",
        FIELDS(D, &D::FileName, &D::AlbumId, &D::FileId, &D::UniqueId, &D::TotalLength, &D::Position, &D::LocalPath,
        &D::OriginalFileLocalPath, &D::TaskType, &D::IsLocalFileDownload, &D::Id)}, "TTTTLITTIII",
        InsertDownloadTaskTable, CountDownloadTaskTable),
    table<C>({"TransferCompleteCloudTask",
        FIELDS(C, &C::FileName, &C::FileId, &C::UniqueId, &C::TotalLength, &C::LocalPath, &C::TaskType, &C::EndTime,
        &C::IsLocalFileDownload, &C::Id)}, "TTTLTILII", InsertTransferCompleteCloudTaskTable,
        CountTransferCompleteCloudTaskTable),
    table<U>({"UploadTask",
        FIELDS(U, &U::FileName, &U::AlbumId, &U::FileId, &U::UniqueId, &U::TotalLength, &U::Position, &U::LocalPath,
        &U::OriginalFileLocalPath, &U::TaskStatus, &U::TaskType, &U::StartTime, &U::EndTime, &U::IsFastUpload,
        &U::TransferId, &U::IsLocalFileDownload, &U::Id, &U::ServerPath)}, "TTTTLITTIITTITIIT", InsertUploadTaskTable,
        CountUploadTaskTable),
};
// clang-format on

struct Gallery : StoreTest {
    Gallery() { InitGalleryDatabase(L"gallery.dat"); }

    GalleryFileTable find(std::string uniqueId) { return GetGalleryFileOneData(uniqueId); }

    SqliteFile m_file{path(L"gallery.dat")};
};

} // namespace

TEST_F(Gallery, EachTableHoldsItsRecord)
{
    std::string order;
    for (const auto& [name, kinds, kindsOfMembers, tells, columns, row, insert, count] : tables) {
        SCOPED_TRACE(name);
        order += (order.empty() ? "'" : ",") + name;
        EXPECT_EQ(std::string(kindsOfMembers.begin(), kindsOfMembers.end()), kinds);
        const std::string key = tells ? columns[0] : "Id";
        Rows expected;
        for (const std::string& column : columns) {
            const char* const type = kinds[expected.size()] == 'T' ? "'TEXT'" : "'INTEGER'";
            expected.push_back({textCell(column), type, "1", "NULL", column == key ? "1" : "0"});
        }
        EXPECT_EQ(schemaOf(m_file, name), expected);
        EXPECT_EQ(count(), 0);
        EXPECT_TRUE(insert());
        EXPECT_EQ(m_file.query("SELECT * FROM " + name), Rows{row});

        // A record of the same key replaces the whole row, and one of another stands beside it.
        m_file.exec("UPDATE " + name + " SET " + columns[1] + " = '?'");
        EXPECT_TRUE(insert());
        EXPECT_EQ(m_file.query("SELECT * FROM " + name), Rows{row});
        m_file.exec("UPDATE " + name + " SET " + key + " = 7");
        EXPECT_TRUE(insert());
        EXPECT_EQ(count(), 2);
    }
    EXPECT_EQ(m_file.value("SELECT group_concat(name) FROM sqlite_master WHERE type = 'table'"), order + '\'');
}

TEST_F(Gallery, AFileIsFoundByItsUniqueId)
{
    std::vector<G> records{pictures.filled(1)};
    EXPECT_TRUE(InsertGalleryFileTable(records));
    EXPECT_EQ(pictures.cells(find(records[0].UniqueId)), pictures.cells(records[0]));
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
        EXPECT_EQ(table.insert(), !table.tells);
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
