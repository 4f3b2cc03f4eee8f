#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

namespace testsupport {

/// Stands between SQLite and the disk, for every file that this process opens while the object lives. Counts writes,
/// truncations and deletions. Nothing is flushed to the disk, which only the loss of power would notice. One object at
/// a time.
class FaultyDisk {
public:
    enum class Fault {
        None,
        Full, ///< writes fail for want of space
        Kill, ///< the process ends on the spot
    };

    enum class Call { Open, Read, Write, Truncate, Flush, Size, Lock, Unlock, Reserved, Delete, Exists };
    static constexpr int callKinds = 11;

    /// What SQLite is about to do.
    struct Request {
        Call call;
        std::string_view file{};  ///< empty for a temporary file
        int flags = 0;            ///< of an open
        std::int64_t place = 0;   ///< of a read or write; the new size for a truncation
        std::string_view bytes{}; ///< to be written
    };

    /// Sees every request before it is carried out; another answer than SQLITE_OK takes its place. SQLITE_DONE makes
    /// SQLite believe that a write, a truncation or a deletion is done.
    using Hook = std::function<int(const Request&)>;

    /// The fault comes with the change of that number, the first of them being 1, and a full disk stays full.
    explicit FaultyDisk(Fault fault = Fault::None, std::int64_t atChange = 0);
    explicit FaultyDisk(Hook hook);
    FaultyDisk(const FaultyDisk&) = delete;
    FaultyDisk& operator=(const FaultyDisk&) = delete;
    ~FaultyDisk();

    static std::int64_t changes();
    /// The databases that are open now, opened while an object lived; and those of them that hold a lock.
    static int openDatabases();
    static int lockedDatabases();

    static constexpr int killedCode = 86;
};

} // namespace testsupport
