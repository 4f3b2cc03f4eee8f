#pragma once

#include <cstdint>

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

    /// The fault comes with the change of that number, the first of them being 1, and a full disk stays full.
    explicit FaultyDisk(Fault fault = Fault::None, std::int64_t atChange = 0);
    FaultyDisk(const FaultyDisk&) = delete;
    FaultyDisk& operator=(const FaultyDisk&) = delete;
    ~FaultyDisk();

    static std::int64_t changes();

    static constexpr int killedCode = 86;
};

} // namespace testsupport
