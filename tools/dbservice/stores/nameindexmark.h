#pragma once

#include "scan/digest.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>

namespace dbservice {

/// Remembers from run to run in which state of a drive store's file the index of names was seen to be in this build's
/// order. Any write by anybody else makes another state: SQLite counts transactions in the file's header, and size and
/// time tell of a file that has taken the place of another.
///
/// It lies in the user's folder for such things and not beside the store. Where there is none, or it cannot be read,
/// nothing is remembered.
class NameIndexMark {
public:
    struct State {
        Digest all;
        std::uint32_t transactions; ///< SQLite's count
    };

    explicit NameIndexMark(const std::filesystem::path& file);

    /// Nothing for a missing file, and beside a journal, which changes what the file means.
    std::optional<State> state() const;
    bool isFor(const State& state) const;
    void set(const State& state) const;

    /// Runs `write`, one transaction of the library's on a store that was looked at. The mark holds afterwards if it
    /// held before, nobody else wrote meanwhile, and `write` says that it went well.
    void keepThrough(const std::function<bool()>& write) const;

private:
    std::filesystem::path m_file;
    std::filesystem::path m_mark; // empty where there is no place for it
};

} // namespace dbservice
