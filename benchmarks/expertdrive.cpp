#include "expertdrive.h"

#include "expertcells.h"
#include "platform/paths.h"

#include <algorithm>
#include <cstdint>
#include <fmt/format.h>
#include <string_view>
#include <tuple>
#include <utility>

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

constexpr std::string_view allColumns =
    "fileId,name,kind,mimeType,description,size,attachmentSize,hash,contentVersion,parentId,favorite,"
    "recycled,directlyRecycled,createdTime,modifiedTime,recycledTime,isSync,thumbnailDownloadLink,"
    "LCDImageDownloadLink,version,batchOper,localAbsolutePath,localFileSha256,deleteSrcPath,uploadTime,"
    "renameName,renameTime,moveParentId,moveTime,softDelete,softDeleteSrcPath,softDelTime,hardDelete,"
    "hardDelTime,localRestore,restoreTime,uploadBatchId,renameBatchId,moveBatchId,softDelBatchId,"
    "hardDelBatchId,restoreBatchId,newBatchId,autoUpload,riskFileSign,riskFileType,fileExtSign,needToDisplay,"
    "classIndex,data1,data2,data3,data4";

// In the order of `markerColumns`, and last the key.
template struct Expose<MarkerMembers, &D::m_renameName, &D::m_renameTime, &D::m_renameBatchId, &D::m_moveParentId,
                       &D::m_moveTime, &D::m_moveBatchId, &D::m_softDelete, &D::m_softDeleteSrcPath, &D::m_softDelTime,
                       &D::m_softDelBatchId, &D::m_hardDelete, &D::m_hardDelTime, &D::m_hardDelBatchId,
                       &D::m_localRestore, &D::m_restoreTime, &D::m_uploadTime, &D::m_uploadBatchId, &D::m_newBatchId,
                       &D::m_restoreBatchId, &D::m_fileId>;

constexpr std::string_view markerColumns =
    "renameName,renameTime,renameBatchId,moveParentId,moveTime,moveBatchId,softDelete,softDeleteSrcPath,"
    "softDelTime,softDelBatchId,hardDelete,hardDelTime,hardDelBatchId,localRestore,restoreTime,uploadTime,"
    "uploadBatchId,newBatchId,restoreBatchId";

constexpr auto allMembers = membersOf(AllMembers{});
constexpr auto markerMembers = membersOf(MarkerMembers{});
constexpr std::size_t allCount = std::tuple_size_v<decltype(allMembers)>;

// A lookup by id does not select the id.
constexpr std::size_t firstById = 1;

// The list with each column written as `format` says.
std::string each(std::string_view columns, fmt::string_view format)
{
    std::string text;
    while (!columns.empty()) {
        const std::string_view column = columns.substr(0, columns.find(','));
        columns.remove_prefix(std::min(columns.size(), column.size() + 1));
        text += text.empty() ? "" : ",";
        text += fmt::vformat(format, fmt::make_format_args(column));
    }
    return text;
}

template <class Members, std::size_t... I>
bool bindMembers(sqlite3_stmt* stmt, const DriveDataTable& record, const Members& members, std::index_sequence<I...>)
{
    return (bindCell(stmt, static_cast<int>(I) + 1, record.*std::get<I>(members)) && ...);
}

template <class Members> bool bindMembers(sqlite3_stmt* stmt, const DriveDataTable& record, const Members& members)
{
    return bindMembers(stmt, record, members, std::make_index_sequence<std::tuple_size_v<Members>>());
}

// The statement selects all columns from the one numbered `First` on.
template <std::size_t First, std::size_t... I>
void readMembers(sqlite3_stmt* stmt, DriveDataTable& record, std::index_sequence<I...>)
{
    (readCell(stmt, static_cast<int>(I), record.*std::get<First + I>(allMembers)), ...);
}

} // namespace

ExpertDrive::ExpertDrive(ExpertConnection::Kind connection) : m_connection(connection, addNameCompare)
{
    const std::string select = fmt::format("SELECT {} FROM DriveDataTable", allColumns);
    m_texts[Insert] = fmt::format("INSERT INTO DriveDataTable ({}) VALUES ({});", allColumns, each(allColumns, ":{}"));
    m_texts[ReadAll] = select + ";";
    m_texts[Children] = select + " WHERE parentId = :parentId;";
    m_texts[ById] = fmt::format("SELECT {} FROM DriveDataTable WHERE fileId = :fileId ;",
                                allColumns.substr(allColumns.find(',') + 1));
    m_texts[UpdateMarkers] =
        fmt::format("UPDATE DriveDataTable SET {} WHERE fileId = :fileId", each(markerColumns, "{0} = :{0}"));
}

void ExpertDrive::open(const std::filesystem::path& folder)
{
    m_connection.open(folder / "DriveModuleData.dat");
}

void ExpertDrive::close()
{
    m_connection.close();
}

template <std::size_t FirstColumn, class Row> void ExpertDrive::forEachRow(sqlite3_stmt* stmt, Row row)
{
    m_connection.forEachRow(stmt, [&](sqlite3_stmt* standing) {
        readMembers<FirstColumn>(standing, row(), std::make_index_sequence<allCount - FirstColumn>());
    });
}

void ExpertDrive::insert(const DriveRecords& records)
{
    m_connection.transaction("BEGIN IMMEDIATE;", m_texts[Insert], [&](sqlite3_stmt* stmt) {
        m_connection.runForEach(stmt, records, [](sqlite3_stmt* one, const DriveDataTable& record) {
            return bindMembers(one, record, allMembers);
        });
    });
}

DriveRecords ExpertDrive::readAll()
{
    DriveRecords records;
    m_connection.transaction("BEGIN DEFERRED", m_texts[ReadAll], [&](sqlite3_stmt* stmt) {
        forEachRow<0>(stmt, [&]() -> DriveDataTable& { return records.emplace_back(); });
    });
    return records;
}

DriveRecords ExpertDrive::children(const std::string& parentId)
{
    DriveRecords records;
    m_connection.transaction("BEGIN DEFERRED", m_texts[Children], [&](sqlite3_stmt* stmt) {
        m_connection.require(bindCell(stmt, 1, parentId));
        forEachRow<0>(stmt, [&]() -> DriveDataTable& { return records.emplace_back(); });
    });
    return records;
}

DriveDataTable ExpertDrive::byId(const std::string& fileId)
{
    DriveDataTable record;
    m_connection.transaction("BEGIN DEFERRED", m_texts[ById], [&](sqlite3_stmt* stmt) {
        m_connection.require(bindCell(stmt, 1, fileId));
        forEachRow<firstById>(stmt, [&]() -> DriveDataTable& {
            record.SetFileid(fileId);
            return record;
        });
    });
    return record;
}

void ExpertDrive::select(const std::string& sql, DriveRecords& records)
{
    m_connection.once(sql, [&](sqlite3_stmt* stmt) {
        forEachRow<0>(stmt, [&]() -> DriveDataTable& { return records.emplace_back(); });
    });
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
            return bindMembers(one, record, markerMembers);
        });
    });
}

} // namespace benchmarks
