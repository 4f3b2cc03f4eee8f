#include "scan/treefill.h"

#include "platform/paths.h"
#include "scan/addrows.h"
#include "scan/diskvalues.h"
#include "stores/session.h"

#include <algorithm>
#include <array>
#include <utility>

namespace dbservice {

namespace {

// Some 170 bytes each.
constexpr std::size_t mostFound = 220'000;
constexpr std::size_t rowsPerTransaction = 4000;

// What `CreateIndexOnDriveDataTable` creates.
constexpr std::array indexNames{"nameIndex",         "mimeTypeIndex",    "sizeIndex",
                                "modifiedTimeIndex", "fileExtSignIndex", "parentIdIndex"};

} // namespace

TreeFill::TreeFill(Session& session, DatabaseService::DriverDBProvider& drive, SourceFolder& source, ScanRecord& record)
    : m_session(session),
      m_drive(drive),
      m_source(source),
      m_record(record),
      m_walk(session, source, record)
{
}

/// Whoever opens the store meanwhile creates the indexes, as the next run does when this one is cut off.
void TreeFill::run()
{
    dropIndexes();
    m_session.stopIfFailed("drop the indexes of the store");
    try {
        fill();
    } catch (...) {
        createIndexes();
        throw;
    }
    createIndexes();
    m_session.stopIfFailed("create the indexes of the store");
}

void TreeFill::dropIndexes()
{
    const ScanRecord::Timer timer(m_record, ScanRecord::Step::Index);
    for (const char* name : indexNames) {
        m_drive.ExecuteSQL(std::string("DROP INDEX IF EXISTS ") + name);
    }
}

void TreeFill::createIndexes()
{
    const ScanRecord::Timer timer(m_record, ScanRecord::Step::Index);
    m_drive.CreateIndexOnDriveDataTable();
}

void TreeFill::fill()
{
    m_found.reserve(mostFound); // growth would need twice the memory for a moment
    // With the first rows: a run that is cut off in its walk leaves the store empty.
    m_rows.push_back(newRow(m_source.self(), {}, platform::toUtf8(m_source.absolute({}))));
    do {
        lookAhead();
        write();
    } while (!m_walk.atEnd());
}

void TreeFill::lookAhead()
{
    TreeWalk::Folder folder;
    while (!m_walk.atEnd() && m_found.size() < mostFound) {
        if (!m_walk.next(folder)) {
            continue;
        }
        m_walk.take(folder);
        m_walk.enter(folder);
        for (DiskEntry& entry : folder.entries) {
            if (entry.examined) {
                NativeText().swap(entry.name);
                m_found.push_back({std::move(entry), static_cast<std::uint32_t>(m_folders.size())});
            }
        }
        m_folders.push_back({std::move(folder.id), m_source.shownPrefix(folder.path)});
    }
}

void TreeFill::write()
{
    const ScanRecord::Timer timer(m_record, ScanRecord::Step::Write);
    std::vector<std::pair<Digest, std::uint32_t>> order;
    order.reserve(m_found.size());
    for (const Found& found : m_found) {
        order.emplace_back(found.entry.key, static_cast<std::uint32_t>(order.size()));
    }
    std::sort(order.begin(), order.end());

    m_rows.reserve(std::min(order.size() + 1, rowsPerTransaction));
    for (const auto& [key, place] : order) {
        const Found& found = m_found[place];
        const Folder& folder = m_folders[found.folder];
        m_rows.push_back(newRow(found.entry, folder.id, folder.shownPath + found.entry.shownName));
        if (m_rows.size() == rowsPerTransaction) {
            insert();
        }
    }
    insert();
    m_found.clear();
    m_folders.clear();
}

void TreeFill::insert()
{
    addRows(m_session, m_drive, m_rows);
    m_record.added += static_cast<std::int64_t>(m_rows.size());
    m_rows.clear();
    m_walk.showProgress();
}

} // namespace dbservice
