#include "stores/databasefiles.h"

#include "platform/paths.h"
#include "stores/readablestore.h"
#include "terminal/failure.h"

#include <algorithm>

namespace fs = std::filesystem;

namespace dbservice {

std::vector<fs::path> databaseFilesIn(const fs::path& folder)
{
    std::vector<fs::path> names;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        std::error_code ignored;
        const bool holdsBytes = entry->is_regular_file(ignored) && entry->file_size(ignored) > 0;
        if (holdsBytes && isDatabase(entry->path())) {
            names.push_back(entry->path().filename());
        }
    }
    if (error) {
        throw Failure("cannot read the folder " + platform::toUtf8(folder) + ": " + error.message());
    }
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace dbservice
