#include "gallery/galleryimport.h"

#include "databaseservice/gallerydbprovider.h"
#include "drive/fileclass.h"
#include "platform/paths.h"
#include "scan/digest.h"
#include "stores/rowwalk.h"
#include "stores/session.h"
#include "terminal/displaytext.h"
#include "terminal/failure.h"

#include <algorithm>
#include <sqlite3.h>
#include <utility>

namespace dbservice {

using DatabaseService::AlbumTable;
using DatabaseService::GalleryFileTable;
namespace gallery = DatabaseService::GalleryDBProvider;

namespace {

constexpr std::size_t filesPerBatch = 4000;

/// The path of a folder below the source as an album has it, "/" for the source itself.
std::string albumPath(const NativeText& path)
{
    return '/' + platform::toUtf8(std::filesystem::path(path));
}

/// What tells that a file is as it was, without a look at what is in it.
Digest versionOf(std::int64_t size, std::string_view version)
{
    return digestOf(std::to_string(size) + ' ' + std::string(version));
}

} // namespace

bool GalleryImport::wants(platform::FileKind kind, DatabaseService::ClientConstants::ExtensionGroup group)
{
    const FileClass number = classOf(group);
    return kind == platform::FileKind::Regular && (number == FileClass::Picture || number == FileClass::Video);
}

GalleryImport::GalleryImport(Session& session, const std::filesystem::path& file, SourceFolder& source)
    : m_session(session),
      m_file(file),
      m_store(file),
      m_source(source)
{
}

void GalleryImport::run()
{
    readStored();
    const DiskEntry self = m_source.self();
    m_waiting.push_back({{}, self.shownName, self.status.createdNanoseconds, 1});
    while (!m_waiting.empty()) {
        const Folder folder = std::move(m_waiting.back());
        m_waiting.pop_back();
        import(folder);
    }
    write();
    m_session.reporter().endProgress();
}

void GalleryImport::readStored()
{
    RowWalk rows(m_file);
    rows.run("SELECT UniqueId, Size, Sdsmtime FROM GalleryFile NOT INDEXED", [this](sqlite3_stmt* row) {
        m_storedFiles.emplace_back(digestOf(textAt(row, 0)), versionOf(sqlite3_column_int64(row, 1), textAt(row, 2)));
    });
    std::sort(m_storedFiles.begin(), m_storedFiles.end());
    rows.run("SELECT AlbumId FROM Album", [this](sqlite3_stmt* row) { m_storedAlbums.emplace(textAt(row, 0)); });
    m_session.stopIfFailed("read the gallery");
}

void GalleryImport::import(const Folder& folder)
{
    const std::optional<std::vector<DiskEntry>> entries = m_source.list(folder.path);
    if (!entries) {
        m_done += folder.share;
        return;
    }
    const double share = folder.share / static_cast<double>(std::max<std::size_t>(1, entries->size()));
    const std::string albumId = idOf(m_source.absolute(folder.path).native());
    bool isAlbum = false;
    for (const DiskEntry& entry : *entries) {
        if (entry.isFolder()) {
            const NativeText path = folder.path.empty() ? entry.name : folder.path + NativeText(1, '/') + entry.name;
            m_waiting.push_back({path, entry.shownName, entry.status.createdNanoseconds, share});
            continue;
        }
        isAlbum = (entry.examined && importFile(folder, albumId, entry)) || isAlbum;
        m_done += share;
        m_session.reporter().progress(
            m_done, counted(m_counts.files, "file", "files") + ", " + humanSize(m_counts.bytes) + " read");
    }
    if (entries->empty()) {
        m_done += share;
    }
    if (!isAlbum) {
        return;
    }
    ++m_counts.albums;
    if (!m_storedAlbums.contains(albumId)) {
        AlbumTable& album = m_albums.emplace_back();
        album.AlbumId = albumId;
        album.AlbumName = folder.name;
        album.CreateTime = wholeSeconds(folder.created);
        album.Lpath = albumPath(folder.path);
    }
}

/// Puts the file's row into the batch, unless the store has it. Whether the file could be read.
bool GalleryImport::importFile(const Folder& folder, const std::string& albumId, const DiskEntry& entry)
{
    const std::filesystem::path path = m_source.absolute(folder.path) / entry.name;
    std::string id = idOf(path.native());
    // In nanoseconds, so that a change within one second is seen.
    const std::string version = std::to_string(entry.status.modifiedNanoseconds);
    const Digest key = digestOf(id);
    const auto stored = std::lower_bound(m_storedFiles.begin(), m_storedFiles.end(), std::pair(key, Digest{}));
    const bool isStored = stored != m_storedFiles.end() && stored->first == key;
    if (isStored && stored->second == versionOf(entry.status.size, version)) {
        ++m_counts.files;
        ++m_counts.unchanged;
        return true;
    }
    const std::optional<std::string> hash = contentHash(path);
    std::error_code error;
    const platform::FileStatus after = platform::readStatus(path, error);
    if (!hash || error) {
        m_source.warnLost(path, "cannot be read");
        return false;
    }
    if (after.size != entry.status.size || after.modifiedNanoseconds != entry.status.modifiedNanoseconds) {
        m_source.warnLost(path, "changed while it was read");
        return false;
    }
    ++m_counts.files;
    m_counts.bytes += entry.status.size;
    GalleryFileTable row;
    if (isStored) {
        row = gallery::GetGalleryFileOneData(id);
    }
    row.UniqueId = id;
    row.Hash = *hash;
    row.CreateTime = wholeSeconds(entry.status.createdNanoseconds);
    row.FirstUpdateTime = wholeSeconds(entry.status.modifiedNanoseconds);
    row.Size = entry.status.size;
    row.LocalPath = platform::toUtf8(path);
    row.FileName = entry.shownName;
    row.AlbumId = albumId;
    row.Sdsmtime = version;
    m_files.push_back(std::move(row));
    if (m_files.size() == filesPerBatch) {
        write();
    }
    return true;
}

void GalleryImport::write()
{
    // Ids and hashes are hexadecimal digits.
    std::string albumIds;
    for (const AlbumTable& album : m_albums) {
        albumIds += (albumIds.empty() ? "('" : ",('") + album.AlbumId + "')";
    }
    if (!m_albums.empty()) {
        gallery::InsertAlbumTable(m_albums);
        const int landed =
            m_store.number("SELECT COUNT(*) FROM (VALUES " + albumIds + ") CROSS JOIN Album ON AlbumId = column1");
        m_counts.failedAlbums += static_cast<std::int64_t>(m_albums.size()) - landed;
        m_albums.clear();
    }
    // In the order of the keys each page of their index is touched once.
    std::sort(m_files.begin(), m_files.end(), [](const GalleryFileTable& left, const GalleryFileTable& right) {
        return left.UniqueId < right.UniqueId;
    });
    std::string hashes;
    for (const GalleryFileTable& file : m_files) {
        hashes += (hashes.empty() ? "('" : ",('") + file.UniqueId + "','" + file.Hash + "')";
    }
    if (!m_files.empty()) {
        gallery::InsertGalleryFileTable(m_files);
        const int landed = m_store.number("SELECT COUNT(*) FROM (VALUES " + hashes +
                                          ") CROSS JOIN GalleryFile ON UniqueId = column1 AND Hash = column2");
        const auto files = static_cast<std::int64_t>(m_files.size());
        m_counts.written += landed;
        m_counts.failed += files - landed;
        m_files.clear();
        if (landed == 0) {
            throw Failure("cannot import: of " + counted(files, "file", "files") + " none is in the store afterwards");
        }
    }
}

} // namespace dbservice
