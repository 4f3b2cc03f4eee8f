#pragma once

#include "support/faultydisk.h"

#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace testsupport {

/// A folder on a disk that knows what it was told to keep, and what it was merely told. Folder entries are kept when a
/// new journal is first flushed, as SQLite's POSIX layer has it.
class UnsureDisk {
public:
    using Files = std::map<std::string, std::string>;

    explicit UnsureDisk(const Files& files);

    /// Carries out what SQLite asks. One that loses flushes takes those of journals for done.
    void take(const FaultyDisk::Request& request, bool losesFlushes = false);

    /// What may be there after the power went: what was not flushed is there, is not there or is torn. `undone` tells
    /// whether a deletion was undone.
    Files cut(std::mt19937& random, bool& undone) const;
    /// What is there after the process went.
    Files all() const;

private:
    struct Change {
        std::size_t place;
        std::string bytes; ///< empty for a truncation
        void apply(std::string& file) const;
    };
    struct Content {
        std::string kept;
        std::vector<Change> pending{};
        bool flushesFolder = false;
    };
    using Entries = std::map<std::string, std::shared_ptr<Content>>;

    Entries m_entries;
    Entries m_keptEntries;
};

} // namespace testsupport
