#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace benchmarks {

struct WalkedEntry {
    std::string_view path; ///< below the folder
    std::string_view name;
    std::string_view parent; ///< the path of the folder that it is in
    std::int64_t parentModifiedNanoseconds = 0;
    enum class Kind { File, Folder, Link, Fifo, Socket, Block, Character } kind = Kind::File;
    std::int64_t size = 0;
    std::int64_t modifiedNanoseconds = 0;
};

/// Everything in a folder but its own entry, with one look at each; links are not followed. What cannot be read is left
/// out without a word.
void walkFolder(const std::string& folder, const std::function<void(const WalkedEntry&)>& visit);

/// The folder's own modification time.
std::int64_t modifiedNanoseconds(const std::string& folder);

} // namespace benchmarks
