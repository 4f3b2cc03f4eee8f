#pragma once

#include <string_view>

namespace platform {

/// Orders two file names as a person would: runs of digits by their numeric value whatever their length,
/// letters without regard to case. An empty name comes first. The result is negative, 0 or positive.
///
/// The order is stored on disk, in the index over the names of the drive store, so it never changes:
/// - On Windows it is the system's `StrCmpLogicalW` on the names made wide, which looks at nothing behind a NUL.
/// - Elsewhere digits are those of ASCII, letters are folded with the simple case folding of Unicode 15.0 from a
///   fixed table, and everything else goes by code point, ill-formed UTF-8 as U+FFFD and a NUL as any other.
///
/// Both ranges are UTF-8 and need no NUL behind them. Pure; any thread.
int compareNames(std::string_view left, std::string_view right) noexcept;

/// Names the order that `compareNames` follows; two builds may write one store only if theirs are equal.
const char* nameOrderVersion() noexcept;

} // namespace platform
