#include "platform/filestatus.h"

#include <windows.h>

#include <algorithm>
#include <limits>

namespace platform {

namespace {

std::int64_t join(DWORD high, DWORD low)
{
    return static_cast<std::int64_t>((static_cast<std::uint64_t>(high) << 32) | low);
}

std::int64_t nanoseconds(const FILETIME& time)
{
    constexpr std::int64_t unixEpoch = 116'444'736'000'000'000; // in the system's ticks since 1601
    constexpr std::int64_t perTick = 100;
    constexpr std::int64_t limit = std::numeric_limits<std::int64_t>::max() / perTick;
    return std::clamp(join(time.dwHighDateTime, time.dwLowDateTime) - unixEpoch, -limit, limit) * perTick;
}

bool isKnown(const FILETIME& time)
{
    return time.dwHighDateTime != 0 || time.dwLowDateTime != 0;
}

/// Whether a reparse point stands for another entry; others, such as files kept online, are files themselves.
bool isLink(const wchar_t* path)
{
    WIN32_FIND_DATAW found{};
    const HANDLE search = FindFirstFileW(path, &found);
    if (search == INVALID_HANDLE_VALUE) {
        return true;
    }
    FindClose(search);
    return found.dwReserved0 == IO_REPARSE_TAG_SYMLINK || found.dwReserved0 == IO_REPARSE_TAG_MOUNT_POINT;
}

FileKind kindOf(const wchar_t* path, DWORD attributes)
{
    if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 && isLink(path)) {
        return FileKind::Link;
    }
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
        return FileKind::Folder;
    }
    return (attributes & FILE_ATTRIBUTE_DEVICE) != 0 ? FileKind::Other : FileKind::Regular;
}

} // namespace

FileStatus readStatus(const std::filesystem::path& path, std::error_code& error) noexcept
{
    error.clear();
    WIN32_FILE_ATTRIBUTE_DATA found{};
    if (GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &found) == 0) {
        error.assign(static_cast<int>(GetLastError()), std::system_category());
        return {};
    }
    FileStatus status;
    status.kind = kindOf(path.c_str(), found.dwFileAttributes);
    status.size = status.kind == FileKind::Regular ? join(found.nFileSizeHigh, found.nFileSizeLow) : 0;
    status.modifiedNanoseconds = nanoseconds(found.ftLastWriteTime);
    status.createdNanoseconds =
        isKnown(found.ftCreationTime) ? nanoseconds(found.ftCreationTime) : status.modifiedNanoseconds;
    return status;
}

void readFolder(const std::filesystem::path& folder, const WantEntry& wanted, const VisitEntry& visit,
                std::error_code& error)
{
    namespace fs = std::filesystem;
    for (fs::directory_iterator file(folder, error); !error && file != fs::directory_iterator();
         file.increment(error)) {
        std::error_code refused;
        const FileStatus status = readStatus(file->path(), refused);
        const std::wstring name = file->path().filename().native();
        if (refused || !wanted || wanted(name, status.kind)) {
            visit(name, status, refused);
        }
    }
}

} // namespace platform
