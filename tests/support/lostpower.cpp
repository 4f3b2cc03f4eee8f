#include "support/lostpower.h"

#include <algorithm>
#include <filesystem>
#include <sqlite3.h>
#include <utility>

namespace testsupport {

using Call = FaultyDisk::Call;

void UnsureDisk::Change::apply(std::string& file) const
{
    file.resize(bytes.empty() ? place : std::max(file.size(), place + bytes.size()));
    file.replace(place, bytes.size(), bytes);
}

UnsureDisk::UnsureDisk(const Files& files)
    : m_entries([&files] {
          Entries entries;
          for (const auto& [name, bytes] : files) {
              entries[name] = std::make_shared<Content>(Content{bytes});
          }
          return entries;
      }()),
      m_keptEntries(m_entries)
{
}

void UnsureDisk::take(const FaultyDisk::Request& request, bool losesFlushes)
{
    const std::string name = std::filesystem::path(request.file).filename().string();
    const bool isJournal = name.ends_with("-journal");
    if (request.call == Call::Open && (request.flags & SQLITE_OPEN_CREATE) != 0 && !m_entries.contains(name)) {
        m_entries[name] = std::make_shared<Content>(Content{.kept = {}, .flushesFolder = isJournal});
    } else if (request.call == Call::Write || request.call == Call::Truncate) {
        m_entries.at(name)->pending.push_back({static_cast<std::size_t>(request.place), std::string(request.bytes)});
    } else if (request.call == Call::Delete) {
        m_entries.erase(name);
    } else if (request.call == Call::Flush && !(isJournal && losesFlushes)) {
        Content& content = *m_entries.at(name);
        for (const Change& change : std::exchange(content.pending, {})) {
            change.apply(content.kept);
        }
        if (std::exchange(content.flushesFolder, false)) {
            m_keptEntries = m_entries;
        }
    }
}

UnsureDisk::Files UnsureDisk::cut(std::mt19937& random, bool& undone) const
{
    constexpr std::size_t sector = 512;
    Entries entries = m_entries;
    for (const auto& [name, content] : m_keptEntries) {
        if (!entries.contains(name) && random() % 2 == 0) {
            entries[name] = content;
            undone = true;
        }
    }
    Files files;
    const auto keeps = random() % 5; // of four
    for (const auto& [name, content] : entries) {
        if (!m_keptEntries.contains(name) && random() % 2 == 0) {
            continue;
        }
        std::string& file = files[name] = content->kept;
        for (const Change& change : content->pending) {
            const bool isTorn = random() % 4 == 0;
            for (std::size_t at = 0; isTorn && at < change.bytes.size(); at += sector) {
                if (random() % 2 == 0) {
                    Change{change.place + at, change.bytes.substr(at, sector)}.apply(file);
                }
            }
            if (!isTorn && random() % 4 < keeps) {
                change.apply(file);
            }
        }
    }
    return files;
}

UnsureDisk::Files UnsureDisk::all() const
{
    Files files;
    for (const auto& [name, content] : m_entries) {
        files[name] = content->kept;
        for (const Change& change : content->pending) {
            change.apply(files[name]);
        }
    }
    return files;
}

} // namespace testsupport
