// The library's own: not installed.
#pragma once

#include <string>

namespace DatabaseService {

/// Removes from `folder`, with all that is below it, every name that `pattern` finds. Nothing is removed when
/// `folder` does not exist. What wide text cannot name stays, with a line in the log.
void removeCacheFiles(const std::wstring& pattern, const std::wstring& folder);

} // namespace DatabaseService
