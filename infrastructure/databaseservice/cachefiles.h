#pragma once

#include <string>

namespace DatabaseService {

/// Removes from `folder`, with all that is below it, every name that `pattern` finds. Nothing is removed when
/// `folder` does not exist.
void removeCacheFiles(const std::wstring& pattern, const std::wstring& folder);

} // namespace DatabaseService
