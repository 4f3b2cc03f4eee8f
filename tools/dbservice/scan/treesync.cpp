#include "scan/treesync.h"

#include "drive/drivemarkers.h"
#include "platform/paths.h"
#include "scan/addrows.h"
#include "scan/diskvalues.h"
#include "stores/session.h"
#include "stores/storefile.h"
#include "terminal/displaytext.h"
#include "terminal/failure.h"

#include <algorithm>
#include <iterator>
#include <unordered_set>

namespace dbservice {

using DatabaseService::DriveDataTable;

namespace {

constexpr std::size_t entriesPerBatch = 4000;
constexpr std::size_t foldersPerBatch = 256;

/// A condition. Binary values come behind all others; to ask for the type of so many takes almost three times as long.
std::string isBinary(const std::string& column)
{
    return inQuotes(column, '"') + " >= x''";
}

/// Whether the row stays although the disk no longer has it.
bool belongsToClient(const DriveDataTable& row)
{
    return isInBin(row) || isPending(row);
}

/// Whether mark and sweep would take it, unless it is written in between.
bool isSwept(const DriveDataTable& row)
{
    return row.GetRecycled() == 0;
}

} // namespace

void TreeSync::Stored::index()
{
    for (std::size_t i = onDisk.size(); i < rows->size(); ++i) {
        byId.emplace((*rows)[i].GetFileid(), i);
        onDisk.push_back(false);
    }
}

bool TreeSync::Stored::isOnDisk(const std::string& id) const
{
    const auto found = byId.find(id);
    return found != byId.end() && onDisk[found->second];
}

TreeSync::TreeSync(Session& session, DatabaseService::DriverDBProvider& drive, SourceFolder& source, ScanRecord& record)
    : m_session(session),
      m_drive(drive),
      m_source(source),
      m_record(record),
      m_tree(drive),
      m_walk(session, source, record)
{
}

void TreeSync::run()
{
    m_columns = StoreFile(driveFileName).texts("SELECT name FROM pragma_table_info('DriveDataTable')");
    for (const std::string& column : m_columns) {
        m_anyBinary += (m_anyBinary.empty() ? "(" : " OR ") + isBinary(column);
    }
    m_anyBinary += ')';
    syncSource();
    {
        const ScanRecord::Timer timer(m_record, Step::Read);
        m_storedTree.read(m_anyBinary);
        m_session.stopIfFailed("read the store");
    }
    while (!m_walk.atEnd()) {
        std::vector<Folder> folders = walk();
        passUnchanged(folders);
        Stored stored = read(folders);
        write(compare(folders, stored));
        m_walk.showProgress();
    }
}

/// The library passes over binary values and reads what follows in their place, so rows that hold any come out wrong.
/// `found` are rows with any.
void TreeSync::refuseBinaryValues(const std::vector<DriveDataTable>& found)
{
    for (const std::string& column : found.empty() ? std::vector<std::string>() : m_columns) {
        const int rows =
            StoreFile(driveFileName).number("SELECT COUNT(*) FROM DriveDataTable WHERE " + isBinary(column));
        if (rows > 0) {
            throw Failure("cannot scan into this store: " + counted(rows, "row", "rows") +
                          " of DriveDataTable cannot be read right, with a binary value in the column " + column);
        }
    }
}

/// The row of the source itself, which tells whose tree the store holds.
void TreeSync::syncSource()
{
    const ScanRecord::Timer timer(m_record, Step::Write);
    const DiskEntry self = m_source.self();
    refuseBinaryValues(m_tree.rowsById({self.id()}, m_anyBinary));
    DriveDataTable row = m_drive.GetDriveDataById(self.id());
    const std::string source = platform::toUtf8(m_source.absolute({}));
    if (row.Empty()) {
        throw Failure("cannot scan into this store: it holds rows that no scan has written");
    }
    if (row.GetLocalAbsolutePath() != source) {
        throw Failure("cannot scan " + source + " into this store: it holds the tree of " + row.GetLocalAbsolutePath());
    }
    if (update(row, self, {})) {
        m_drive.UpdateDriveData(row);
        ++m_record.changed;
    } else {
        ++m_record.unchanged;
    }
    m_session.stopIfFailed("write the store");
}

std::vector<TreeSync::Folder> TreeSync::walk()
{
    std::vector<Folder> folders;
    for (std::size_t entries = 0; !m_walk.atEnd() && entries < entriesPerBatch && folders.size() < foldersPerBatch;) {
        Folder folder;
        if (m_walk.next(folder)) {
            entries += folder.entries.size();
            m_walk.take(folder);
            folders.push_back(std::move(folder));
        }
    }
    return folders;
}

/// Takes out the folders that the store holds as they are.
void TreeSync::passUnchanged(std::vector<Folder>& folders)
{
    const ScanRecord::Timer timer(m_record, Step::Read);
    std::erase_if(folders, [this](const Folder& folder) {
        if (!m_storedTree.isUpToDate(folder.id, folder.entries)) {
            return false;
        }
        m_record.unchanged += static_cast<std::int64_t>(folder.entries.size());
        m_walk.enter(folder);
        return true;
    });
}

TreeSync::Stored TreeSync::read(const std::vector<Folder>& folders)
{
    const ScanRecord::Timer timer(m_record, Step::Read);
    Stored stored;
    stored.rows = std::make_shared<std::vector<DriveDataTable>>();
    std::vector<std::string> ids;
    ids.reserve(folders.size());
    for (const Folder& folder : folders) {
        ids.push_back(folder.id);
    }
    refuseBinaryValues(m_tree.childrenOf(ids, m_anyBinary));
    *stored.rows = m_tree.childrenOf(ids);
    stored.index();

    // What is not among the children may still be there: moved by the client, or left under a folder that was gone.
    ids.clear();
    for (const Folder& folder : folders) {
        for (const DiskEntry& entry : folder.entries) {
            if (!stored.byId.contains(entry.id())) {
                ids.push_back(entry.id());
            }
        }
    }
    refuseBinaryValues(m_tree.rowsById(ids, m_anyBinary));
    std::vector<DriveDataTable> elsewhere = m_tree.rowsById(ids);
    std::move(elsewhere.begin(), elsewhere.end(), std::back_inserter(*stored.rows));
    stored.index();
    m_session.stopIfFailed("read the store");
    return stored;
}

TreeSync::Changes TreeSync::compare(std::vector<Folder>& folders, Stored& stored)
{
    const ScanRecord::Timer timer(m_record, Step::Read);
    Changes changes;
    for (Folder& folder : folders) {
        for (const DiskEntry& entry : folder.entries) {
            compareEntry(folder, entry, stored, changes);
        }
    }
    findGoneRows(folders, stored, changes);
    for (const Folder& folder : folders) {
        if (!folder.differs) {
            continue;
        }
        changes.swept.push_back(folder.id);
        for (const std::size_t index : folder.kept) {
            DriveDataTable& row = (*stored.rows)[index];
            row.SetData2({});
            changes.kept.emplace_back(stored.rows, &row);
        }
    }
    addGoneSubtrees(stored, changes);
    return changes;
}

void TreeSync::compareEntry(Folder& folder, const DiskEntry& entry, Stored& stored, Changes& changes)
{
    const auto found = stored.byId.find(entry.id());
    if (found == stored.byId.end()) {
        if (entry.examined) {
            changes.added.emplace_back(&folder, &entry);
            folder.differs = true;
            m_walk.enter(folder, entry);
        }
        return;
    }
    DriveDataTable& row = (*stored.rows)[found->second];
    stored.onDisk[found->second] = true;
    if (row.GetRecycled() != 0) {
        ++m_record.leftAlone;
        return;
    }
    const bool wasFolder = row.IsFolder();
    const bool changed = entry.examined && update(row, entry, folder.id);
    ++(changed ? m_record.changed : m_record.unchanged);
    // A mark that is there already was left by a run that was cut off.
    folder.differs = folder.differs || changed || !row.GetData2().empty();
    folder.kept.push_back(found->second);
    if (entry.examined && wasFolder && !entry.isFolder()) {
        changes.goneFolders.push_back(entry.id());
    }
    m_walk.enter(folder, entry);
}

/// Stored children that are no longer on disk.
void TreeSync::findGoneRows(std::vector<Folder>& folders, const Stored& stored, Changes& changes)
{
    std::unordered_map<std::string, Folder*> folderById;
    for (Folder& folder : folders) {
        folderById.emplace(folder.id, &folder);
    }
    for (std::size_t i = 0; i < stored.rows->size(); ++i) {
        const DriveDataTable& row = (*stored.rows)[i];
        if (stored.onDisk[i]) {
            continue;
        }
        const auto known = folderById.find(row.GetParentId());
        if (known == folderById.end()) {
            throw Failure("cannot scan into this store: it gives id:" + row.GetFileid() + " as a child of " +
                          "a folder that it is not in");
        }
        Folder& folder = *known->second;
        if (belongsToClient(row)) {
            ++m_record.leftAlone;
            if (isSwept(row)) {
                folder.kept.push_back(i);
                folder.differs = folder.differs || !row.GetData2().empty();
            }
            continue;
        }
        ++m_record.removed;
        folder.differs = true;
        if (row.IsFolder()) {
            changes.goneFolders.push_back(row.GetFileid());
        }
    }
}

/// Adds what is stored below folders that are gone. Each folder is looked at once, even if rows are wrongly linked
/// in a circle.
void TreeSync::addGoneSubtrees(const Stored& stored, Changes& changes)
{
    std::vector<std::string> folders = std::move(changes.goneFolders);
    std::unordered_set<std::string> seen(folders.begin(), folders.end());
    while (!folders.empty()) {
        const std::size_t rest = folders.size() - std::min(folders.size(), foldersPerBatch);
        const std::vector<std::string> some(folders.begin() + static_cast<std::ptrdiff_t>(rest), folders.end());
        folders.resize(rest);
        refuseBinaryValues(m_tree.childrenOf(some, m_anyBinary));
        for (const DriveDataTable& row : m_tree.childrenOf(some)) {
            if (stored.isOnDisk(row.GetFileid())) {
                continue;
            }
            if (belongsToClient(row)) {
                ++m_record.leftAlone;
                if (isSwept(row)) {
                    changes.kept.emplace_back(std::make_shared<DriveDataTable>(row))->SetData2({});
                }
                continue;
            }
            ++m_record.removed;
            if (row.IsFolder() && seen.insert(row.GetFileid()).second) {
                folders.push_back(row.GetFileid());
            }
        }
        changes.swept.insert(changes.swept.end(), some.begin(), some.end());
        // One of them may be elsewhere on the disk, and wait for its turn.
        for (const std::string& id : some) {
            m_storedTree.forget(id);
        }
    }
    m_session.stopIfFailed("read the store");
}

void TreeSync::write(const Changes& changes)
{
    if (!changes.swept.empty()) {
        const ScanRecord::Timer timer(m_record, Step::Mark);
        m_drive.SetDriveDataSyncFlag(changes.swept);
        m_session.stopIfFailed("mark rows in the store");
    }
    {
        const ScanRecord::Timer timer(m_record, Step::Write);
        std::vector<DriveDataTable> rows;
        for (auto added = changes.added.begin(); added != changes.added.end(); ++added) {
            const auto& [folder, entry] = *added;
            rows.push_back(newRow(*entry, folder->id, m_source.shownPrefix(folder->path) + entry->shownName));
            if (rows.size() == entriesPerBatch || added + 1 == changes.added.end()) {
                addRows(m_session, m_drive, rows);
                m_record.added += static_cast<std::int64_t>(rows.size());
                rows.clear();
            }
        }
        if (!changes.kept.empty()) {
            m_drive.UpdateDriveData(changes.kept);
            m_session.stopIfFailed("update rows in the store");
        }
    }
    if (!changes.swept.empty()) {
        const ScanRecord::Timer timer(m_record, Step::Sweep);
        m_drive.DelDriveDataBySyncFlag(changes.swept);
        m_session.stopIfFailed("remove rows from the store");
    }
}

} // namespace dbservice
