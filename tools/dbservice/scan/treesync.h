#pragma once

#include "databaseservice/driverdbprovider.h"
#include "drive/drivetree.h"
#include "scan/sourcefolder.h"

#include <array>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace dbservice {

class Session;

/// Brings the drive tree in the store up to date with a real folder.
///
/// It goes through the folders in batches of a few thousand entries. For each batch it reads the stored children,
/// compares, and writes the folders in which something differs: mark the stored children, insert what is new, write
/// back what is still there (which clears the mark), sweep what is still marked. Folders that are gone take what is
/// below them along in the same sweep, so that a run that is cut off leaves nothing unreachable behind. Rows in the
/// bin and rows with anything pending that are no longer on disk are left to the client, with what is below them;
/// those that are on disk keep their markers, and the name that a pending rename has given them.
///
/// Memory stays in proportion to a batch or the largest folder, whichever is more.
/// Failure: a `Failure` as soon as the library has logged one, before anything is swept on a doubtful ground.
class TreeSync {
public:
    struct Counts {
        std::int64_t folders = 0; ///< on disk, the source included
        std::int64_t files = 0;   ///< on disk: everything else
        std::int64_t added = 0;
        std::int64_t changed = 0;
        std::int64_t unchanged = 0;
        std::int64_t removed = 0;
        std::int64_t leftAlone = 0; ///< stored rows in the bin or with a pending operation
        std::int64_t rows = 0;      ///< in the store afterwards
    };
    enum class Step { Walk, Read, Mark, Write, Sweep };
    static constexpr std::array<const char*, 5> stepNames{"walk", "read", "mark", "write", "sweep"};

    TreeSync(Session& session, DatabaseService::DriverDBProvider& drive, SourceFolder& source);

    /// Throws also when the store belongs to another source, and when at the end it does not hold the rows that it
    /// should.
    void run();

    const Counts& counts() const { return m_counts; }
    /// By `Step`.
    const std::array<double, stepNames.size()>& seconds() const { return m_seconds; }

private:
    class Timer;

    struct Folder {
        NativeText path;
        std::string id;
        double share = 1; // of the whole work, for the progress; in the end without that of its subfolders
        std::vector<DiskEntry> entries;
        // What the comparison finds:
        bool differs = false;
        std::vector<std::size_t> kept; // the stored rows that stay
    };

    /// The stored rows that a batch of folders is compared with.
    struct Stored {
        std::shared_ptr<std::vector<DatabaseService::DriveDataTable>> rows;
        std::unordered_map<std::string, std::size_t> byId;
        std::vector<bool> onDisk;

        void index();
        bool isOnDisk(const std::string& id) const;
    };

    struct Changes {
        std::vector<std::string> goneFolders; // whose stored children go too
        std::vector<std::string> swept;       // the folders whose children are marked and swept
        std::vector<std::pair<const Folder*, const DiskEntry*>> added;
        std::vector<std::shared_ptr<DatabaseService::DriveDataTable>> kept;
    };

    void refuseBinaryValues(const std::vector<DatabaseService::DriveDataTable>& found);
    void stopIfNotAdded(const std::vector<DatabaseService::DriveDataTable>& rows);
    void syncSource();
    std::vector<Folder> walk();
    Stored read(const std::vector<Folder>& folders);
    Changes compare(std::vector<Folder>& folders, Stored& stored);
    void compareEntry(Folder& folder, const DiskEntry& entry, Stored& stored, Changes& changes);
    void findGoneRows(std::vector<Folder>& folders, const Stored& stored, Changes& changes);
    void addGoneSubtrees(const Stored& stored, Changes& changes);
    void write(const Changes& changes);
    void push(const Folder& parent, const DiskEntry& entry);
    void showProgress();
    DatabaseService::DriveDataTable newRow(const NativeText& path, const DiskEntry& entry,
                                           const std::string& parentId) const;

    Session& m_session;
    DatabaseService::DriverDBProvider& m_drive;
    SourceFolder& m_source;
    DriveTree m_tree;
    std::vector<std::string> m_columns; // of the table
    std::string m_anyBinary;            // holds for rows with a binary value
    std::vector<Folder> m_waiting;
    bool m_firstScan = false;
    double m_done = 0;
    Counts m_counts;
    std::array<double, stepNames.size()> m_seconds{};
};

} // namespace dbservice
