#include "platform/files.h"

#include <io.h>
#include <windows.h>

namespace platform {

std::vector<FoundFile> findFiles(const std::wstring& pattern)
{
    std::vector<FoundFile> found;
    _wfinddata64_t entry{};
    const std::intptr_t search = _wfindfirst64(pattern.c_str(), &entry);
    if (search == -1) {
        return found;
    }
    do {
        const std::wstring name = entry.name;
        if (name != L"." && name != L"..") {
            found.push_back({name, (entry.attrib & _A_SUBDIR) != 0, true});
        }
    } while (_wfindnext64(search, &entry) == 0);
    _findclose(search);
    return found;
}

unsigned long deleteFile(const std::wstring& path)
{
    return DeleteFileW(path.c_str()) != 0 ? 0 : GetLastError();
}

} // namespace platform
