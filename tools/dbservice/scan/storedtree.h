#pragma once

#include "scan/digest.h"
#include "scan/diskvalues.h"

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace dbservice {

/// What the store held when a scan began, as far as it tells which folders are up to date: a digest of each row and the
/// number of rows in each folder. All rows are read once, one after the other as they lie in the file; the memory is
/// some 20 bytes a row.
class StoredTree {
public:
    /// Rows for which the condition holds are not known to be up to date. Failures are what the library logs.
    void read(const std::string& doubtful);

    /// Whether the store holds exactly these rows of the folder, with nothing on them that a scan would look at.
    bool isUpToDate(const std::string& folderId, const std::vector<DiskEntry>& entries) const;

    /// From here on the folder is not known to be up to date.
    void forget(const std::string& folderId) { m_inFolder[folderId] = unknown; }

private:
    static constexpr std::int64_t unknown = -1;

    std::vector<Digest> m_plain; // of the rows that are no more than what is on disk, sorted
    std::unordered_map<std::string, std::int64_t> m_inFolder;
};

} // namespace dbservice
