#include "platform/paths.h"

#include "platform/environment.h"
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

std::filesystem::path userCacheFolder()
{
    std::filesystem::path named = environmentVariable("XDG_CACHE_HOME");
    if (named.is_absolute()) {
        return named;
    }
    const std::filesystem::path home = environmentVariable("HOME");
    return home.is_absolute() ? home / ".cache" : std::filesystem::path();
}

const wchar_t folderSeparator = L'/';

std::optional<std::wstring> longPathName(const std::wstring& path)
{
    constexpr std::size_t longest = 259;
    return exists(path) && path.size() <= longest ? std::optional(path) : std::nullopt;
}

} // namespace platform
