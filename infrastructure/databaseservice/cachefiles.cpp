#include "databaseservice/cachefiles.h"

#include "databaseservice/unnamedfiles.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace DatabaseService {

void removeCacheFiles(const std::wstring& pattern, const std::wstring& folder)
{
    if (!platform::exists(folder)) {
        return;
    }
    // The names of the folder itself and of the one above it are never found, so neither goes.
    for (const platform::FoundFile& file : platform::findFiles(pattern)) {
        if (!file.isNamed) {
            reportUnnamed(file.name, "DatabaseService::removeCacheFiles");
            continue;
        }
        platform::removeAll(folder + platform::folderSeparator + file.name);
    }
}

} // namespace DatabaseService
