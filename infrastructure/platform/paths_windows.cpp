#include "platform/paths.h"

#include "platform/environment.h"
#include "platform/text.h"

#include <array>
#include <windows.h>

namespace platform {

std::filesystem::path toPath(const std::wstring& wide)
{
    return wide;
}

std::string toUtf8(const std::filesystem::path& path)
{
    return toUtf8(path.native());
}

std::filesystem::path userCacheFolder()
{
    return toPath(toWide(environmentVariable("LOCALAPPDATA")));
}

const wchar_t folderSeparator = L'\\';

std::optional<std::wstring> longPathName(const std::wstring& path)
{
    std::array<wchar_t, 260> name{};
    const DWORD length = GetLongPathNameW(path.c_str(), name.data(), static_cast<DWORD>(name.size()));
    // A length that does not fit into the buffer is what the name would need, and the buffer holds nothing then.
    return length > 0 && length < name.size() ? std::optional<std::wstring>(name.data()) : std::nullopt;
}

} // namespace platform
