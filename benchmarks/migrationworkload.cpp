#include "migrationworkload.h"

#include "clientservices/globalparamwrapper.h"
#include "databaseservice/databaseservice.h"
#include "databaseservice/gallerydbprovider.h"
#include "databaseservice/legacyrecords.h"
#include "databaseservice/tables/gallerycolumns.h"
#include "databaseservice/tables/legacycolumns.h"
#include "databaseservice/v10.h"
#include "expertcells.h"
#include "migration/legacymigration.h"
#include "storetables.h"

#include <fmt/format.h>
#include <stdexcept>
#include <utility>

namespace benchmarks {

using namespace DatabaseService;

template <> struct Members<V10::GalleryFile> {
    static auto of(auto& r)
    {
        return std::tie(r.UniqueId, r.FileId, r.VideoThumbId, r.Hash, r.CreateTime, r.FirstUpdateTime, r.ThumbFileId,
                        r.LcdFileId, r.Size, r.RecycleAlbumId, r.RecycleTime, r.Guid, r.Expand, r.GalleryState,
                        r.IsLocalUpload, r.LocalUploadTime, r.OriginalAlbumId, r.ServerAlbumId, r.Offset, r.LocalPath,
                        r.OperateTime, r.CoverUniqueId, r.ContinuousType, r.ContinuousName, r.IsDeleted, r.FileName,
                        r.AlbumId, r.IsFavorite, r.SavedFileType, r.CheckSumn, r.Sdsmtime, r.VideoDownloadLocalPath,
                        r.PictureMetadata, r.VideoMetadata);
    }
};

namespace {

constexpr const wchar_t* galleryName = L"gallery.dat";

constexpr auto legacyColumns = pick(V10::GalleryFileColumns::table, V10::GalleryFileColumns::All);

const std::string selectLegacy = selectText(legacyColumns, "FROM GalleryFile;");

// In the order of today's columns.
const std::string selectForCopy =
    "SELECT UniqueId,FileId,VideoThumbId,Hash,CreateTime,FirstUpdateTime,ThumbFileId,LcdFileId,Size,RecycleAlbumId,"
    "RecycleTime,Guid,Expand,GalleryState,IsLocalUpload,[Offset],LocalPath,CAST(OperateTime AS TEXT),0,ContinuousType,"
    "ContinuousName,IsDeleted,FileName,AlbumId,IsFavorite,SavedFileType,CheckSumn,Sdsmtime,PictureMetadata,"
    "VideoMetadata FROM GalleryFile;";

const std::string insertGallery =
    insertStatement("INSERT OR REPLACE INTO GalleryFile (", pick(GalleryFileColumns::table, GalleryFileColumns::All))
        .sql;

GalleryFileTable converted(V10::GalleryFile&& old)
{
    GalleryFileTable file;
    file.UniqueId = std::move(old.UniqueId);
    file.FileId = std::move(old.FileId);
    file.VideoThumbId = std::move(old.VideoThumbId);
    file.Hash = std::move(old.Hash);
    file.CreateTime = old.CreateTime;
    file.FirstUpdateTime = old.FirstUpdateTime;
    file.ThumbFileId = std::move(old.ThumbFileId);
    file.LcdFileId = std::move(old.LcdFileId);
    file.Size = old.Size;
    file.RecycleAlbumId = std::move(old.RecycleAlbumId);
    file.RecycleTime = old.RecycleTime;
    file.Guid = std::move(old.Guid);
    file.Expand = std::move(old.Expand);
    file.GalleryState = old.GalleryState;
    file.IsLocalUpload = old.IsLocalUpload;
    file.Offset = old.Offset;
    file.LocalPath = std::move(old.LocalPath);
    file.OperateTime = std::to_string(old.OperateTime);
    file.ContinuousType = old.ContinuousType;
    file.ContinuousName = std::move(old.ContinuousName);
    file.IsDeleted = old.IsDeleted;
    file.FileName = std::move(old.FileName);
    file.AlbumId = std::move(old.AlbumId);
    file.IsFavorite = old.IsFavorite;
    file.SavedFileType = old.SavedFileType;
    file.CheckSumn = std::move(old.CheckSumn);
    file.Sdsmtime = std::move(old.Sdsmtime);
    file.PictureMetadata = std::move(old.PictureMetadata);
    file.VideoMetadata = std::move(old.VideoMetadata);
    return file;
}

} // namespace

MigrationWorkload::MigrationWorkload(std::size_t rows, const std::filesystem::path& folder)
    : m_rows(rows),
      m_legacyFile(folder / "legacy.dat"),
      m_folder(folder / "migrated")
{
}

std::vector<Operation> MigrationWorkload::operations()
{
    const auto contender = [this](const char* name, void (MigrationWorkload::*run)()) {
        return Contender{name, [this] { openStores(); }, [this, run] { (this->*run)(); },
                         [this] { return checkRows(); }};
    };
    return {
        {"migrate",
         fmt::format("migration of {} gallery files", m_rows),
         1.00,
         {contender("library", &MigrationWorkload::migrate), contender("expert", &MigrationWorkload::readConvertInsert),
          contender("copy row by row", &MigrationWorkload::copyRowByRow)},
         {}}};
}

// The same rows as those of the gallery's own workload.
void MigrationWorkload::writeLegacyFile()
{
    std::vector<V10::GalleryFile> files;
    for (const GalleryFileTable& file : galleryFiles(m_rows).records) {
        V10::GalleryFile& old = files.emplace_back();
        old.UniqueId = file.UniqueId;
        old.FileId = file.FileId;
        old.Hash = file.Hash;
        old.CreateTime = file.CreateTime;
        old.FirstUpdateTime = file.FirstUpdateTime;
        old.ThumbFileId = file.ThumbFileId;
        old.LcdFileId = file.LcdFileId;
        old.Size = file.Size;
        old.Guid = file.Guid;
        old.GalleryState = file.GalleryState;
        old.LocalPath = file.LocalPath;
        old.OperateTime = file.CreateTime;
        old.FileName = file.FileName;
        old.AlbumId = file.AlbumId;
        old.CheckSumn = file.CheckSumn;
        old.Sdsmtime = file.Sdsmtime;
        old.PictureMetadata = file.PictureMetadata;
    }
    const std::string create = createTable("CREATE TABLE GalleryFile (", V10::GalleryFileColumns::table);
    m_legacy.transaction("BEGIN IMMEDIATE;", create,
                         [&](sqlite3_stmt* stmt) { m_legacy.require(sqlite3_step(stmt) == SQLITE_DONE); });
    const std::string insert = insertStatement("INSERT INTO GalleryFile (", legacyColumns).sql;
    m_legacy.transaction("BEGIN IMMEDIATE;", insert, [&](sqlite3_stmt* stmt) {
        m_legacy.runForEach(
            stmt, files, [](sqlite3_stmt* one, const V10::GalleryFile& file) { return bindAll(one, membersOf(file)); });
    });
    V10::InitDB(m_legacyFile.wstring()); // the other tables
}

// New stores beside the one legacy file.
void MigrationWorkload::openStores()
{
    m_legacy.open(m_legacyFile);
    if (!std::filesystem::exists(m_legacyFile)) {
        writeLegacyFile();
    }
    std::filesystem::remove_all(m_folder);
    std::filesystem::create_directory(m_folder);
    GlobalParamWrapper::GetInstance()->SetUserDataBaseFolder(m_folder.generic_wstring());
    InitDataBase(m_folder.generic_wstring(), galleryName);
    m_gallery.open(m_folder / galleryName);
}

void MigrationWorkload::migrate()
{
    migration::Plan plan;
    plan.legacyFile = m_legacyFile;
    plan.mainFile = m_folder / "main.dat";
    plan.galleryFile = m_folder / galleryName;
    const migration::Report report = migration::run(plan);
    if (!report.isWhole()) {
        throw std::runtime_error("the migration lost rows");
    }
}

void MigrationWorkload::readConvertInsert()
{
    std::vector<V10::GalleryFile> old;
    m_legacy.transaction("BEGIN DEFERRED", selectLegacy, [&](sqlite3_stmt* stmt) {
        m_legacy.forEachRow(stmt, [&](sqlite3_stmt* row) { readAll(row, membersOf(old.emplace_back())); });
    });
    std::vector<GalleryFileTable> files;
    files.reserve(old.size());
    for (V10::GalleryFile& file : old) {
        files.push_back(converted(std::move(file)));
    }
    m_gallery.transaction("BEGIN IMMEDIATE;", insertGallery, [&](sqlite3_stmt* stmt) {
        m_gallery.runForEach(
            stmt, files, [](sqlite3_stmt* one, const GalleryFileTable& file) { return bindAll(one, membersOf(file)); });
    });
}

void MigrationWorkload::copyRowByRow()
{
    m_gallery.transaction("BEGIN IMMEDIATE;", insertGallery, [&](sqlite3_stmt* insert) {
        m_legacy.transaction("BEGIN DEFERRED", selectForCopy, [&](sqlite3_stmt* select) {
            m_legacy.forEachRow(select, [&](sqlite3_stmt* row) {
                m_gallery.check(sqlite3_reset(insert));
                for (int column = 0; column < sqlite3_column_count(row); ++column) {
                    m_gallery.check(sqlite3_bind_value(insert, column + 1, sqlite3_column_value(row, column)));
                }
                m_gallery.require(sqlite3_step(insert) == SQLITE_DONE);
            });
        });
    });
}

// Sums over what came over, beside the same sums over the legacy file.
std::size_t MigrationWorkload::checkRows()
{
    static const std::string sums =
        "SELECT COUNT(*), SUM(Size), SUM(CreateTime), SUM(OperateTime), SUM(LENGTH(PictureMetadata)), "
        "SUM(LENGTH(LocalPath)), SUM(GalleryState), MAX(Hash), MIN(UniqueId) FROM GalleryFile;";
    const auto read = [](ExpertConnection& store) {
        std::vector<std::string> values;
        store.transaction("BEGIN DEFERRED", sums, [&](sqlite3_stmt* stmt) {
            store.forEachRow(stmt, [&](sqlite3_stmt* row) {
                for (int column = 0; column < sqlite3_column_count(row); ++column) {
                    readCell(row, column, values.emplace_back());
                }
            });
        });
        return values;
    };
    const std::vector<std::string> values = read(m_gallery);
    if (values != read(m_legacy) || values.front() != std::to_string(m_rows)) {
        throw std::runtime_error("the rows in the gallery are not those of the legacy file");
    }
    return m_rows;
}

} // namespace benchmarks
