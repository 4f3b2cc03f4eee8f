#include "platform/files.h"

#include "platform/paths.h"

#include <system_error>

namespace platform {

void createFolder(const std::wstring& path)
{
    std::error_code ignored;
    std::filesystem::create_directory(toPath(path), ignored);
}

void removeAll(const std::wstring& path)
{
    std::error_code ignored;
    std::filesystem::remove_all(toPath(path), ignored);
}

} // namespace platform
