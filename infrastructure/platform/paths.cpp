#include "platform/paths.h"

#include <algorithm>

namespace platform {

std::wstring fromBackslashes(std::wstring path)
{
    std::replace(path.begin(), path.end(), L'\\', folderSeparator);
    return path;
}

bool exists(const std::wstring& path)
{
    std::error_code ignored;
    const std::filesystem::file_type type = std::filesystem::status(toPath(path), ignored).type();
    return type != std::filesystem::file_type::none && type != std::filesystem::file_type::not_found &&
        type != std::filesystem::file_type::unknown;
}

} // namespace platform
