#pragma once

#include "databaseservice/driverdbprovider.h"
#include "drive/drivetree.h"
#include "scan/scanrecord.h"
#include "scan/sourcefolder.h"
#include "scan/storedtree.h"
#include "scan/treewalk.h"

#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace dbservice {

class Session;

/// Brings the drive tree in the store up to date with a real folder.
///
/// It reads the store once, passes over the folders that are up to date, and goes through the others in batches of a
/// few thousand entries. For each batch it reads the stored children, compares, and writes the folders in which
/// something differs: mark the stored children, insert what is new, write back what is still there (which clears the
/// mark), sweep what is still marked. Folders that are gone take what is below them along in the same sweep, so that a
/// run that is cut off leaves nothing unreachable behind. Rows in the bin and rows with anything pending that are no
/// longer on disk are left to the client, with what is below them; those that are on disk keep their markers, and the
/// name that a pending rename has given them.
///
/// Memory stays in proportion to a batch or the largest folder, whichever is more, and some 20 bytes a stored row.
/// Failure: a `Failure` as soon as the library has logged one, before anything is swept on a doubtful ground.
class TreeSync {
public:
    TreeSync(Session& session, DatabaseService::DriverDBProvider& drive, SourceFolder& source, ScanRecord& record);

    /// Throws also when the store belongs to another source.
    void run();

private:
    using Step = ScanRecord::Step;

    struct Folder : TreeWalk::Folder {
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
    void syncSource();
    std::vector<Folder> walk();
    void passUnchanged(std::vector<Folder>& folders);
    Stored read(const std::vector<Folder>& folders);
    Changes compare(std::vector<Folder>& folders, Stored& stored);
    void compareEntry(Folder& folder, const DiskEntry& entry, Stored& stored, Changes& changes);
    void findGoneRows(std::vector<Folder>& folders, const Stored& stored, Changes& changes);
    void addGoneSubtrees(const Stored& stored, Changes& changes);
    void write(const Changes& changes);

    Session& m_session;
    DatabaseService::DriverDBProvider& m_drive;
    SourceFolder& m_source;
    ScanRecord& m_record;
    DriveTree m_tree;
    std::vector<std::string> m_columns; // of the table
    std::string m_anyBinary;            // holds for rows with a binary value
    TreeWalk m_walk;
    StoredTree m_storedTree;
};

} // namespace dbservice
