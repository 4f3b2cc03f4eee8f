#include "scan/treewalk.h"

#include "stores/session.h"
#include "terminal/displaytext.h"

#include <algorithm>
#include <utility>

namespace dbservice {

namespace {

std::int64_t foldersAmong(const std::vector<DiskEntry>& entries)
{
    return std::count_if(entries.begin(), entries.end(), [](const DiskEntry& entry) { return entry.isFolder(); });
}

} // namespace

TreeWalk::TreeWalk(Session& session, SourceFolder& source, ScanRecord& record)
    : m_session(session),
      m_source(source),
      m_record(record)
{
    m_waiting.emplace_back().id = source.self().id();
    ++m_record.folders;
}

bool TreeWalk::next(Folder& folder)
{
    const ScanRecord::Timer timer(m_record, ScanRecord::Step::Walk);
    showProgress();
    folder = std::move(m_waiting.back());
    m_waiting.pop_back();
    std::optional<std::vector<DiskEntry>> listed = m_source.list(folder.path);
    if (!listed) {
        m_done += folder.share;
        return false;
    }
    folder.entries = std::move(*listed);
    const std::int64_t subfolders = foldersAmong(folder.entries);
    m_record.folders += subfolders;
    m_record.files += static_cast<std::int64_t>(folder.entries.size()) - subfolders;
    return true;
}

void TreeWalk::take(Folder& folder)
{
    folder.share /= static_cast<double>(1 + foldersAmong(folder.entries));
    m_done += folder.share;
}

void TreeWalk::enter(const Folder& parent, const DiskEntry& entry)
{
    if (entry.isFolder()) {
        Folder& folder = m_waiting.emplace_back();
        folder.path = parent.path;
        if (!folder.path.empty()) {
            folder.path += '/';
        }
        folder.path += entry.name;
        folder.id = entry.id();
        folder.share = parent.share;
    }
}

void TreeWalk::enter(const Folder& parent)
{
    for (const DiskEntry& entry : parent.entries) {
        enter(parent, entry);
    }
}

void TreeWalk::showProgress() const
{
    m_session.reporter().progress(m_done, counted(m_record.folders + m_record.files, "entry", "entries"));
}

} // namespace dbservice
