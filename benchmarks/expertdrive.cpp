#include "expertdrive.h"

#include "databaseservice/tables/drivecolumns.h"
#include "expertcells.h"

#include <cstdint>
#include <tuple>

namespace benchmarks {

using DatabaseService::DriveDataTable;

namespace {

// The record's members are private, and its accessors copy. An explicit instantiation may name private members, which
// gives the expert what he would have in a program of his own: a record that he can fill and bind in place.
template <class Tag, auto... Members> struct Expose {
    friend constexpr auto membersOf(Tag) { return std::make_tuple(Members...); }
};

struct AllMembers {
    friend constexpr auto membersOf(AllMembers);
};

struct MarkerMembers {
    friend constexpr auto membersOf(MarkerMembers);
};

using D = DriveDataTable;

// In the order of `allColumns`.
template struct Expose<
    AllMembers, &D::m_fileId, &D::m_name, &D::m_kind, &D::m_mimeType, &D::m_description, &D::m_size,
    &D::m_attachmentSize, &D::m_hash, &D::m_contentVersion, &D::m_parentId, &D::m_favorite, &D::m_recycled,
    &D::m_directlyRecycled, &D::m_createdTime, &D::m_modifiedTime, &D::m_recycledTime, &D::m_isSync,
    &D::m_thumbnailDownloadLink, &D::m_LCDImageDownloadLink, &D::m_version, &D::m_batchOper, &D::m_localAbsolutePath,
    &D::m_localFileSha256, &D::m_deleteSrcPath, &D::m_uploadTime, &D::m_renameName, &D::m_renameTime,
    &D::m_moveParentId, &D::m_moveTime, &D::m_softDelete, &D::m_softDeleteSrcPath, &D::m_softDelTime, &D::m_hardDelete,
    &D::m_hardDelTime, &D::m_localRestore, &D::m_restoreTime, &D::m_uploadBatchId, &D::m_renameBatchId,
    &D::m_moveBatchId, &D::m_softDelBatchId, &D::m_hardDelBatchId, &D::m_restoreBatchId, &D::m_newBatchId,
    &D::m_autoUpload, &D::m_riskFileSign, &D::m_riskFileType, &D::m_fileExtSign, &D::m_cloudContentStatus,
    &D::m_classIndex, &D::m_data1, &D::m_data2, &D::m_data3, &D::m_data4>;

using Columns = DatabaseService::DriveDataColumns;

constexpr auto allColumns = pick(Columns::table, Columns::All);

// In the order of `markerColumns`, and last the key.
template struct Expose<MarkerMembers, &D::m_renameName, &D::m_renameTime, &D::m_renameBatchId, &D::m_moveParentId,
                       &D::m_moveTime, &D::m_moveBatchId, &D::m_softDelete, &D::m_softDeleteSrcPath, &D::m_softDelTime,
                       &D::m_softDelBatchId, &D::m_hardDelete, &D::m_hardDelTime, &D::m_hardDelBatchId,
                       &D::m_localRestore, &D::m_restoreTime, &D::m_uploadTime, &D::m_uploadBatchId, &D::m_newBatchId,
                       &D::m_restoreBatchId, &D::m_fileId>;

constexpr auto markerColumns = pick(Columns::table, "renameName", "renameTime", "renameBatchId", "moveParentId",
                                    "moveTime", "moveBatchId", "softDelete", "softDeleteSrcPath", "softDelTime",
                                    "softDelBatchId", "hardDelete", "hardDelTime", "hardDelBatchId", "localRestore",
                                    "restoreTime", "uploadTime", "uploadBatchId", "newBatchId", "restoreBatchId");

constexpr auto allMembers = membersOf(AllMembers{});
constexpr auto markerMembers = membersOf(MarkerMembers{});

template <class Record, class... Pointers> auto tied(Record& record, const std::tuple<Pointers...>& members)
{
    return std::apply([&record](auto... each) { return std::tie(record.*each...); }, members);
}

} // namespace

template <> struct Members<DriveDataTable> {
    static auto of(auto& record) { return tied(record, allMembers); }
};

ExpertDrive::ExpertDrive(ExpertConnection::Kind connection) : m_connection(connection, addNameCompare)
{
    // A lookup by id does not select the id.
    constexpr auto columnsWithoutKey = pick(Columns::table, Columns::All & ~Columns::Key);
    m_texts[Insert] = insertStatement("INSERT INTO DriveDataTable (", allColumns).sql;
    m_texts[ReadAll] = selectText(allColumns, "FROM DriveDataTable;");
    m_texts[Children] = selectText(allColumns, "FROM DriveDataTable WHERE parentId = :parentId;");
    m_texts[ById] = selectText(columnsWithoutKey, "FROM DriveDataTable WHERE fileId = :fileId ;");
    m_texts[UpdateMarkers] =
        updateStatement("UPDATE DriveDataTable", markerColumns, "WHERE fileId = :fileId", Columns::key).sql;
}

void ExpertDrive::open(const std::filesystem::path& folder)
{
    m_connection.open(folder / "DriveModuleData.dat");
}

void ExpertDrive::close()
{
    m_connection.close();
}

void ExpertDrive::readRows(sqlite3_stmt* stmt, DriveRecords& records)
{
    m_connection.forEachRow(stmt,
                            [&](sqlite3_stmt* row) { benchmarks::readAll(row, membersOf(records.emplace_back())); });
}

void ExpertDrive::insert(const DriveRecords& records)
{
    m_connection.transaction("BEGIN IMMEDIATE;", m_texts[Insert], [&](sqlite3_stmt* stmt) {
        m_connection.runForEach(stmt, records, [](sqlite3_stmt* one, const DriveDataTable& record) {
            return bindAll(one, membersOf(record));
        });
    });
}

DriveRecords ExpertDrive::readAll()
{
    DriveRecords records;
    m_connection.transaction("BEGIN DEFERRED", m_texts[ReadAll], [&](sqlite3_stmt* stmt) { readRows(stmt, records); });
    return records;
}

DriveRecords ExpertDrive::children(const std::string& parentId)
{
    DriveRecords records;
    m_connection.transaction("BEGIN DEFERRED", m_texts[Children], [&](sqlite3_stmt* stmt) {
        m_connection.require(bindCell(stmt, 1, parentId));
        readRows(stmt, records);
    });
    return records;
}

DriveDataTable ExpertDrive::byId(const std::string& fileId)
{
    DriveDataTable record;
    m_connection.transaction("BEGIN DEFERRED", m_texts[ById], [&](sqlite3_stmt* stmt) {
        m_connection.require(bindCell(stmt, 1, fileId));
        m_connection.forEachRow(stmt, [&](sqlite3_stmt* row) {
            record.SetFileid(fileId);
            benchmarks::readAll(row, withoutFirst(membersOf(record)));
        });
    });
    return record;
}

void ExpertDrive::select(const std::string& sql, DriveRecords& records)
{
    m_connection.once(sql, [&](sqlite3_stmt* stmt) { readRows(stmt, records); });
}

std::int64_t ExpertDrive::count(const std::string& sql)
{
    std::int64_t rows = 0;
    m_connection.once(sql, [&](sqlite3_stmt* stmt) {
        m_connection.forEachRow(stmt, [&](sqlite3_stmt* standing) { rows = sqlite3_column_int64(standing, 0); });
    });
    return rows;
}

void ExpertDrive::updateMarkers(const DriveRecords& records)
{
    m_connection.transaction("BEGIN IMMEDIATE;", m_texts[UpdateMarkers], [&](sqlite3_stmt* stmt) {
        m_connection.runForEach(stmt, records, [](sqlite3_stmt* one, const DriveDataTable& record) {
            return bindAll(one, tied(record, markerMembers));
        });
    });
}

} // namespace benchmarks
