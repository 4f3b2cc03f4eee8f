#include "platform/paths.h"

#include "platform/text.h"

namespace platform {

std::filesystem::path toPath(const std::wstring& wide)
{
    return toUtf8(std::wstring_view(wide));
}

std::string toUtf8(const std::filesystem::path& path)
{
    return repairUtf8(path.native());
}

} // namespace platform
