#include "platform/filestatus.h"

#include <sys/stat.h>

#include <cerrno>
#include <limits>

namespace platform {

namespace {

std::int64_t nanoseconds(const timespec& time)
{
    constexpr std::int64_t perSecond = 1'000'000'000;
    constexpr std::int64_t limit = std::numeric_limits<std::int64_t>::max() / perSecond - 1;
    const auto seconds = static_cast<std::int64_t>(time.tv_sec);
    if (seconds > limit) {
        return std::numeric_limits<std::int64_t>::max();
    }
    if (seconds < -limit) {
        return std::numeric_limits<std::int64_t>::min();
    }
    return seconds * perSecond + time.tv_nsec;
}

FileKind kindOf(mode_t mode)
{
    switch (mode & S_IFMT) {
    case S_IFREG:
        return FileKind::Regular;
    case S_IFDIR:
        return FileKind::Folder;
    case S_IFLNK:
        return FileKind::Link;
    default:
        return FileKind::Other;
    }
}

} // namespace

FileStatus readStatus(const std::filesystem::path& path, std::error_code& error) noexcept
{
    error.clear();
    struct stat found { };
    if (::lstat(path.c_str(), &found) != 0) {
        error.assign(errno, std::generic_category());
        return {};
    }
    FileStatus status;
    status.kind = kindOf(found.st_mode);
    status.size = status.kind == FileKind::Regular ? static_cast<std::int64_t>(found.st_size) : 0;
    status.modifiedNanoseconds = nanoseconds(found.st_mtim);
    status.createdNanoseconds = status.modifiedNanoseconds;
    return status;
}

} // namespace platform
