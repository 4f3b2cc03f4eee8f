#include "scan/storedtree.h"

#include "stores/rowwalk.h"

#include <algorithm>
#include <sqlite3.h>
#include <string_view>

namespace dbservice {

namespace {

constexpr const char* columns = "fileId, name, mimeType, contentVersion, parentId, size, createdTime, modifiedTime, "
                                "fileExtSign, classIndex, recycled, renameBatchId, data2";

constexpr int textColumns = 5;
constexpr int stateColumns = 10;

/// Neither in the bin nor under a name that waits to be carried to the cloud, without the mark of a scan that was cut
/// off, with texts where there should be some, and not doubtful.
bool isPlain(sqlite3_stmt* row)
{
    for (int column = 0; column < textColumns; ++column) {
        if (sqlite3_column_type(row, column) != SQLITE_TEXT) {
            return false;
        }
    }
    return sqlite3_column_int64(row, stateColumns) == 0 && sqlite3_column_int64(row, stateColumns + 1) == 0 &&
        textAt(row, stateColumns + 2).empty() && sqlite3_column_int(row, stateColumns + 3) == 0;
}

DiskValues valuesOf(sqlite3_stmt* row)
{
    DiskValues values;
    values.id = textAt(row, 0);
    values.name = textAt(row, 1);
    values.mimeType = textAt(row, 2);
    values.contentVersion = textAt(row, 3);
    values.parentId = textAt(row, 4);
    values.size = sqlite3_column_int64(row, 5);
    values.created = sqlite3_column_int64(row, 6);
    values.modified = sqlite3_column_int64(row, 7);
    values.extensionSign = sqlite3_column_int(row, 8);
    values.classIndex = sqlite3_column_int(row, 9);
    return values;
}

} // namespace

void StoredTree::read(const std::string& doubtful)
{
    const std::string query = std::string("SELECT ") + columns + ", " + doubtful + " FROM DriveDataTable NOT INDEXED";
    std::string scratch;
    std::string folder;
    RowWalk().run(query, [&](sqlite3_stmt* row) {
        folder = textAt(row, 4);
        ++m_inFolder[folder];
        if (isPlain(row)) {
            m_plain.push_back(digestOf(valuesOf(row), scratch));
        }
    });
    std::sort(m_plain.begin(), m_plain.end());
}

bool StoredTree::isUpToDate(const std::string& folderId, const std::vector<DiskEntry>& entries) const
{
    const auto stored = m_inFolder.find(folderId);
    const std::int64_t inStore = stored == m_inFolder.end() ? 0 : stored->second;
    MadeUpTexts texts;
    std::string scratch;
    return inStore == static_cast<std::int64_t>(entries.size()) &&
        std::all_of(entries.begin(), entries.end(), [&](const DiskEntry& entry) {
               return entry.examined &&
                   std::binary_search(m_plain.begin(), m_plain.end(),
                                      digestOf(valuesOf(entry, folderId, texts), scratch));
           });
}

} // namespace dbservice
