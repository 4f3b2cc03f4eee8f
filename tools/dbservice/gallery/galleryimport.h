#pragma once

#include "databaseservice/gallerytables.h"
#include "scan/digest.h"
#include "scan/sourcefolder.h"
#include "stores/storefile.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

namespace dbservice {

class Session;

/// Makes the pictures and videos of a real folder rows of the gallery store that the library has open, with an album
/// for each folder that holds any.
///
/// Files are written in batches; what has not changed since the last import is neither read nor written. After each
/// batch the store is asked which rows landed, since its writers are silent about the others. A file's row that was
/// there keeps what an import knows nothing of, and an album stays as it is. Rows whose file is gone stay: the store
/// offers no way to remove them.
class GalleryImport {
public:
    struct Counts {
        std::int64_t files = 0; ///< pictures and videos found, those that are lost left out
        std::int64_t bytes = 0; ///< read from them
        std::int64_t written = 0;
        std::int64_t unchanged = 0;
        std::int64_t failed = 0; ///< rows of files that are not in the store as they should be
        std::int64_t albums = 0; ///< found
        std::int64_t failedAlbums = 0;
    };

    /// Whether an entry of the source is of interest.
    static bool wants(platform::FileKind kind, DatabaseService::ClientConstants::ExtensionGroup group);

    /// `file` is the name of the store's file.
    GalleryImport(Session& session, const std::filesystem::path& file, SourceFolder& source);

    /// Throws when of a whole batch nothing lands.
    void run();
    const Counts& counts() const { return m_counts; }

private:
    struct Folder {
        NativeText path; ///< below the source
        std::string name;
        std::int64_t created;
        double share; ///< of the whole, of what is in it
    };

    void readStored();
    void import(const Folder& folder);
    bool importFile(const Folder& folder, const std::string& albumId, const DiskEntry& entry);
    void write();

    Session& m_session;
    std::filesystem::path m_file;
    StoreFile m_store;
    SourceFolder& m_source;
    std::vector<std::pair<Digest, Digest>> m_storedFiles; // sorted: of the id, and of size and time
    std::unordered_set<std::string> m_storedAlbums;
    std::vector<Folder> m_waiting;
    std::vector<DatabaseService::AlbumTable> m_albums;
    std::vector<DatabaseService::GalleryFileTable> m_files;
    double m_done = 0;
    Counts m_counts;
};

} // namespace dbservice
