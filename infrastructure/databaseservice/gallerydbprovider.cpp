#include "databaseservice/gallerydbprovider.h"

#include "databaseservice/databaseoperationbase.h"
#include "databaseservice/engine/firstcell.h"
#include "databaseservice/engine/recordio.h"
#include "databaseservice/tables/gallerycolumns.h"

#include <utility>

namespace DatabaseService::GalleryDBProvider {

class GalleryDBProvider : public DatabaseOperationBase {
public:
    bool InitDatabase() override { return true; }
};

namespace {

GalleryDBProvider& galleryProvider()
{
    static auto& s_galleryProvider = neverDestroyed(GalleryDBProvider());
    return s_galleryProvider;
}

template <class Table> constexpr auto columnsOf = pick(Table::table, Table::All);

template <class Table> void create()
{
    run(galleryProvider(),
        {.sql = createTable("CREATE TABLE IF NOT EXISTS " + std::string(Table::name) + " (", Table::table)});
}

template <class Table> void drop()
{
    run(galleryProvider(), {.sql = "drop table if exists " + std::string(Table::name)});
}

template <class Table, class Record> bool insert(const std::vector<Record>& records)
{
    static const auto& statement =
        neverDestroyed(insertStatement("INSERT OR REPLACE INTO " + std::string(Table::name) + " (", columnsOf<Table>));
    return writeRecords(galleryProvider(), statement, records);
}

template <class Table> int count()
{
    return static_cast<int>(readNumber(galleryProvider(), "SELECT COUNT(*) FROM " + std::string(Table::name)));
}

template <class... Tables> struct TableList {
    static void createAll() { (create<Tables>(), ...); }
    static void dropAll() { (drop<Tables>(), ...); }
};

using AllTables = TableList<AlbumColumns, AlbumLocalVersionColumns, GalleryFileColumns, DownloadTaskColumns,
                            TransferCompleteCloudTaskColumns, UploadTaskColumns>;

} // namespace

void InitGalleryDatabase(std::wstring name)
{
    galleryProvider().SetDatabasePath(name);
    AllTables::createAll();
}

void ResetGalleryDatabase(std::wstring name)
{
    galleryProvider().SetDatabasePath(name);
    AllTables::dropAll();
}

bool InsertGalleryFileTable(std::vector<GalleryFileTable>& records)
{
    return insert<GalleryFileColumns>(records);
}

bool InsertAlbumVersionTable(std::vector<AlbumVersionTable>& records)
{
    return insert<AlbumLocalVersionColumns>(records);
}

bool InsertAlbumTable(std::vector<AlbumTable>& records)
{
    return insert<AlbumColumns>(records);
}

void InsertDownloadTaskTable(std::vector<DownloadTaskTable>& records)
{
    insert<DownloadTaskColumns>(records);
}

void InsertTransferCompleteCloudTaskTable(std::vector<TransferCompleteCloudTaskTable>& records)
{
    insert<TransferCompleteCloudTaskColumns>(records);
}

void InsertUploadTaskTable(std::vector<UploadTaskTable>& records)
{
    insert<UploadTaskColumns>(records);
}

int CountAlbumTable()
{
    return count<AlbumColumns>();
}

int CountAlbumVersionTable()
{
    return count<AlbumLocalVersionColumns>();
}

int CountGalleryFileTable()
{
    return count<GalleryFileColumns>();
}

int CountDownloadTaskTable()
{
    return count<DownloadTaskColumns>();
}

int CountTransferCompleteCloudTaskTable()
{
    return count<TransferCompleteCloudTaskColumns>();
}

int CountUploadTaskTable()
{
    return count<UploadTaskColumns>();
}

GalleryFileTable GetGalleryFileOneData(std::string& uniqueId)
{
    static const auto& select = neverDestroyed(statementOf<std::string>(
        selectText(columnsOf<GalleryFileColumns>, "FROM GalleryFile WHERE UniqueId = :UniqueId;"), ":UniqueId"));
    std::vector<GalleryFileTable> rows;
    auto key = oneValue(select, uniqueId);
    readRecords(galleryProvider(), select.sql, &key, columnsOf<GalleryFileColumns>, rows);
    return rows.empty() ? GalleryFileTable() : std::move(rows.front());
}

} // namespace DatabaseService::GalleryDBProvider
