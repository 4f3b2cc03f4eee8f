#include "platform/paths.h"

#include "platform/text.h"

namespace platform {

std::filesystem::path toPath(const std::wstring& wide)
{
    return wide;
}

std::string toUtf8(const std::filesystem::path& path)
{
    return toUtf8(path.native());
}

} // namespace platform
