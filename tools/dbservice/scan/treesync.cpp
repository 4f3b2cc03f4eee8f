#include "scan/treesync.h"

#include "drive/drivemarkers.h"
#include "drive/fileclass.h"
#include "platform/paths.h"
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

/// Gives the row what the disk says. Whether anything changed. A name that waits to be carried to the cloud stays.
bool takeFromDisk(DriveDataTable& row, const DiskEntry& entry, const std::string& parentId)
{
    const std::string name = row.GetRenameBatchId() != 0 ? row.GetName() : entry.shownName;
    const std::string mimeType(entry.mimeType);
    // In nanoseconds, so that a change within one second is seen.
    const std::string contentVersion = std::to_string(entry.status.modifiedNanoseconds);
    const std::int64_t created = wholeSeconds(entry.status.createdNanoseconds);
    const std::int64_t modified = wholeSeconds(entry.status.modifiedNanoseconds);
    const std::int32_t sign = extensionSign(entry.group);
    const auto number = static_cast<std::int32_t>(entry.isFolder() ? FileClass::Folder : classOf(entry.group));

    if (row.GetName() == name && row.GetMimeType() == mimeType && row.GetSize() == entry.status.size &&
        row.GetContentVersion() == contentVersion && row.GetParentId() == parentId && row.GetCreatedTime() == created &&
        row.GetModifiedTime() == modified && row.GetFileExtSign() == sign && row.GetClassIndex() == number) {
        return false;
    }
    row.SetName(name);
    row.SetMimeType(mimeType);
    row.SetSize(entry.status.size);
    row.SetContentVersion(contentVersion);
    row.SetParentId(parentId);
    row.SetCreatedTime(created);
    row.SetModifiedTime(modified);
    row.SetFileExtSign(sign);
    row.SetClassIndex(number);
    return true;
}

std::string isBinary(const std::string& column)
{
    return "typeof(" + inQuotes(column, '"') + ") = 'blob'";
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

class TreeSync::Timer {
public:
    Timer(TreeSync& sync, Step step) : m_seconds(sync.m_seconds[static_cast<std::size_t>(step)]) { }
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;
    ~Timer() { m_seconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - m_start).count(); }

private:
    double& m_seconds;
    const std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
};

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

TreeSync::TreeSync(Session& session, DatabaseService::DriverDBProvider& drive, SourceFolder& source)
    : m_session(session),
      m_drive(drive),
      m_source(source),
      m_tree(drive)
{
}

void TreeSync::run()
{
    const std::int64_t rowsBefore = m_drive.CountDriverData();
    m_session.stopIfFailed("read the store");
    m_firstScan = rowsBefore == 0;
    m_columns = StoreFile(driveFileName).texts("SELECT name FROM pragma_table_info('DriveDataTable')");
    for (const std::string& column : m_columns) {
        m_anyBinary += (m_anyBinary.empty() ? "(" : " OR ") + isBinary(column);
    }
    m_anyBinary += ')';
    syncSource();
    while (!m_waiting.empty()) {
        std::vector<Folder> folders = walk();
        Stored stored = read(folders);
        write(compare(folders, stored));
        showProgress();
    }
    m_session.reporter().endProgress();

    m_counts.rows = m_drive.CountDriverData();
    m_session.stopIfFailed("read the store");
    const std::int64_t expected = rowsBefore + m_counts.added - m_counts.removed;
    if (m_counts.rows != expected) {
        throw Failure("cannot confirm the scan: the store should hold " + counted(expected, "row", "rows") +
                      " now and holds " + grouped(m_counts.rows) + "; did another program write to it?");
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

/// Rows that could not be added, and are there all the same, are somebody else's.
void TreeSync::stopIfNotAdded(const std::vector<DriveDataTable>& rows)
{
    if (m_session.libraryFailures() > 0) {
        std::vector<std::string> ids;
        ids.reserve(rows.size());
        for (const DriveDataTable& row : rows) {
            ids.push_back(row.GetFileid());
        }
        if (m_tree.rowsById(ids).size() == rows.size()) {
            throw Failure("cannot scan into this store: another program is writing to it, and has added the same rows");
        }
    }
    m_session.stopIfFailed("add rows to the store");
}

/// The row of the source itself, which tells whose tree the store holds.
void TreeSync::syncSource()
{
    const Timer timer(*this, Step::Write);
    const DiskEntry self = m_source.self();
    ++m_counts.folders;
    if (m_firstScan) {
        const DriveDataTable row = newRow({}, self, {});
        m_drive.InsertDriveData(row);
        stopIfNotAdded({row});
        ++m_counts.added;
    } else {
        refuseBinaryValues(m_tree.rowsById({self.id}, m_anyBinary));
        DriveDataTable row = m_drive.GetDriveDataById(self.id);
        const std::string source = platform::toUtf8(m_source.absolute({}));
        if (row.Empty()) {
            throw Failure("cannot scan into this store: it holds rows that no scan has written");
        }
        if (row.GetLocalAbsolutePath() != source) {
            throw Failure("cannot scan " + source + " into this store: it holds the tree of " +
                          row.GetLocalAbsolutePath());
        }
        if (takeFromDisk(row, self, {})) {
            m_drive.UpdateDriveData(row);
            ++m_counts.changed;
        } else {
            ++m_counts.unchanged;
        }
    }
    m_session.stopIfFailed("write the store");
    m_waiting.emplace_back().id = self.id;
}

/// The next folders with their entries. Folders that cannot be read are left out, so nothing below them is touched.
std::vector<TreeSync::Folder> TreeSync::walk()
{
    const Timer timer(*this, Step::Walk);
    std::vector<Folder> folders;
    for (std::size_t entries = 0;
         !m_waiting.empty() && entries < entriesPerBatch && folders.size() < foldersPerBatch;) {
        Folder folder = std::move(m_waiting.back());
        m_waiting.pop_back();
        if (std::optional<std::vector<DiskEntry>> listed = m_source.list(folder.path)) {
            folder.entries = std::move(*listed);
            entries += folder.entries.size();
            const auto subfolders = std::count_if(folder.entries.begin(), folder.entries.end(),
                                                  [](const DiskEntry& entry) { return entry.isFolder(); });
            m_counts.folders += subfolders;
            m_counts.files += static_cast<std::int64_t>(folder.entries.size()) - subfolders;
            folders.push_back(std::move(folder));
        } else {
            m_done += folder.share;
        }
        showProgress();
    }
    return folders;
}

TreeSync::Stored TreeSync::read(const std::vector<Folder>& folders)
{
    const Timer timer(*this, Step::Read);
    Stored stored;
    stored.rows = std::make_shared<std::vector<DriveDataTable>>();
    if (m_firstScan) {
        return stored;
    }
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
            if (!stored.byId.contains(entry.id)) {
                ids.push_back(entry.id);
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
    const Timer timer(*this, Step::Read);
    Changes changes;
    for (Folder& folder : folders) {
        const auto parts = 1 + std::count_if(folder.entries.begin(), folder.entries.end(), [](const DiskEntry& entry) {
                               return entry.isFolder();
                           });
        folder.share /= static_cast<double>(parts);
        m_done += folder.share;
        for (const DiskEntry& entry : folder.entries) {
            compareEntry(folder, entry, stored, changes);
        }
    }
    findGoneRows(folders, stored, changes);
    for (const Folder& folder : folders) {
        if (!folder.differs || m_firstScan) {
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
    const auto found = stored.byId.find(entry.id);
    if (found == stored.byId.end()) {
        if (entry.examined) {
            changes.added.emplace_back(&folder, &entry);
            folder.differs = true;
            push(folder, entry);
        }
        return;
    }
    DriveDataTable& row = (*stored.rows)[found->second];
    stored.onDisk[found->second] = true;
    if (row.GetRecycled() != 0) {
        ++m_counts.leftAlone;
        return;
    }
    const bool wasFolder = row.IsFolder();
    const bool changed = entry.examined && takeFromDisk(row, entry, folder.id);
    ++(changed ? m_counts.changed : m_counts.unchanged);
    // A mark that is there already was left by a run that was cut off.
    folder.differs = folder.differs || changed || !row.GetData2().empty();
    folder.kept.push_back(found->second);
    if (entry.examined && wasFolder && !entry.isFolder()) {
        changes.goneFolders.push_back(entry.id);
    }
    push(folder, entry);
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
            ++m_counts.leftAlone;
            if (isSwept(row)) {
                folder.kept.push_back(i);
                folder.differs = folder.differs || !row.GetData2().empty();
            }
            continue;
        }
        ++m_counts.removed;
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
                ++m_counts.leftAlone;
                if (isSwept(row)) {
                    changes.kept.emplace_back(std::make_shared<DriveDataTable>(row))->SetData2({});
                }
                continue;
            }
            ++m_counts.removed;
            if (row.IsFolder() && seen.insert(row.GetFileid()).second) {
                folders.push_back(row.GetFileid());
            }
        }
        changes.swept.insert(changes.swept.end(), some.begin(), some.end());
    }
    m_session.stopIfFailed("read the store");
}

void TreeSync::write(const Changes& changes)
{
    if (!changes.swept.empty()) {
        const Timer timer(*this, Step::Mark);
        m_drive.SetDriveDataSyncFlag(changes.swept);
        m_session.stopIfFailed("mark rows in the store");
    }
    {
        const Timer timer(*this, Step::Write);
        std::vector<DriveDataTable> rows;
        for (auto added = changes.added.begin(); added != changes.added.end(); ++added) {
            const auto& [folder, entry] = *added;
            rows.push_back(newRow(folder->path, *entry, folder->id));
            if (rows.size() == entriesPerBatch || added + 1 == changes.added.end()) {
                m_drive.InsertDriveDataBatch(rows);
                stopIfNotAdded(rows);
                m_counts.added += static_cast<std::int64_t>(rows.size());
                rows.clear();
            }
        }
        if (!changes.kept.empty()) {
            m_drive.UpdateDriveData(changes.kept);
            m_session.stopIfFailed("update rows in the store");
        }
    }
    if (!changes.swept.empty()) {
        const Timer timer(*this, Step::Sweep);
        m_drive.DelDriveDataBySyncFlag(changes.swept);
        m_session.stopIfFailed("remove rows from the store");
    }
}

/// Puts an entry on the list of folders to walk, if it is one.
void TreeSync::push(const Folder& parent, const DiskEntry& entry)
{
    if (entry.isFolder()) {
        NativeText path = parent.path;
        if (!path.empty()) {
            path += '/';
        }
        Folder& folder = m_waiting.emplace_back();
        folder.path = path + entry.name;
        folder.id = entry.id;
        folder.share = parent.share;
    }
}

void TreeSync::showProgress()
{
    m_session.reporter().progress(m_done, counted(m_counts.folders + m_counts.files, "entry", "entries"));
}

DriveDataTable TreeSync::newRow(const NativeText& path, const DiskEntry& entry, const std::string& parentId) const
{
    DriveDataTable row;
    row.SetFileid(entry.id);
    takeFromDisk(row, entry, parentId);
    const std::filesystem::path folder = m_source.absolute(path);
    row.SetLocalAbsolutePath(platform::toUtf8(parentId.empty() ? folder : folder / entry.name));
    row.SetCloudContentStatus(1);
    return row;
}

} // namespace dbservice
